// The faces' own methods.
#include "shell/windows/ConnectObject.h"

#include <windows.h>

#include <oleauto.h>

#include <array>
#include <memory>
#include <string_view>

#include "foundation/automation/ComObject.h"
#include "foundation/automation/ComValues.h"
#include "shell/RibbonCalls.h"
#include "shell/windows/HostTaskPane.h"

namespace quillmarch::addin {

namespace {

// The argument at a place counted from the first, empty when there is none; the block holds them
// last first.
Variant ArgumentAt(const DISPPARAMS& params, UINT place) {
  if (place >= params.cArgs) return {};
  return FromCom(params.rgvarg[params.cArgs - 1 - place]);
}

ObjectRef ObjectAt(const DISPPARAMS& params, UINT place) {
  Variant value = ArgumentAt(params, place);
  return value.hasObject() ? value.takeObject() : ObjectRef();
}

bool SameName(const wchar_t* asked, const wchar_t* known) {
  return CompareStringOrdinal(asked, -1, known, -1, TRUE) == CSTR_EQUAL;
}

constexpr std::array kLifeNames = {L"OnConnection", L"OnDisconnection", L"OnAddInsUpdate",
                                   L"OnStartupComplete", L"OnBeginShutdown"};
constexpr DISPID kOnConnection = 1;
constexpr DISPID kOnDisconnection = 2;
constexpr DISPID kOnAddInsUpdate = 3;
constexpr DISPID kOnStartupComplete = 4;
constexpr DISPID kOnBeginShutdown = 5;
constexpr DISPID kGetCustomUI = 1;
constexpr DISPID kCTPFactoryAvailable = 1;

}  // namespace

// ---- The object
// ----------------------------------------------------------------------------------

HRESULT ConnectObject::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
      IsEqualIID(iid, __uuidof(IRibbonCallback))) {
    *out = static_cast<IRibbonCallback*>(&callbacks_);
  } else if (IsEqualIID(iid, __uuidof(IDTExtensibility2))) {
    *out = static_cast<IDTExtensibility2*>(&extensibility_);
  } else if (IsEqualIID(iid, __uuidof(IRibbonExtensibility))) {
    *out = static_cast<IRibbonExtensibility*>(&ribbonXml_);
  } else if (IsEqualIID(iid, __uuidof(ICustomTaskPaneConsumer))) {
    *out = static_cast<ICustomTaskPaneConsumer*>(&consumer_);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ConnectObject::Release() {
  const ULONG left = --references_;
  if (left == 0) {
    // What goes with the connection may call back.
    constexpr ULONG kGoing = 0x40000000;
    references_ = kGoing;
    const std::unique_ptr<ConnectObject> last(this);
  }
  return left;
}

// ---- _IDTExtensibility2
// --------------------------------------------------------------------------

HRESULT ExtensibilityFace::OnConnection(IDispatch* application, int, IDispatch*, SAFEARRAY**) {
  return WithoutThrowing([&] { return connect().OnConnection(WrapDispatch(application)); });
}

HRESULT ExtensibilityFace::OnDisconnection(int, SAFEARRAY**) {
  return WithoutThrowing([&] { return connect().OnDisconnection(); });
}

HRESULT ExtensibilityFace::OnAddInsUpdate(SAFEARRAY**) {
  return WithoutThrowing([&] { return connect().OnAddInsUpdate(); });
}

HRESULT ExtensibilityFace::OnStartupComplete(SAFEARRAY**) {
  return WithoutThrowing([&] { return connect().OnStartupComplete(); });
}

HRESULT ExtensibilityFace::OnBeginShutdown(SAFEARRAY**) {
  return WithoutThrowing([&] { return connect().OnBeginShutdown(); });
}

DISPID ExtensibilityFace::OwnId(const wchar_t* name) const {
  for (std::size_t i = 0; i < kLifeNames.size(); ++i) {
    if (SameName(name, kLifeNames[i])) return static_cast<DISPID>(i) + kOnConnection;
  }
  return DISPID_UNKNOWN;
}

bool ExtensibilityFace::InvokeOwn(DISPID id, DISPPARAMS& params, VARIANT*, HRESULT& code) {
  switch (id) {
    case kOnConnection:
      code = connect().OnConnection(ObjectAt(params, 0));
      return true;
    case kOnDisconnection:
      code = OnDisconnection(0, nullptr);
      return true;
    case kOnAddInsUpdate:
      code = OnAddInsUpdate(nullptr);
      return true;
    case kOnStartupComplete:
      code = OnStartupComplete(nullptr);
      return true;
    case kOnBeginShutdown:
      code = OnBeginShutdown(nullptr);
      return true;
    default:
      return false;
  }
}

// ---- IRibbonExtensibility
// ------------------------------------------------------------------------

HRESULT RibbonXmlFace::GetCustomUI(BSTR, BSTR* xml) {
  if (xml == nullptr) return E_POINTER;
  *xml = nullptr;
  return WithoutThrowing([&] {
    return connect().GetCustomUI([xml](const Wide& text) {
      *xml = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()),
                               static_cast<UINT>(text.size()));
      return *xml != nullptr;
    });
  });
}

