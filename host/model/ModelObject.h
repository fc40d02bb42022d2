// The base of all objects of the model: counted, and answering both roads from one static table of
// members.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"
#include "host/model/Session.h"

namespace quillmarch::host::model {

class ModelObject;

// Arguments of one call in their natural order.
class Args {
 public:
  explicit Args(std::span<const Variant> reversed) : reversed_(reversed) {}
  std::size_t Count() const { return reversed_.size(); }
  const Variant& operator[](std::size_t index) const {
    return reversed_[reversed_.size() - 1 - index];
  }
  // A whole number; `otherwise` when the argument was left out. False when it is no number.
  bool Whole(std::size_t index, std::int32_t otherwise, std::int32_t& out) const;

 private:
  std::span<const Variant> reversed_;
};

// A number as hosts convert it; false for what is none.
bool WholeOf(const Variant& value, std::int32_t& out);
bool RealOf(const Variant& value, double& out);
Variant TriState(bool value);  // 32-bit -1 or 0

struct Member {
  WideView name;  // as published; compared without regard to ASCII case
  DispId id = 0;
  ResultCode (*get)(ModelObject&, Args, Variant&) = nullptr;  // and methods
  ResultCode (*put)(ModelObject&, const Variant&) = nullptr;
};

// The members of one class and the published interfaces it answers to.
class MemberTable {
 public:
  MemberTable(std::initializer_list<InterfaceId> interfaces, std::initializer_list<Member> members)
      : MemberTable(interfaces, std::span(members.begin(), members.size())) {}
  MemberTable(std::initializer_list<InterfaceId> interfaces, std::span<const Member> members);
  const Member* ByName(WideView name) const;
  const Member* ById(DispId id) const;
  bool AnswersTo(const InterfaceId& iid) const;
  std::span<const Member> members() const { return byName_; }

 private:
  std::vector<InterfaceId> interfaces_;
  std::vector<Member> byName_;  // sorted by lower-case name
  std::vector<Wide> names_;     // lower case, what byName_ refers to
  std::vector<std::pair<DispId, std::size_t>> byId_;
};

class ModelObject : public AutomationObject {
 public:
  ModelObject(const ModelObject&) = delete;
  ModelObject& operator=(const ModelObject&) = delete;
  virtual ~ModelObject() = default;

  void AddRef() final { ++references_; }
  void Release() final;
  ResultCode IdOfName(WideView name, DispId& id) final;
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) final;
  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) final;
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(this); }

 protected:
  explicit ModelObject(SessionRef session) : session_(std::move(session)) {}
  virtual const MemberTable& Table() const = 0;

  const SessionRef& session() const { return session_; }

 private:
  void CheckThread() const;

  std::uint32_t references_ = 1;
  SessionRef session_;
};

// A new object; the reference is the only one.
template <typename T, typename... A>
ObjectRef Make(A&&... args) {
  return ObjectRef::Adopt(std::make_unique<T>(std::forward<A>(args)...).release());
}

template <typename T, typename... A>
ResultCode Give(Variant& out, A&&... args) {
  out = Variant::Object(Make<T>(std::forward<A>(args)...));
  return kOk;
}

// Member functions as entries of a table.
template <auto>
struct Getter;
template <typename T, ResultCode (T::*M)(Args, Variant&)>
struct Getter<M> {
  static ResultCode Call(ModelObject& object, Args args, Variant& out) {
    return (static_cast<T&>(object).*M)(args, out);
  }
};
template <auto>
struct Putter;
template <typename T, ResultCode (T::*M)(const Variant&)>
struct Putter<M> {
  static ResultCode Call(ModelObject& object, const Variant& value) {
    return (static_cast<T&>(object).*M)(value);
  }
};

}  // namespace quillmarch::host::model
