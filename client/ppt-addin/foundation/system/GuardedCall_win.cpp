#include "foundation/system/GuardedCall.h"

#include <windows.h>

namespace quillmarch {

namespace {

// Programs mark the exceptions that they raise themselves by this bit of the code.
constexpr DWORD kRaisedByProgram = 0x20000000;
// What this compiler raises for a throw; its own handlers see to it.
constexpr DWORD kOwnThrow = 0x20474343;

}  // namespace

extern "C" {

int QuillmarchGuardedCall(void (*call)(void*), void* argument);

LONG QuillmarchGuardFilter(EXCEPTION_POINTERS* raised, void*) {
  const DWORD code = raised->ExceptionRecord->ExceptionCode;
  const bool foreign = (code & kRaisedByProgram) != 0 && code != kOwnThrow;
  return foreign ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}
}

// The frame that the system unwinds to. The compiler has no words for such a handler, so its table
// is written by hand: one scope, the call, with the filter above and the way out after it.
asm(R"(
        .text
        .globl  QuillmarchGuardedCall
        .seh_proc QuillmarchGuardedCall
QuillmarchGuardedCall:
        subq    $40, %rsp
        .seh_stackalloc 40
        .seh_endprologue
        movq    %rcx, %rax
        movq    %rdx, %rcx
Lquillmarch_guard_begin:
        call    *%rax
        nop
Lquillmarch_guard_end:
        movl    $1, %eax
        addq    $40, %rsp
        ret
Lquillmarch_guard_caught:
        xorl    %eax, %eax
        addq    $40, %rsp
        ret
        .seh_handler __C_specific_handler, @except
        .seh_handlerdata
        .long   1
        .rva    Lquillmarch_guard_begin, Lquillmarch_guard_end
        .rva    QuillmarchGuardFilter, Lquillmarch_guard_caught
        .text
        .seh_endproc
)");

bool GuardedCall(void (*call)(void*), void* argument) {
  return QuillmarchGuardedCall(call, argument) != 0;
}

}  // namespace quillmarch