DISPID RibbonXmlFace::OwnId(const wchar_t* name) const {
  return SameName(name, L"GetCustomUI") ? kGetCustomUI : DISPID_UNKNOWN;
}

bool RibbonXmlFace::InvokeOwn(DISPID id, DISPPARAMS&, VARIANT* result, HRESULT& code) {
  if (id != kGetCustomUI) return false;
  BSTR xml = nullptr;
  code = GetCustomUI(nullptr, &xml);
  if (result != nullptr && SUCCEEDED(code)) {
    result->vt = VT_BSTR;
    result->bstrVal = xml;
  } else {
    SysFreeString(xml);
  }
  return true;
}

// ---- ICustomTaskPaneConsumer
// ---------------------------------------------------------------------

HRESULT ConsumerFace::CTPFactoryAvailable(IDispatch* factory) {
  return WithoutThrowing([&] { return connect().CTPFactoryAvailable(WrapPaneFactory(factory)); });
}

DISPID ConsumerFace::OwnId(const wchar_t* name) const {
  return SameName(name, L"CTPFactoryAvailable") ? kCTPFactoryAvailable : DISPID_UNKNOWN;
}

bool ConsumerFace::InvokeOwn(DISPID id, DISPPARAMS& params, VARIANT*, HRESULT& code) {
  if (id != kCTPFactoryAvailable) return false;
  code = CTPFactoryAvailable(DispatchOf(ObjectAt(params, 0).get()));
  return true;
}

// ---- IRibbonCallback
// -----------------------------------------------------------------------------

namespace {

using Click = ResultCode (CConnect::*)(AutomationObject*);

HRESULT Clicked(CConnect& connect, Click click, IDispatch* control) {
  return WithoutThrowing([&] { return (connect.*click)(WrapDispatch(control).get()); });
}

}  // namespace

HRESULT CallbackFace::TranslateFullDocClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::TranslateFullDocClicked, control);
}
HRESULT CallbackFace::TranslateCurrentSlideClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::TranslateCurrentSlideClicked, control);
}
HRESULT CallbackFace::ShowPaneClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::ShowPaneClicked, control);
}
HRESULT CallbackFace::GlossaryClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::GlossaryClicked, control);
}
HRESULT CallbackFace::InstructionClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::InstructionClicked, control);
}
HRESULT CallbackFace::AccountClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::AccountClicked, control);
}
HRESULT CallbackFace::SupportClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::SupportClicked, control);
}
HRESULT CallbackFace::TranslateSelectionClicked(IDispatch* control) {
  return Clicked(connect(), &CConnect::TranslateSelectionClicked, control);
}

HRESULT CallbackFace::GetImage(IDispatch* control, IDispatch** image) {
  if (image == nullptr) return E_POINTER;
  *image = nullptr;
  return WithoutThrowing([&]() -> HRESULT {
    const std::array arguments = {
        RibbonArgument{VT_DISPATCH, Variant::Object(WrapDispatch(control))}};
    Variant result;
    ResultCode code = kMemberNotFound;
    connect().Invoke(ribbon::kGetImage, arguments, &result, code);
    if (SUCCEEDED(code) && result.hasObject()) {
      *image = ComPtr<IDispatch>(DispatchOf(result.object().get())).Detach();
    }
    return code;
  });
}

}  // namespace quillmarch::addin
