// What the four interfaces of the connection share.
#include <windows.h>

#include <oleauto.h>

#include <vector>

#include "foundation/automation/ComValues.h"
#include "foundation/system/WinText.h"
#include "shell/RibbonCalls.h"
#include "shell/windows/ConnectObject.h"
#include "shell/windows/TypeLibrary.h"

namespace quillmarch::addin {

namespace {

// A value that is not read stays out: the type word says all that is known of it.
RibbonArgument ArgumentOf(const VARIANT& value) {
  RibbonArgument argument;
  argument.vt = value.vt;
  if ((value.vt & (VT_BYREF | VT_ARRAY)) == 0) argument.value = FromCom(value);
  return argument;
}

void LookUpInTypeLibrary(const Wide& name, DispId& id) {
  ComPtr<ITypeInfo> type;
  if (FAILED(LoadOwnTypeInfo(__uuidof(IRibbonCallback), type.put()))) return;
  std::wstring text = ToWinText(name);
  LPOLESTR names[] = {text.data()};
  MEMBERID found = MEMBERID_NIL;
  if (SUCCEEDED(type->GetIDsOfNames(names, 1, &found))) id = found;
}

HRESULT InvokeRibbon(ConnectObject& owner, DISPID id, LCID, WORD flags, DISPPARAMS& params,
                     VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  std::vector<RibbonArgument> arguments;
  for (UINT i = 0; i < params.cArgs; ++i) arguments.push_back(ArgumentOf(params.rgvarg[i]));
  Variant value;
  ResultCode code = kOk;
  if (owner.connect().Invoke(id, arguments, result != nullptr ? &value : nullptr, code)) {
    if (result != nullptr && SUCCEEDED(code)) {
      const ResultCode given = ToCom(value, *result);
      if (Failed(given)) return given;
    }
    return code;
  }
  ComPtr<ITypeInfo> type;
  const HRESULT loaded = LoadOwnTypeInfo(__uuidof(IRibbonCallback), type.put());
  if (FAILED(loaded)) return loaded;
  return type->Invoke(owner.callbacks(), id, flags, &params, result, exception, badArgument);
}

}  // namespace

template <typename Interface>
HRESULT ConnectFace<Interface>::QueryInterface(REFIID iid, void** out) {
  return owner_.QueryInterface(iid, out);
}

template <typename Interface>
ULONG ConnectFace<Interface>::AddRef() {
  return owner_.AddRef();
}

template <typename Interface>
ULONG ConnectFace<Interface>::Release() {
  return owner_.Release();
}

template <typename Interface>
CConnect& ConnectFace<Interface>::connect() const {
  return owner_.connect();
}

template <typename Interface>
HRESULT ConnectFace<Interface>::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

template <typename Interface>
HRESULT ConnectFace<Interface>::GetTypeInfo(UINT index, LCID, ITypeInfo** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return WithoutThrowing([&] { return LoadOwnTypeInfo(__uuidof(IRibbonCallback), out); });
}

template <typename Interface>
HRESULT ConnectFace<Interface>::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                              DISPID* ids) {
  return WithoutThrowing([&]() -> HRESULT {
    if (names != nullptr && ids != nullptr && count == 1 && names[0] != nullptr) {
      ids[0] = OwnId(names[0]);
      if (ids[0] != DISPID_UNKNOWN) return S_OK;
    }
    std::vector<Wide> asked;
    const bool given = names != nullptr && ids != nullptr;
    for (UINT i = 0; given && i < count; ++i) {
      asked.push_back(names[i] == nullptr ? Wide() : FromWinText(names[i]));
    }
    std::vector<DispId> found(asked.size(), DISPID_UNKNOWN);
    const ResultCode code = RibbonIdsOfNames(asked, found, &LookUpInTypeLibrary);
    for (std::size_t i = 0; i < found.size(); ++i) ids[i] = found[i];
    return code;
  });
}

template <typename Interface>
HRESULT ConnectFace<Interface>::Invoke(DISPID id, REFIID, LCID locale, WORD flags,
                                       DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                       UINT* badArgument) {
  // The host may release the connection inside the call.
  const ComPtr<IUnknown> self(this);
  if (result != nullptr) VariantInit(result);
  DISPPARAMS none = {};
  DISPPARAMS& block = params == nullptr ? none : *params;
  return WithoutThrowing([&]() -> HRESULT {
    HRESULT code = S_OK;
    if (InvokeOwn(id, block, result, code)) return code;
    return InvokeRibbon(owner_, id, locale, flags, block, result, exception, badArgument);
  });
}

template class ConnectFace<IDTExtensibility2>;
template class ConnectFace<IRibbonExtensibility>;
template class ConnectFace<IRibbonCallback>;
template class ConnectFace<ICustomTaskPaneConsumer>;

}  // namespace quillmarch::addin
