// All that differs between compilers stands here.
#pragma once

#if defined(_MSC_VER) || defined(_WIN32)
#define CORVANE_NOINLINE __declspec(noinline)
#else
#define CORVANE_NOINLINE
#endif

// The layout of a polymorphic class is the compiler's own affair, but both of ours lay it out alike and say
// so when asked; only the asking is warned about.
#if defined(__clang__)
#define CORVANE_LAYOUT_CHECKS_BEGIN                                                                          \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Winvalid-offsetof\"")
#define CORVANE_LAYOUT_CHECKS_END _Pragma("clang diagnostic pop")
#else
#define CORVANE_LAYOUT_CHECKS_BEGIN
#define CORVANE_LAYOUT_CHECKS_END
#endif
