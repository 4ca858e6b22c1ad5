// Calls out of which a processor fault, or whatever else the platform raises, can be seen.
#pragma once

#include <windows.h>

namespace trapped_call {

using Step = void (*)(void* context);

/// What becomes of something that was raised: EXCEPTION_EXECUTE_HANDLER ends the call, EXCEPTION_CONTINUE_SEARCH lets
/// it go on to the caller. It is asked on top of the stack on which it was raised. Language exceptions come by as well.
using Filter = LONG (*)(EXCEPTION_POINTERS* raised, void* context);

/// Runs a call. What ends it skips the destructors of a processor fault's own frames.
/// @return whether it came to its end.
bool run(Step call, void* callContext, Filter filter, void* filterContext);

/// Runs a call, then another: after its end, or when the stack is unwound because of what it has raised.
void runThen(Step call, void* callContext, Step then, void* thenContext);

} // namespace trapped_call
