// The lists that cross the border: a count, and that many pointers to malloc blocks behind it.
#pragma once

#include "store/lornix.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace lornix {

inline wchar_t** pointersOf(PathList* list)
{
    return list->paths;
}
inline void** pointersOf(SidList* list)
{
    return list->sids;
}

/// Makes room for more pointers. The room grows by half of itself, so that a list of many is not copied for each of
/// them; how much there is, the runtime knows of the block.
/// @param list  a malloc block, or null for a new list.
/// @return the list, which may have moved; null when there is not enough memory, and the list is then as it was.
template <class List>
List* withRoomFor(List* list, std::size_t more)
{
    constexpr std::size_t kHead = sizeof(List) - sizeof(void*);
    const std::size_t count = list == nullptr ? 0 : static_cast<std::size_t>(list->count);
    constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
    if (more > kMost - count) {
        return nullptr;
    }
    const std::size_t capacity = list == nullptr ? 0 : (_msize(list) - kHead) / sizeof(void*);
    if (list != nullptr && capacity >= count + more) {
        return list;
    }
    constexpr std::size_t kLeast = 8;
    const std::size_t wanted = std::max({count + more, capacity + capacity / 2, kLeast});
    auto* grown = static_cast<List*>(std::realloc(list, kHead + wanted * sizeof(void*)));
    if (grown != nullptr && list == nullptr) {
        grown->count = 0;
    }
    return grown;
}

/// @param block  the list's from now on; null is left out.
/// @return the list, which may have moved.
template <class List>
List* appended(List* list, void* block)
{
    List* const grown = block == nullptr ? nullptr : withRoomFor(list, 1);
    if (grown == nullptr) {
        std::free(block);
        return list;
    }
    auto** pointers = pointersOf(grown);
    pointers[grown->count] = static_cast<std::remove_pointer_t<decltype(pointers)>>(block);
    ++grown->count;
    return grown;
}

/// Releases a list, which may be null, with its blocks.
template <class List>
void releaseList(List* list)
{
    for (std::int32_t i = 0; list != nullptr && i < list->count; ++i) {
        std::free(pointersOf(list)[i]);
    }
    std::free(list);
}

} // namespace lornix
