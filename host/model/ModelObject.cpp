#include "host/model/ModelObject.h"

#include <cassert>

#include "host/model/CallCount.h"

namespace quillmarch::host {

CallCount& HostCallCount() {
  static CallCount count;
  return count;
}

namespace model {

void ModelObject::CheckThread() const {
  assert(std::this_thread::get_id() == session_->thread && "host objects on the host thread only");
}

void ModelObject::Release() {
  if (--references_ == 0) std::unique_ptr<ModelObject> last(this);
}

ResultCode ModelObject::IdOfName(WideView name, DispId& id) {
  CheckThread();
  ++HostCallCount().nameLookups;
  const Member* const member = Table().ByName(name);
  if (member == nullptr) return kUnknownName;
  id = member->id;
  return kOk;
}

ResultCode ModelObject::Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                               Variant* result) {
  CheckThread();
  ++HostCallCount().invokes;
  if (result != nullptr) result->Clear();
  const Member* const member = Table().ById(id);
  if (member == nullptr) return kMemberNotFound;
  if ((flags & kInvokePut) != 0) {
    if (member->put == nullptr) return kMemberNotFound;
    if (params.reversedArgs.size() != 1) return kBadParamCount;
    return member->put(*this, params.reversedArgs[0]);
  }
  if (member->get == nullptr || (flags & kInvokeMethodOrGet) == 0) return kMemberNotFound;
  Answer answer = member->get(*this, Args(params.reversedArgs));
  if (Succeeded(answer.code()) && result != nullptr) *result = answer.TakeValue();
  return answer.code();
}

ResultCode ModelObject::QueryTyped(const InterfaceId& iid, ObjectRef& out) {
  CheckThread();
  if (!Table().AnswersTo(iid)) return kNoInterface;
  out = ObjectRef(this);
  return kOk;
}

}  // namespace model

}  // namespace quillmarch::host
