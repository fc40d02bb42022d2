#include "foundation/automation/Automation.h"

#include <array>
#include <atomic>
#include <cassert>
#include <utility>
#include <vector>

#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"

namespace quillmarch {

namespace {

constexpr int kUnreadableReports = 8;

std::atomic<bool (*)()> HostThreadCheck{nullptr};
std::atomic<int> UnreadableReports{0};

void AssertHostThread() {
#ifndef NDEBUG
  bool (*const onHostThread)() = HostThreadCheck.load(std::memory_order_relaxed);
  assert(onHostThread == nullptr || onHostThread());
#endif
}

ResultCode FindId(AutomationObject* object, WideView member, DispId& id) {
  AssertHostThread();
  if (object == nullptr) return kPointer;
  try {
    return object->IdOfName(member, id);
  } catch (...) {
    return kFail;
  }
}

// Arguments in their natural order.
ResultCode InvokeOrdered(AutomationObject* object, DispId id, std::uint16_t flags,
                         std::span<const Variant> args, Variant* out) {
  if (args.size() < 2) return AutoInvoke(object, id, flags, ParamBlock{args, false}, out);
  const std::vector<Variant> reversed(args.rbegin(), args.rend());
  return AutoInvoke(object, id, flags, ParamBlock{reversed, false}, out);
}

ResultCode GetByName(AutomationObject* object, WideView member, std::uint16_t flags,
                     std::span<const Variant> args, Variant& out) {
  DispId id = 0;
  const ResultCode found = FindId(object, member, id);
  if (Failed(found)) {
    out.Clear();
    return found;
  }
  return InvokeOrdered(object, id, flags, args, &out);
}

bool TakeObject(Variant& value, ObjectRef& out) {
  if (!value.hasObject()) return false;
  out = value.takeObject();
  return true;
}

bool GetObjectByName(AutomationObject* object, WideView member, std::span<const Variant> args,
                     ObjectRef& out) {
  // The object may be reachable only through `out`, and the old one goes before the read.
  const ObjectRef keep = out.get() == object ? out : ObjectRef();
  out.Reset();
  Variant value;
  return Succeeded(AutoGet(object, member, args, value)) && TakeObject(value, out);
}

ResultCode AskTyped(AutomationObject* object, const InterfaceId& iid, ObjectRef& typed) {
  AssertHostThread();
  if (object == nullptr) return kPointer;
  try {
    const ResultCode asked = object->QueryTyped(iid, typed);
    if (Failed(asked)) return asked;
  } catch (...) {
    return kFail;
  }
  return typed ? kOk : kNoInterface;
}

bool GetMemberObject(AutomationObject* object, const MemberId& member,
                     std::span<const Variant> args, ObjectRef& out, ResultCode* code) {
  const ObjectRef keep = out.get() == object ? out : ObjectRef();
  out.Reset();
  Variant value;
  const ResultCode result = CallMember(object, member, args, value);
  if (code != nullptr) *code = result;
  return Succeeded(result) && TakeObject(value, out);
}

bool PutMember(AutomationObject* object, const MemberId& member, const Variant& value,
               ResultCode* code) {
  ObjectRef typed;
  ResultCode result = AskTyped(object, member.iid, typed);
  if (Succeeded(result)) {
    result = AutoInvoke(typed.get(), member.id, kInvokePut, ParamBlock{{&value, 1}, true}, nullptr);
  }
  if (code != nullptr) *code = result;
  return Succeeded(result);
}

}  // namespace

void SetHostThreadCheck(bool (*onHostThread)()) {
  HostThreadCheck.store(onHostThread, std::memory_order_relaxed);
}

ResultCode AutoInvoke(AutomationObject* object, DispId id, std::uint16_t flags,
                      const ParamBlock& params, Variant* out) {
  AssertHostThread();
  if (object == nullptr) {
    if (out != nullptr) out->Clear();
    return kPointer;
  }
  ResultCode code = kFail;
  // Not into `out` at once: it may hold the reference through which the object lives.
  Variant result;
  try {
    code = object->Invoke(id, flags, params, out != nullptr ? &result : nullptr);
  } catch (...) {
    code = kFail;
  }
  if (Failed(code)) result.Clear();
  if (out != nullptr) *out = std::move(result);
  return code;
}

ResultCode AutoGet(AutomationObject* object, WideView member, Variant& out) {
  return GetByName(object, member, kInvokeMethodOrGet, {}, out);
}

ResultCode AutoGet(AutomationObject* object, WideView member, std::span<const Variant> args,
                   Variant& out) {
  return GetByName(object, member, kInvokeMethodOrGet, args, out);
}

ResultCode AutoGetProperty(AutomationObject* object, WideView member, Variant& out) {
  return GetByName(object, member, kInvokeGet, {}, out);
}

Variant AutoGetPath(AutomationObject* object, std::initializer_list<WideView> members) {
  Variant value = Variant::Object(ObjectRef(object));
  for (const WideView member : members) {
    if (!value.hasObject()) return {};
    const ObjectRef step = value.takeObject();
    if (Failed(AutoGet(step.get(), member, value))) return {};
  }
  return value;
}

bool AutoGetObject(AutomationObject* object, WideView member, ObjectRef& out) {
  return GetObjectByName(object, member, {}, out);
}

bool AutoGetObjectAt(AutomationObject* object, WideView member, std::int32_t index,
                     ObjectRef& out) {
  const std::array args = {Variant::I4(index)};
  return GetObjectByName(object, member, args, out);
}

ResultCode AutoGetAt2(AutomationObject* object, WideView member, std::int32_t first,
                      std::int32_t second, Variant& out) {
  const std::array args = {Variant::I4(first), Variant::I4(second)};
  return AutoGet(object, member, args, out);
}

ResultCode AutoPut(AutomationObject* object, WideView member, const Variant& value) {
  DispId id = 0;
  const ResultCode found = FindId(object, member, id);
  if (Failed(found)) return found;
  return AutoInvoke(object, id, kInvokePut, ParamBlock{{&value, 1}, true}, nullptr);
}

ResultCode AutoPutText(AutomationObject* object, WideView text) {
  return AutoPut(object, u"Text", Variant::Text(Wide(text)));
}

ResultCode CallMember(AutomationObject* object, const MemberId& member, Variant& out) {
  return CallMember(object, member, {}, out);
}

ResultCode CallMember(AutomationObject* object, const MemberId& member,
                      std::span<const Variant> args, Variant& out) {
  ObjectRef typed;
  const ResultCode asked = AskTyped(object, member.iid, typed);
  if (Failed(asked)) {
    out.Clear();
    return asked;
  }
  return InvokeOrdered(typed.get(), member.id, kInvokeMethodOrGet, args, &out);
}

bool Get(AutomationObject* object, const Member<std::int32_t>& member, std::int32_t& out) {
  Variant value;
  return Succeeded(CallMember(object, member, value)) && VariantToWhole(value, out);
}

bool Get(AutomationObject* object, const Member<float>& member, float& out) {
  Variant value;
  return Succeeded(CallMember(object, member, value)) && VariantToSingle(value, out);
}

bool Get(AutomationObject* object, const Member<bool>& member, bool& out) {
  Variant value;
  if (Failed(CallMember(object, member, value))) return false;
  out = VariantToFlag(value);
  return true;
}

bool Get(AutomationObject* object, const Member<Wide>& member, Wide& out) {
  Variant value;
  if (Failed(CallMember(object, member, value)) || value.type() != VariantType::kText) return false;
  out = value.takeText();
  return true;
}

bool Get(AutomationObject* object, const Member<ObjectRef>& member, ObjectRef& out,
         ResultCode* code) {
  return GetMemberObject(object, member, {}, out, code);
}

bool GetAt(AutomationObject* object, const Member<ObjectRef>& member, std::int32_t index,
           ObjectRef& out) {
  const std::array args = {Variant::I4(index)};
  return GetMemberObject(object, member, args, out, nullptr);
}

bool GetAt(AutomationObject* object, const Member<ObjectRef>& member, std::int32_t first,
           std::int32_t second, ObjectRef& out) {
  const std::array args = {Variant::I4(first), Variant::I4(second)};
  return GetMemberObject(object, member, args, out, nullptr);
}

bool Put(AutomationObject* object, const Member<std::int32_t>& member, std::int32_t value,
         ResultCode* code) {
  return PutMember(object, member, Variant::I4(value), code);
}

bool Put(AutomationObject* object, const Member<float>& member, float value, ResultCode* code) {
  return PutMember(object, member, Variant::R4(value), code);
}

bool Put(AutomationObject* object, const Member<Wide>& member, WideView value, ResultCode* code) {
  return PutMember(object, member, Variant::Text(Wide(value)), code);
}

bool AnswersTo(AutomationObject* object, const InterfaceId& iid) {
  ObjectRef typed;
  return Succeeded(AskTyped(object, iid, typed));
}

ResultCode ShapeItem(AutomationObject* shapes, std::int32_t index, ObjectRef& out) {
  const ObjectRef keep = out.get() == shapes ? out : ObjectRef();
  out.Reset();
  const std::array args = {Variant::I4(index)};
  Variant value;
  const ResultCode code = AutoGet(shapes, u"Item", args, value);
  if (Failed(code)) return code;
  if (!value.hasObject()) return kFail;
  const ObjectRef item = value.takeObject();
  if (!AnswersTo(item.get(), ppt::kShape)) return kNoInterface;
  out = item;
  return kOk;
}

void ForgetUnreadableReports() {
  UnreadableReports.store(0, std::memory_order_relaxed);
}

void ReportUnreadable(const char16_t* member) {
  std::atomic<int>& reports = UnreadableReports;
  // Checked first, so that the counter does not move once it is full.
  if (reports.load(std::memory_order_relaxed) >= kUnreadableReports) return;
  const int number = reports.fetch_add(1, std::memory_order_relaxed) + 1;
  if (number > kUnreadableReports) return;
  Wide line = u"PptCtrl shape ";
  line += member == nullptr ? u"?" : member;
  line += u" unreadable";
  if (number == kUnreadableReports) line += u" (further failures not logged)";
  LogLine(line);
}

}  // namespace quillmarch
