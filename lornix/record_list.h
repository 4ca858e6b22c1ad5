// Growing the lists that cross the border: a count, and that many pointers behind it.
#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace lornix {

/// Makes room for more pointers in a PathList or a SidList. The room grows by half of itself, so that a list of
/// many is not copied for each of them; how much there is, the runtime knows of the block.
/// @param list   a malloc block, or null for a new list.
/// @param first  where its pointers start, from its own first byte.
/// @return the list, which may have moved; null when there is not enough memory, and the list is then as it was.
template <class List>
List* withRoomFor(List* list, std::size_t first, std::size_t more)
{
    const std::size_t count = list == nullptr ? 0 : static_cast<std::size_t>(list->count);
    constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
    if (more > kMost - count) {
        return nullptr;
    }
    const std::size_t capacity = list == nullptr ? 0 : (_msize(list) - first) / sizeof(void*);
    if (list != nullptr && capacity >= count + more) {
        return list;
    }
    constexpr std::size_t kLeast = 8;
    const std::size_t wanted = std::max({count + more, capacity + capacity / 2, kLeast});
    auto* grown = static_cast<List*>(std::realloc(list, first + wanted * sizeof(void*)));
    if (grown != nullptr && list == nullptr) {
        grown->count = 0;
    }
    return grown;
}

} // namespace lornix
