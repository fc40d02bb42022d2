// The one interface in front of every host object, with the two roads on which a host can be
// asked. It mirrors IDispatch, so that on Windows a thin adapter serves it and in the headless host
// each model object answers from one table of members.
//
// Late-bound road: IdOfName, then Invoke with the id found.
// Typed road: QueryTyped for a published interface by its IID, then Invoke on what came back with
// the interface's fixed DISPID. Vtable slots of host objects are never used.
//
// Host thread only, all of it.
#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

class Variant;

struct InterfaceId {
  std::uint32_t data1;
  std::uint16_t data2;
  std::uint16_t data3;
  std::uint8_t data4[8];
  friend constexpr bool operator==(const InterfaceId&, const InterfaceId&) = default;
};

using DispId = std::int32_t;

// Flags of Invoke, as IDispatch numbers them.
inline constexpr std::uint16_t kInvokeMethod = 1;
inline constexpr std::uint16_t kInvokeGet = 2;
inline constexpr std::uint16_t kInvokeMethodOrGet = 3;
inline constexpr std::uint16_t kInvokePut = 4;

inline constexpr DispId kDispIdPropertyPut = -3;

// Arguments of one call, last argument first, as IDispatch wants them. In a put the new value is
// the first entry and is named by kDispIdPropertyPut.
struct ParamBlock {
  std::span<const Variant> reversedArgs;
  bool namedPut = false;
};

class AutomationObject;

// A counted reference to a host object, released at the end of its scope.
class ObjectRef {
 public:
  ObjectRef() = default;
  // Takes a new reference.
  explicit ObjectRef(AutomationObject* object);
  ObjectRef(const ObjectRef& other);
  ObjectRef(ObjectRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ObjectRef& operator=(ObjectRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ObjectRef();

  // Takes over a reference that the caller already holds.
  static ObjectRef Adopt(AutomationObject* object) {
    ObjectRef ref;
    ref.object_ = object;
    return ref;
  }

  AutomationObject* get() const { return object_; }
  AutomationObject* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  void Reset() { *this = ObjectRef(); }

 private:
  AutomationObject* object_ = nullptr;
};

class AutomationObject {
 public:
  virtual void AddRef() = 0;
  virtual void Release() = 0;

  // The id of a member by its name (hosts compare names without regard to case); kUnknownName when
  // the object has no such member.
  virtual ResultCode IdOfName(WideView name, DispId& id) = 0;

  // One call. `result` may be null; on failure it is left empty. May throw what a host throws:
  // callers go through AutoInvoke or the typed helpers, which turn that into kFail.
  virtual ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                            Variant* result) = 0;

  // The object as one of the published interfaces; kNoInterface when it does not answer to it.
  virtual ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) = 0;

  // Equal for two references to one host object while both live. 0 when the host gives none.
  virtual std::uintptr_t Identity() = 0;

 protected:
  ~AutomationObject() = default;
};

inline ObjectRef::ObjectRef(AutomationObject* object) : object_(object) {
  if (object_ != nullptr) object_->AddRef();
}
inline ObjectRef::ObjectRef(const ObjectRef& other) : ObjectRef(other.object_) {}
inline ObjectRef::~ObjectRef() {
  if (object_ != nullptr) object_->Release();
}

}  // namespace quillmarch
