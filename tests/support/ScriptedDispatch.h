// A host object of COM for tests: answers what it was told to answer and remembers what it was
// asked. Windows only.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace quillmarch::addin::test {

class ScriptedDispatch final : public IDispatch {
 public:
  struct Call {
    DISPID id;
    WORD flags;
    std::vector<VARTYPE> types;  // of the arguments, in the order of the block
    bool namedPut;
  };
  using Answer = std::function<HRESULT(const DISPPARAMS&, VARIANT*)>;

  void Member(const std::wstring& name, DISPID id, Answer answer) {
    ids_[name] = id;
    answers_[id] = std::move(answer);
  }
  void Value(const std::wstring& name, DISPID id, const VARIANT& value) {
    Member(name, id, [value](const DISPPARAMS&, VARIANT* result) {
      VARIANT copy = value;
      return result == nullptr ? S_OK : VariantCopy(result, &copy);
    });
  }
  // Another object, or this one, for a published interface.
  void Interface(const IID& iid, IDispatch* object) { interfaces_.emplace_back(iid, object); }
  // The identity of another object, whose parts this one and that one then are.
  void IdentityOf(IUnknown* other) { identity_ = other; }

  // What an answer of DISP_E_EXCEPTION holds.
  void ExceptionCode(HRESULT code) { exceptionCode_ = code; }

  const std::vector<Call>& calls() const { return calls_; }
  ULONG references() const { return references_; }
  int lookUps() const { return lookUps_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid == IID_IUnknown) {
      IUnknown* const identity = identity_ != nullptr ? identity_ : this;
      identity->AddRef();
      *out = identity;
      return S_OK;
    }
    if (iid == IID_IDispatch) {
      AddRef();
      *out = static_cast<IDispatch*>(this);
      return S_OK;
    }
    for (const auto& [known, object] : interfaces_) {
      if (known == iid) {
        object->AddRef();
        *out = object;
        return S_OK;
      }
    }
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override { return --references_; }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* ids) override {
    ++lookUps_;
    const auto found = ids_.find(names[0]);
    ids[0] = found == ids_.end() ? DISPID_UNKNOWN : found->second;
    return found == ids_.end() ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    Call call = {id, flags, {}, params->cNamedArgs == 1};
    for (UINT i = 0; i < params->cArgs; ++i) call.types.push_back(params->rgvarg[i].vt);
    if (call.namedPut) call.namedPut = params->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
    calls_.push_back(call);
    const auto found = answers_.find(id);
    if (found == answers_.end()) return DISP_E_MEMBERNOTFOUND;
    const HRESULT code = found->second(*params, result);
    if (code == DISP_E_EXCEPTION) {
      exception->bstrDescription = SysAllocString(L"It went wrong.");
      exception->scode = exceptionCode_;
    }
    return code;
  }

 private:
  ULONG references_ = 1;
  int lookUps_ = 0;
  HRESULT exceptionCode_ = S_OK;
  IUnknown* identity_ = nullptr;
  std::map<std::wstring, DISPID> ids_;
  std::map<DISPID, Answer> answers_;
  std::vector<std::pair<IID, IDispatch*>> interfaces_;
  std::vector<Call> calls_;
};

}  // namespace quillmarch::addin::test
