// Calls into the host. No call is retried; any exception that leaves a host call shows as kFail.
// Host thread only.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"

namespace quillmarch {

// What debug builds ask before every call into the host; a false answer ends the process. Null, the
// default, asks nothing. Whoever owns the host thread installs it.
void SetHostThreadCheck(bool (*onHostThread)());

// ---- Late-bound road -------------------------------------------------------------------------

// Finds the member by name, then invokes it with flags 3 (method or property get). `args` are in
// their natural order. A null object gives kPointer.
ResultCode AutoGet(AutomationObject* object, WideView member, Variant& out);
ResultCode AutoGet(AutomationObject* object, WideView member, std::span<const Variant> args,
                   Variant& out);

// The same with flags 2, property get only.
ResultCode AutoGetProperty(AutomationObject* object, WideView member, Variant& out);

// One Invoke by id; an exception that leaves it gives kFail, a null object kPointer.
ResultCode AutoInvoke(AutomationObject* object, DispId id, std::uint16_t flags,
                      const ParamBlock& params, Variant* out);

// Applies AutoGet for each name in turn. Between two steps the value must be a non-null object;
// else, and when a step fails, the result is empty. An empty list gives the object itself.
Variant AutoGetPath(AutomationObject* object, std::initializer_list<WideView> members);

// True when the member is a non-null object. `out` is released before the read, also when the read
// then fails.
bool AutoGetObject(AutomationObject* object, WideView member, ObjectRef& out);
bool AutoGetObjectAt(AutomationObject* object, WideView member, std::int32_t index, ObjectRef& out);
ResultCode AutoGetAt2(AutomationObject* object, WideView member, std::int32_t first,
                      std::int32_t second, Variant& out);

// Property put of one value.
ResultCode AutoPut(AutomationObject* object, WideView member, const Variant& value);
ResultCode AutoPutText(AutomationObject* object, WideView text);

// ---- Typed road ------------------------------------------------------------------------------

// A member of a published interface: IID and fixed DISPID.
struct MemberId {
  InterfaceId iid;
  DispId id;
};

// A member together with the type of its value: std::int32_t, float, bool (any flag of the host's),
// Wide, ObjectRef, or void for a method that gives nothing. A value of another type does not
// compile. The constants are in HostMembers.h.
template <class T>
struct Member : MemberId {};

// Asks the object for the interface, then invokes the member. A refusal of the interface is the
// call's failure. Arguments in natural order. For members that take arguments of their own.
ResultCode CallMember(AutomationObject* object, const MemberId& member, Variant& out);
ResultCode CallMember(AutomationObject* object, const MemberId& member,
                      std::span<const Variant> args, Variant& out);

// One value. False and `out` untouched when the call fails or the value cannot be read as the type.
bool Get(AutomationObject* object, const Member<std::int32_t>& member, std::int32_t& out);
bool Get(AutomationObject* object, const Member<float>& member, float& out);
bool Get(AutomationObject* object, const Member<bool>& member, bool& out);
bool Get(AutomationObject* object, const Member<Wide>& member, Wide& out);

// One object, all of them or the one at 1-based indexes. False when the call fails or gives no
// object; `out` is released before the read. `code` (may be null) gets the call's own result, which
// is also kOk or better when it succeeded and gave nothing.
bool Get(AutomationObject* object, const Member<ObjectRef>& member, ObjectRef& out,
         ResultCode* code = nullptr);
bool GetAt(AutomationObject* object, const Member<ObjectRef>& member, std::int32_t index,
           ObjectRef& out);
bool GetAt(AutomationObject* object, const Member<ObjectRef>& member, std::int32_t first,
           std::int32_t second, ObjectRef& out);

// Property put of one value. `code` (may be null) gets the call's own result.
bool Put(AutomationObject* object, const Member<std::int32_t>& member, std::int32_t value,
         ResultCode* code = nullptr);
bool Put(AutomationObject* object, const Member<float>& member, float value,
         ResultCode* code = nullptr);
bool Put(AutomationObject* object, const Member<Wide>& member, WideView value,
         ResultCode* code = nullptr);

// Whether the object answers to a published interface.
bool AnswersTo(AutomationObject* object, const InterfaceId& iid);

// ---- Values ----------------------------------------------------------------------------------

// Text is copied; empty and null give the empty string; numbers are put into words as VARIANT's
// own conversion does (general format, no locale); an object or an error gives the empty string.
Wide VariantToText(const Variant& value);
// I2 is sign-extended, I4 taken, anything else converted (rounded half to even; text read as a
// number). False when that is not possible.
bool VariantToWhole(const Variant& value, std::int32_t& out);
bool VariantToSingle(const Variant& value, float& out);
// Bool, I2 and I4 count, not zero is true; any other type is false.
bool VariantToFlag(const Variant& value);

// ---- Shapes ----------------------------------------------------------------------------------

// The 1-based item of a shape collection by the late-bound "Item"; the result must answer to
// Shape. kNoInterface when it does not, kFail when it is not an object. A caller that gets a
// failure then tries the typed Item.
ResultCode ShapeItem(AutomationObject* shapes, std::int32_t index, ObjectRef& out);

// Logs "PptCtrl shape <member> unreadable" for the first 8 failures in the process only.
// Null prints "?".
void ReportUnreadable(const char16_t* member);
// Begins that count anew. For tests, which share one process.
void ForgetUnreadableReports();

}  // namespace quillmarch
