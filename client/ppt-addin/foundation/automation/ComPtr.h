// A counted pointer to a COM interface. Windows sources only.
#pragma once

#include <unknwn.h>

#include <utility>

namespace quillmarch {

template <typename T>
class ComPtr {
 public:
  ComPtr() = default;
  // Takes a new reference.
  explicit ComPtr(T* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() { Reset(); }

  // Takes over a reference that the caller already holds.
  static ComPtr Adopt(T* object) {
    ComPtr made;
    made.object_ = object;
    return made;
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  // The pointer is empty before the reference goes, so that a call back finds it so.
  void Reset() {
    if (T* const old = std::exchange(object_, nullptr)) old->Release();
  }
  // Where a call leaves a reference for its caller.
  T** put() {
    Reset();
    return &object_;
  }
  // Gives the reference away.
  T* Detach() { return std::exchange(object_, nullptr); }

  // The object as another interface; empty when it does not answer to it.
  template <typename U>
  ComPtr<U> As(const IID& iid) const {
    ComPtr<U> out;
    if (object_ == nullptr) return out;
    if (FAILED(object_->QueryInterface(iid, reinterpret_cast<void**>(out.put())))) {
      out.Detach();  // a failing call leaves no reference, whatever it wrote
    }
    return out;
  }

 private:
  T* object_ = nullptr;
};

}  // namespace quillmarch
