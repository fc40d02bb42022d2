#include "windows/host/AddinHost.h"

#include <windows.h>

#include <oleauto.h>

#include <regex>

#include "windows/host/Slots.h"

namespace quillmarch::addin::winhost {

namespace {

constexpr IID kExtensibility = {
    0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
constexpr IID kRibbonExtensibility = {0x000C0396, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kTaskPaneConsumer = {0x000C033E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Places behind IDispatch's seven.
constexpr std::size_t kOnConnection = 7;
constexpr std::size_t kOnDisconnection = 8;
constexpr std::size_t kOnAddInsUpdate = 9;
constexpr std::size_t kOnStartupComplete = 10;
constexpr std::size_t kOnBeginShutdown = 11;
constexpr std::size_t kGetCustomUI = 7;
constexpr std::size_t kCTPFactoryAvailable = 7;

constexpr int kConnectStartup = 1;
constexpr int kDisconnectHostShutdown = 0;

std::wstring AttributeOf(const std::wstring& element, const std::wstring& name) {
  std::wsmatch match;
  const std::wregex pattern(L"\\s" + name + L"=\"([^\"]*)\"");
  return std::regex_search(element, match, pattern) ? match[1].str() : std::wstring();
}

}  // namespace

AddinHost::AddinHost()
    : factory(ComPtr<PaneFactory>::Adopt(new PaneFactory)),
      ribbon(ComPtr<RibbonUi>::Adopt(new RibbonUi)),
      custom_(SafeArrayCreateVector(VT_VARIANT, 0, 1)) {}

AddinHost::~AddinHost() {
  factory->DestroyPanes();
  connect_.Reset();
  SafeArrayDestroy(custom_);
}

HRESULT AddinHost::Load() {
  CLSID id;
  const HRESULT code = CLSIDFromProgID(L"PptAddin.Connect", &id);
  if (FAILED(code)) return code;
  return CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                          reinterpret_cast<void**>(connect_.put()));
}

template <typename... Args>
HRESULT AddinHost::Call(const IID& iid, std::size_t place, Args... args) {
  const auto asked = connect_.As<IUnknown>(iid);
  return asked ? CallSlot(asked.get(), place, args...) : E_NOINTERFACE;
}

HRESULT AddinHost::OnConnection(IDispatch* application) {
  return Call(kExtensibility, kOnConnection, application, kConnectStartup,
              static_cast<IDispatch*>(nullptr), &custom_);
}

HRESULT AddinHost::CTPFactoryAvailable() {
  return Call(kTaskPaneConsumer, kCTPFactoryAvailable, static_cast<IDispatch*>(factory.get()));
}

HRESULT AddinHost::GetCustomUI() {
  BSTR id = SysAllocString(L"Microsoft.PowerPoint.Presentation");
  BSTR text = nullptr;
  const HRESULT code = Call(kRibbonExtensibility, kGetCustomUI, id, &text);
  SysFreeString(id);
  if (FAILED(code)) return code;
  xml.assign(text, SysStringLen(text));
  SysFreeString(text);
  onLoad = AttributeOf(xml, L"onLoad");
  buttons.clear();
  const std::wregex element(L"<button[^>]*>");
  for (std::wsregex_iterator at(xml.begin(), xml.end(), element), end; at != end; ++at) {
    const std::wstring button = at->str();
    buttons[AttributeOf(button, L"id")] = {AttributeOf(button, L"onAction"),
                                           AttributeOf(button, L"tag")};
  }
  return S_OK;
}

HRESULT AddinHost::InvokeByName(const std::wstring& name, VARIANT& argument, VARIANT* result) {
  const auto dispatch = connect_.As<IDispatch>(IID_IDispatch);
  if (!dispatch) return E_NOINTERFACE;
  std::wstring text = name;
  LPOLESTR names[] = {text.data()};
  DISPID id = DISPID_UNKNOWN;
  HRESULT code = dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(code)) return code;
  DISPPARAMS params = {&argument, nullptr, 1, 0};
  EXCEPINFO exception = {};
  code = dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, result,
                          &exception, nullptr);
  return code;
}

HRESULT AddinHost::OnRibbonLoad() {
  VARIANT argument = ObjectValue(ribbon.get());
  const HRESULT code = InvokeByName(onLoad, argument, nullptr);
  VariantClear(&argument);
  return code;
}

HRESULT AddinHost::Click(const std::wstring& button, IDispatch* context) {
  const auto found = buttons.find(button);
  if (found == buttons.end()) return DISP_E_UNKNOWNNAME;
  const auto control =
      ComPtr<RibbonControl>::Adopt(new RibbonControl(button, found->second.tag, context));
  VARIANT argument = ObjectValue(control.get());
  const HRESULT code = InvokeByName(found->second.onAction, argument, nullptr);
  VariantClear(&argument);
  return code;
}

std::wstring AddinHost::Label(const std::wstring& control, const wchar_t* callback) {
  const auto object = ComPtr<RibbonControl>::Adopt(new RibbonControl(control, L"", nullptr));
  VARIANT argument = ObjectValue(object.get());
  VARIANT result = {};
  std::wstring label;
  if (SUCCEEDED(InvokeByName(callback, argument, &result)) && result.vt == VT_BSTR) {
    label.assign(result.bstrVal, SysStringLen(result.bstrVal));
  }
  VariantClear(&argument);
  VariantClear(&result);
  return label;
}

HRESULT AddinHost::OnStartupComplete() {
  return Call(kExtensibility, kOnStartupComplete, &custom_);
}

HRESULT AddinHost::OnBeginShutdown() {
  return Call(kExtensibility, kOnBeginShutdown, &custom_);
}

HRESULT AddinHost::OnDisconnection() {
  return Call(kExtensibility, kOnDisconnection, kDisconnectHostShutdown, &custom_);
}

HRESULT AddinHost::Start(IDispatch* application) {
  HRESULT code = Load();
  if (SUCCEEDED(code)) code = OnConnection(application);
  if (SUCCEEDED(code)) code = CTPFactoryAvailable();
  if (SUCCEEDED(code)) code = GetCustomUI();
  if (SUCCEEDED(code)) code = OnRibbonLoad();
  if (SUCCEEDED(code)) code = Call(kExtensibility, kOnAddInsUpdate, &custom_);
  if (SUCCEEDED(code)) code = OnStartupComplete();
  return code;
}

void AddinHost::Stop() {
  OnBeginShutdown();
  factory->DestroyPanes();
  OnDisconnection();
  Unload();
}

}  // namespace quillmarch::addin::winhost
