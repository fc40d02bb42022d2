#include "foundation/automation/ComObject.h"

#include <oleauto.h>

#include <memory>
#include <string>

#include "foundation/automation/Automation.h"
#include "foundation/automation/ComPtr.h"
#include "foundation/automation/ComValues.h"
#include "foundation/system/GuardedCall.h"
#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

constexpr LCID kUserLocale = LOCALE_USER_DEFAULT;
static_assert(kUserLocale == 0x400);

IID ToIid(const InterfaceId& iid) {
  IID out = {iid.data1, iid.data2, iid.data3, {}};
  for (std::size_t i = 0; i < sizeof iid.data4; ++i) out.Data4[i] = iid.data4[i];
  return out;
}

// Runs `call` where an exception of the host cannot get past.
template <typename Call>
HRESULT Guarded(Call call) {
  struct Made {
    Call& call;
    HRESULT code;
  } made{call, E_FAIL};
  const bool returned = GuardedCall(
      [](void* argument) {
        auto& of = *static_cast<Made*>(argument);
        of.code = of.call();
      },
      &made);
  return returned ? made.code : E_FAIL;
}

class ComObject final : public AutomationObject {
 public:
  explicit ComObject(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) const std::unique_ptr<ComObject> last(this);
  }
  ResultCode IdOfName(WideView name, DispId& id) override;
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override;
  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) override;
  std::uintptr_t Identity() override;

  // `exceptionCode` is the one that came with an exception of the host, else 0.
  ResultCode Call(DispId id, std::uint16_t flags, const ParamBlock& params, Variant* result,
                  ResultCode& exceptionCode);

  IDispatch* dispatch() const { return dispatch_.get(); }

 private:
  ComPtr<IDispatch> dispatch_;
  std::uintptr_t identity_ = 0;  // asked for at first use
  std::uint32_t references_ = 1;
  LiveCount<LiveKind::kHostReference> live_;
};

ResultCode ComObject::IdOfName(WideView name, DispId& id) {
  std::wstring text = ToWinText(name);
  LPOLESTR names[] = {text.data()};
  DISPID found = DISPID_UNKNOWN;
  const HRESULT code =
      Guarded([&] { return dispatch_->GetIDsOfNames(IID_NULL, names, 1, kUserLocale, &found); });
  if (SUCCEEDED(code)) id = found;
  return code;
}

ResultCode ComObject::Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                             Variant* result) {
  ResultCode ignored = kOk;
  return Call(id, flags, params, result, ignored);
}

ResultCode ComObject::Call(DispId id, std::uint16_t flags, const ParamBlock& params,
                           Variant* result, ResultCode& exceptionCode) {
  exceptionCode = kOk;
  if (result != nullptr) result->Clear();
  ComArguments arguments(params.reversedArgs);
  if (Failed(arguments.code())) return arguments.code();
  DISPID putId = DISPID_PROPERTYPUT;
  DISPPARAMS block = {arguments.data(), nullptr, arguments.count(), 0};
  if (params.namedPut) {
    block.rgdispidNamedArgs = &putId;
    block.cNamedArgs = 1;
  }
  ComVariant value;
  EXCEPINFO exception = {};
  UINT badArgument = 0;
  const HRESULT code = Guarded([&] {
    return dispatch_->Invoke(id, IID_NULL, kUserLocale, flags, &block,
                             result != nullptr ? value.get() : nullptr, &exception, &badArgument);
  });
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  if (code == DISP_E_EXCEPTION) exceptionCode = exception.scode;
  if (SUCCEEDED(code) && result != nullptr) *result = FromCom(value.value());
  return code;
}

// The published interfaces are dual, so what the object answers with has IDispatch's own methods.
ResultCode ComObject::QueryTyped(const InterfaceId& iid, ObjectRef& out) {
  const IID wanted = ToIid(iid);
  void* raw = nullptr;
  const HRESULT code = Guarded([&] { return dispatch_->QueryInterface(wanted, &raw); });
  if (FAILED(code)) return code;
  const auto typed = ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(raw));
  if (typed.get() == dispatch_.get()) {
    out = ObjectRef(this);
  } else {
    out = WrapDispatch(typed.get());
  }
  return out ? kOk : kNoInterface;
}

std::uintptr_t ComObject::Identity() {
  if (identity_ == 0) {
    void* raw = nullptr;
    if (SUCCEEDED(Guarded([&] { return dispatch_->QueryInterface(IID_IUnknown, &raw); }))) {
      identity_ = reinterpret_cast<std::uintptr_t>(
          ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(raw)).get());
    }
  }
  return identity_;
}

}  // namespace

ObjectRef WrapDispatch(IDispatch* dispatch) {
  if (dispatch == nullptr) return {};
  return ObjectRef::Adopt(std::make_unique<ComObject>(ComPtr<IDispatch>(dispatch)).release());
}

IDispatch* DispatchOf(AutomationObject* object) {
  const auto* const wrapped = dynamic_cast<const ComObject*>(object);
  return wrapped == nullptr ? nullptr : wrapped->dispatch();
}

ResultCode InvokeForOwnCode(AutomationObject* object, DispId id, std::uint16_t flags,
                            const ParamBlock& params, Variant& result) {
  auto* const wrapped = dynamic_cast<ComObject*>(object);
  if (wrapped == nullptr) return AutoInvoke(object, id, flags, params, &result);
  ResultCode exceptionCode = kOk;
  ResultCode code = kFail;
  try {
    code = wrapped->Call(id, flags, params, &result, exceptionCode);
  } catch (...) {
    result.Clear();
  }
  return Failed(exceptionCode) ? exceptionCode : code;
}

}  // namespace quillmarch
