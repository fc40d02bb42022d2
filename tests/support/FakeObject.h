// The objects of FakeHost: one table of members for each class, read by both roads.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"
#include "support/FakeHost.h"

namespace quillmarch::addin::test {

using FakeArgs = std::vector<Variant>;  // natural order; in a put the one new value

struct FakeMember {
  Wide name;
  DispId id = 0;
  std::function<ResultCode(FakeHost&, const std::shared_ptr<FakeNode>&, const FakeArgs&, Variant&)>
      get;
  std::function<ResultCode(const std::shared_ptr<FakeNode>&, const Variant&)> put;
};

struct FakeClass {
  std::string label;
  InterfaceId iid;
  bool stableIdentity = false;
  std::vector<FakeMember> members;
};

class FakeObject final : public AutomationObject {
 public:
  static ObjectRef Make(FakeHost& host, const FakeClass& kind, std::shared_ptr<FakeNode> node);

  FakeObject(FakeHost& host, const FakeClass& kind, std::shared_ptr<FakeNode> node,
             std::uintptr_t identity, bool typed);
  virtual ~FakeObject();

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  ResultCode IdOfName(WideView name, DispId& id) override;
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override;
  ResultCode QueryTyped(const InterfaceId& iid, ObjectRef& out) override;
  std::uintptr_t Identity() override { return identity_; }

 private:
  FakeHost& host_;
  const FakeClass& kind_;
  std::shared_ptr<FakeNode> node_;
  std::uintptr_t identity_;
  bool typed_;
  int references_ = 1;
};

}  // namespace quillmarch::addin::test
