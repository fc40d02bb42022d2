#include "support/FaultyHost.h"

#include <memory>
#include <utility>
#include <vector>

namespace quillmarch::addin::test {

namespace {

class FaultyObject final : public AutomationObject {
 public:
  FaultyObject(FaultyHost& host, ObjectRef inner, bool typed)
      : host_(host), inner_(std::move(inner)), typed_(typed) {}
  virtual ~FaultyObject() = default;

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  ResultCode IdOfName(WideView name, DispId& id) override { return inner_->IdOfName(name, id); }

  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override {
    if (host_.FailsNow(typed_, inner_->Identity())) return kHostException;
    std::vector<Variant> args(params.reversedArgs.begin(), params.reversedArgs.end());
    for (Variant& arg : args) Unwrap(arg);
    const ResultCode code = inner_->Invoke(id, flags, ParamBlock{args, params.namedPut}, result);
    if (result != nullptr && result->hasObject()) {
      *result = Variant::Object(host_.Wrap(result->object()));
    }
    return code;
  }

  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) override {
    ObjectRef typed;
    const ResultCode code = inner_->QueryTyped(iid, typed);
    if (Succeeded(code)) out = host_.Wrap(typed, true);
    return code;
  }

  std::uintptr_t Identity() override { return inner_->Identity(); }

 private:
  static void Unwrap(Variant& arg) {
    if (!arg.hasObject()) return;
    const auto* wrapped = dynamic_cast<FaultyObject*>(arg.object().get());
    if (wrapped != nullptr) arg = Variant::Object(wrapped->inner_);
  }

  FaultyHost& host_;
  ObjectRef inner_;
  bool typed_;
  int references_ = 1;
};

}  // namespace

ObjectRef FaultyHost::Wrap(const ObjectRef& object, bool typed) {
  if (!object) return {};
  return ObjectRef::Adopt(std::make_unique<FaultyObject>(*this, object, typed).release());
}

std::int64_t FaultyHost::countedCalls() const {
  switch (mode_) {
    case FaultMode::kLateBound:
      return lateBound_;
    case FaultMode::kTyped:
      return typed_;
    default:
      return lateBound_ + typed_;
  }
}

bool FaultyHost::FailsNow(bool typed, std::uintptr_t identity) {
  ++(typed ? typed_ : lateBound_);
  const bool echoes = std::exchange(echo_, false) && typed != echoTyped_ &&
                      identity == echoIdentity_ && identity != 0;
  if (echoes) return true;
  const bool counted = mode_ == FaultMode::kBoth || (mode_ == FaultMode::kTyped) == typed;
  if (!counted || failAt_ == 0 || countedCalls() != failAt_) return false;
  failed_ = true;
  echo_ = mode_ == FaultMode::kBoth;
  echoTyped_ = typed;
  echoIdentity_ = identity;
  return true;
}

}  // namespace quillmarch::addin::test
