// Blocks of the shared C runtime, as they are handed across modules.
#pragma once

#include <cstdlib>
#include <memory>

struct CFree {
    void operator()(void* block) const { std::free(block); }
};

/// Owns a malloc block until it is released into other hands.
template <class T>
using CBlock = std::unique_ptr<T, CFree>;
