// What differs between compilers, for declarations.
#pragma once

// The layout of a polymorphic class is the compiler's own affair, but all of ours lay it out alike and say so when asked;
// only the asking is warned about.
#if defined(__clang__)
#define CORVANE_LAYOUT_CHECKS_BEGIN                                                                          \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Winvalid-offsetof\"")
#define CORVANE_LAYOUT_CHECKS_END _Pragma("clang diagnostic pop")
#elif defined(__GNUC__)
#define CORVANE_LAYOUT_CHECKS_BEGIN                                                                          \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Winvalid-offsetof\"")
#define CORVANE_LAYOUT_CHECKS_END _Pragma("GCC diagnostic pop")
#else
#define CORVANE_LAYOUT_CHECKS_BEGIN
#define CORVANE_LAYOUT_CHECKS_END
#endif

// A function of its own: a compiler that traps faults sees those of functions that are called, and in its own frame only
// what touches memory in a way it knows of.
#define CORVANE_NOINLINE __declspec(noinline)
