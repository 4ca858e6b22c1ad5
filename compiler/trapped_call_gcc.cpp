// GCC has no keywords for what the platform raises. The platform's own handler reads a table that stands behind a
// function: from where to where a call is watched, whom to ask, where to go on.
#include "compiler/trapped_call.h"

#if defined(__GNUC__) && !defined(__clang__)

namespace trapped_call {
namespace {

// What the watched functions below have on their stack. The platform hands its address to whom it asks.
struct Frame {
    void* homeOfArguments[4];
    void (*asked)();
    void* context;
};
static_assert(sizeof(Frame) == 48);

} // namespace
} // namespace trapped_call

extern "C" {
bool corvaneRunTrapped(trapped_call::Step call, void* callContext, trapped_call::Filter filter,
                       void* filterContext);
void corvaneRunThen(trapped_call::Step call, void* callContext, trapped_call::Step then, void* thenContext);

[[gnu::used]] LONG corvaneAskFilter(EXCEPTION_POINTERS* raised, const trapped_call::Frame* frame)
{
    return reinterpret_cast<trapped_call::Filter>(frame->asked)(raised, frame->context);
}

[[gnu::used]] void corvaneUnwound(BOOL, const trapped_call::Frame* frame)
{
    reinterpret_cast<trapped_call::Step>(frame->asked)(frame->context);
}
}

// Both have the same prologue, of which the frame above tells; 8 bytes keep the stack aligned. The instruction behind a
// call belongs to what is watched: that is where it returns to.
asm(R"(
    .text
    .globl  corvaneRunTrapped
    .def    corvaneRunTrapped; .scl 2; .type 32; .endef
    .seh_proc corvaneRunTrapped
corvaneRunTrapped:
    subq    $56, %rsp
    .seh_stackalloc 56
    .seh_endprologue
    .seh_handler __C_specific_handler, @except
    movq    %r8, 32(%rsp)
    movq    %r9, 40(%rsp)
    movq    %rcx, %rax
    movq    %rdx, %rcx
.LcorvaneTrappedBegin:
    callq   *%rax
    nop
.LcorvaneTrappedEnd:
    movl    $1, %eax
    addq    $56, %rsp
    retq
.LcorvaneTrappedRaised:
    xorl    %eax, %eax
    addq    $56, %rsp
    retq
    .seh_handlerdata
    .long   1
    .rva    .LcorvaneTrappedBegin, .LcorvaneTrappedEnd, corvaneAskFilter, .LcorvaneTrappedRaised
    .text
    .seh_endproc

    .globl  corvaneRunThen
    .def    corvaneRunThen; .scl 2; .type 32; .endef
    .seh_proc corvaneRunThen
corvaneRunThen:
    subq    $56, %rsp
    .seh_stackalloc 56
    .seh_endprologue
    .seh_handler __C_specific_handler, @unwind
    movq    %r8, 32(%rsp)
    movq    %r9, 40(%rsp)
    movq    %rcx, %rax
    movq    %rdx, %rcx
.LcorvaneThenBegin:
    callq   *%rax
    nop
.LcorvaneThenEnd:
    movq    40(%rsp), %rcx
    callq   *32(%rsp)
    nop
    addq    $56, %rsp
    retq
    .seh_handlerdata
    .long   1
    .rva    .LcorvaneThenBegin, .LcorvaneThenEnd, corvaneUnwound
    .long   0
    .text
    .seh_endproc
)");

namespace trapped_call {

bool run(Step call, void* callContext, Filter filter, void* filterContext)
{
    return corvaneRunTrapped(call, callContext, filter, filterContext);
}

void runThen(Step call, void* callContext, Step then, void* thenContext)
{
    corvaneRunThen(call, callContext, then, thenContext);
}

} // namespace trapped_call

#endif
