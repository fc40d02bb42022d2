// A host object for tests that answers what it was told to answer, on both roads, and remembers
// what it was asked.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "foundation/automation/Automation.h"

namespace quillmarch::addin::test {

// One Invoke as the object got it.
struct ScriptedCall {
  DispId id = 0;
  std::uint16_t flags = 0;
  std::vector<Variant> reversedArgs;
  bool namedPut = false;
};

class ScriptedObject final : public AutomationObject {
 public:
  using Answer = std::function<ResultCode(const ScriptedCall&, Variant&)>;

  // The caller holds the one reference.
  static ObjectRef Make(ScriptedObject*& made) {
    made = std::make_unique<ScriptedObject>().release();
    return ObjectRef::Adopt(made);
  }

  // A member by name and id: the late-bound road finds the id, the typed road knows it.
  void Member(WideView name, DispId id, Answer answer) {
    ids_[LowerAscii(name)] = id;
    answers_[id] = std::move(answer);
  }
  void Value(WideView name, DispId id, const Variant& value) {
    Member(name, id, [value](const ScriptedCall&, Variant& result) {
      result = value;
      return kOk;
    });
  }
  void Fails(WideView name, DispId id, ResultCode code) {
    Member(name, id, [code](const ScriptedCall&, Variant&) { return code; });
  }
  // Another object, or this one, as a published interface.
  void Interface(const InterfaceId& iid, const ObjectRef& object) {
    others_.emplace_back(iid, object);
  }
  void Interface(const InterfaceId& iid) { own_.push_back(iid); }
  void ThrowOnLookUp() { throwOnLookUp_ = true; }

  const std::vector<ScriptedCall>& calls() const { return calls_; }
  const std::vector<Wide>& lookUps() const { return lookUps_; }
  int references() const { return references_; }

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  ResultCode IdOfName(WideView name, DispId& id) override {
    lookUps_.emplace_back(name);
    if (throwOnLookUp_) throw std::bad_alloc();
    const auto found = ids_.find(LowerAscii(name));
    if (found == ids_.end()) return kUnknownName;
    id = found->second;
    return kOk;
  }
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override {
    calls_.push_back(
        {id, flags, {params.reversedArgs.begin(), params.reversedArgs.end()}, params.namedPut});
    const auto found = answers_.find(id);
    if (found == answers_.end()) return kMemberNotFound;
    Variant answer;
    const ResultCode code = found->second(calls_.back(), answer);
    if (result != nullptr) *result = std::move(answer);
    return code;
  }
  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) override {
    for (const InterfaceId& own : own_) {
      if (own == iid) {
        out = ObjectRef(this);
        return kOk;
      }
    }
    for (const auto& [id, object] : others_) {
      if (id == iid) {
        out = object;
        return kOk;
      }
    }
    return kNoInterface;
  }
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(this); }

 private:
  int references_ = 1;
  bool throwOnLookUp_ = false;
  std::map<Wide, DispId> ids_;
  std::map<DispId, Answer> answers_;
  std::vector<InterfaceId> own_;
  std::vector<std::pair<InterfaceId, ObjectRef>> others_;
  std::vector<ScriptedCall> calls_;
  std::vector<Wide> lookUps_;
};

}  // namespace quillmarch::addin::test
