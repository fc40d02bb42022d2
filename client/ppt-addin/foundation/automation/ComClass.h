// The base of our own COM objects: counts references and finds interfaces. Windows sources only.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "foundation/automation/ComPtr.h"
#include "foundation/system/LiveCounts.h"

namespace quillmarch {

// Runs what a COM caller asked for; no exception may reach it.
template <typename Work>
HRESULT WithoutThrowing(Work work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

// Self is final and derives from this. It is made with one reference, the maker's; the last Release
// destroys it. The first interface is the object's identity. An interface that another one
// derives from is answered to by Self::FindBase, if Self has it.
template <typename Self, typename... Interfaces>
class ComClass : public Interfaces... {
 public:
  ComClass(const ComClass&) = delete;
  ComClass& operator=(const ComClass&) = delete;

  template <typename... Args>
  static ComPtr<Self> Make(Args&&... args) {
    return ComPtr<Self>::Adopt(std::make_unique<Self>(std::forward<Args>(args)...).release());
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    void* found = nullptr;
    (Take<Interfaces>(iid, found), ...);
    if (found == nullptr && IsEqualIID(iid, IID_IUnknown)) found = First();
    if constexpr (requires(Self & self) { self.FindBase(iid); }) {
      if (found == nullptr) found = static_cast<Self*>(this)->FindBase(iid);
    }
    *out = found;
    if (found == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      // Whoever takes a reference while the object goes must not destroy it a second time.
      references_ = kGoing;
      if constexpr (requires(Self & self) { self.FinalRelease(); }) {
        static_cast<Self*>(this)->FinalRelease();
      }
      const std::unique_ptr<Self> last(static_cast<Self*>(this));
    }
    return left;
  }

 protected:
  ComClass() = default;
  ~ComClass() = default;

 private:
  static constexpr ULONG kGoing = 0x40000000;

  template <typename Interface>
  void Take(REFIID iid, void*& found) {
    if (found == nullptr && IsEqualIID(iid, __uuidof(Interface))) {
      found = static_cast<Interface*>(this);
    }
  }
  template <typename Interface, typename... Others>
  static Interface* FirstOf(Interface* first, Others*...) {
    return first;
  }
  void* First() { return FirstOf(static_cast<Interfaces*>(this)...); }

  std::atomic<ULONG> references_{1};
};

}  // namespace quillmarch
