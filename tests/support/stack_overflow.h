// Uses up the stack.
#pragma once

/// Overflows the stack of this thread. What the thread has guaranteed to handlers is left of it, as the platform
/// does it; the runtimes of the tests leave one page, whatever was guaranteed.
void overflowStack();

/// What a host does that wants to handle overflows itself.
void guaranteeStackForHandlers();
