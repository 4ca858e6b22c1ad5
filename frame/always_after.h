// Work that is to be followed by something, whatever it raises.
#pragma once

#include <type_traits>

namespace always_after_detail {
void run(void (*call)(void*), void* context, void (*after)(void*), void* afterContext);
}

/// Runs work, and then `after`. Whatever the work raises goes on to the caller, a processor fault too, once `after`
/// has run; that is then on top of the stack on which it was raised, so it is to be simple.
template <class Work, class After>
void runAlwaysAfter(Work&& work, After&& after)
{
    always_after_detail::run(
        [](void* context) { (*static_cast<std::remove_reference_t<Work>*>(context))(); }, &work,
        [](void* context) { (*static_cast<std::remove_reference_t<After>*>(context))(); }, &after);
}
