// The base of all objects of the model: counted, and answering both roads from its class's one
// table of members. An object holds an address (deck, page, shape, range of text), never a pointer
// into a parsed part, so it stays good while parts come and go.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/automation/AutomationObject.h"
#include "host/model/MemberTable.h"
#include "host/model/Session.h"

namespace quillmarch::host::model {

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

}  // namespace quillmarch::host::model
