// The members of one class of objects: each a row with its published name, its DISPID and a lambda
// that reads, calls or sets it. Both roads into an object read the same table.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"

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
  // A whole number; `otherwise` when the argument was left out. False when it is not a number.
  bool Whole(std::size_t index, std::int32_t otherwise, std::int32_t& out) const;

 private:
  std::span<const Variant> reversed_;
};

// Numbers as hosts convert them; false for what is not a number.
bool WholeOf(const Variant& value, std::int32_t& out);
bool RealOf(const Variant& value, double& out);
Variant TriState(bool value);  // 32-bit -1 or 0
Variant CountOf(std::size_t count);
Variant SingleOf(double value);

// What a member gives: a value, or the code of its failure. A null object is a failure.
class Answer {
 public:
  Answer(ResultCode code) : code_(code) {}
  Answer(Variant value) : value_(std::move(value)) {}
  Answer(Wide text) : value_(Variant::Text(std::move(text))) {}
  Answer(ObjectRef object)
      : code_(object ? kOk : kHostException), value_(Variant::Object(std::move(object))) {}

  ResultCode code() const { return code_; }
  const Variant& value() const { return value_; }
  Variant TakeValue() { return std::move(value_); }

 private:
  ResultCode code_ = kOk;
  Variant value_;
};

struct Member {
  WideView name;  // as published; compared without regard to ASCII case
  DispId id = 0;
  Answer (*get)(ModelObject&, Args) = nullptr;  // and methods
  ResultCode (*put)(ModelObject&, const Variant&) = nullptr;
};

// A row of T's table. The lambdas capture nothing and take the object first:
// `[](T& self) -> Answer`, with a second parameter `Args` where there are arguments, and
// `[](T& self, const Variant& value) -> ResultCode` for a put.
template <typename T>
struct MemberOf : Member {
  template <typename Get>
  MemberOf(WideView published, DispId number, Get) {
    name = published;
    id = number;
    get = [](ModelObject& object, Args args) -> Answer {
      if constexpr (std::is_invocable_v<Get, T&, Args>) {
        return Get{}(static_cast<T&>(object), args);
      } else {
        return Get{}(static_cast<T&>(object));
      }
    };
  }
  template <typename Get, typename Put>
  MemberOf(WideView published, DispId number, Get getter, Put)
      : MemberOf(published, number, getter) {
    put = [](ModelObject& object, const Variant& value) -> ResultCode {
      return Put{}(static_cast<T&>(object), value);
    };
  }
};

template <typename T>
using Members = std::vector<MemberOf<T>>;

// A class's rows and the published interfaces it answers to.
class MemberTable {
 public:
  template <typename T>
  static MemberTable Of(std::initializer_list<InterfaceId> interfaces, const Members<T>& members) {
    return MemberTable(interfaces, std::vector<Member>(members.begin(), members.end()));
  }

  const Member* ByName(WideView name) const;
  const Member* ById(DispId id) const;
  bool AnswersTo(const InterfaceId& iid) const;

 private:
  MemberTable(std::initializer_list<InterfaceId> interfaces, std::vector<Member> members);

  std::vector<InterfaceId> interfaces_;
  std::vector<Member> byName_;  // sorted by lower-case name
  std::vector<Wide> names_;     // lower case, in the order of byName_
  std::vector<std::pair<DispId, std::size_t>> byId_;
};

}  // namespace quillmarch::host::model
