// The base of the host's own objects: IDispatch over ids and names, and nothing behind it. An
// add-in that calls a place in the table beyond it falls out of the process, which is the point:
// hosts' tables are not to be relied on.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>
#include <utility>
#include <vector>

namespace quillmarch::addin::winhost {

class HostObject : public IDispatch {
 public:
  virtual ~HostObject() { --Live(); }
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  // Objects of this kind that are alive.
  static long& Live() {
    static long live = 0;
    return live;
  }
  ULONG references() const { return references_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IDispatch) && iid != own_) {
      return E_NOINTERFACE;
    }
    AddRef();
    *out = static_cast<IDispatch*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) override {
    *out = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* ids) override {
    ids[0] = DISPID_UNKNOWN;
    for (const auto& [name, id] : names_) {
      if (CompareStringOrdinal(names[0], -1, name.c_str(), -1, TRUE) == CSTR_EQUAL) ids[0] = id;
    }
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
  }

 protected:
  explicit HostObject(const IID& own, std::vector<std::pair<std::wstring, DISPID>> names)
      : own_(own), names_(std::move(names)) {
    ++Live();
  }

 private:
  ULONG references_ = 1;
  IID own_;
  std::vector<std::pair<std::wstring, DISPID>> names_;
};

inline VARIANT TextValue(const std::wstring& text) {
  VARIANT value = {};
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return value;
}
inline VARIANT WholeValue(LONG whole) {
  VARIANT value = {};
  value.vt = VT_I4;
  value.lVal = whole;
  return value;
}
// Takes a reference for the value's owner.
inline VARIANT ObjectValue(IDispatch* object) {
  VARIANT value = {};
  value.vt = VT_DISPATCH;
  value.pdispVal = object;
  if (object != nullptr) object->AddRef();
  return value;
}

}  // namespace quillmarch::addin::winhost
