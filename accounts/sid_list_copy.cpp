#include "accounts/sid_list_copy.h"

#include "frame/platform.h"

#include <algorithm>

static_assert(offsetof(SidList, sids) == sizeof(std::size_t) && sizeof(void*) == sizeof(std::size_t));

namespace {

std::size_t wordsOf(void* sid)
{
    return sid != nullptr && IsValidSid(sid)
               ? (GetLengthSid(sid) + sizeof(std::size_t) - 1) / sizeof(std::size_t)
               : 0;
}

} // namespace

SidListCopy::SidListCopy(const SidList* list)
{
    if (list == nullptr) {
        return;
    }
    const std::size_t count = static_cast<std::size_t>(std::max(list->count, 0));
    std::size_t words = 1 + count;
    for (std::size_t i = 0; i < count; ++i) {
        words += wordsOf(list->sids[i]);
    }
    m_words.resize(words);
    SidList* const copy = get();
    copy->count = static_cast<int32_t>(count);
    std::size_t next = 1 + count;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size = wordsOf(list->sids[i]);
        if (size != 0 &&
            CopySid(static_cast<DWORD>(size * sizeof(std::size_t)), &m_words[next], list->sids[i]))
        {
            copy->sids[i] = &m_words[next];
            next += size;
        }
    }
}
