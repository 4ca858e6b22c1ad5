#include "bench/support/sid_table.h"

#include "bench/support/account_sid.h"

#include <bit>
#include <cstddef>

namespace {

// A list has room for the next power of two, so that a walk of many objects is not about copying lists.
std::size_t bytesOf(unsigned count)
{
    return offsetof(SidList, sids) + std::bit_ceil(count) * sizeof(void*);
}

SidList* append(SidList* list, void* sid)
{
    const auto count = static_cast<unsigned>(list->count);
    if (std::has_single_bit(count)) {
        list = static_cast<SidList*>(std::realloc(list, bytesOf(count + 1)));
    }
    list->sids[count] = sid;
    ++list->count;
    return list;
}

SidList* appendAll(SidList* destination, SidList* source)
{
    for (int i = 0; source != nullptr && i < source->count; ++i) {
        destination = append(destination, AccountSid::copy(source->sids[i]));
    }
    return destination;
}

} // namespace

SidList* listOfAccounts(unsigned first, int count)
{
    const auto size = static_cast<unsigned>(count);
    auto* list = static_cast<SidList*>(std::malloc(bytesOf(size)));
    list->count = count;
    for (unsigned i = 0; i < size; ++i) {
        const AccountSid sid(first + i);
        list->sids[i] = AccountSid::copy(&sid);
    }
    return list;
}

void releaseAccounts(SidList* list)
{
    for (int i = 0; list != nullptr && i < list->count; ++i) {
        std::free(list->sids[i]);
    }
    std::free(list);
}

StoreTable sidTable()
{
    StoreTable table = emptyTable();
    table.sidDup = AccountSid::copy;
    table.sidcmp = AccountSid::compare;
    table.createEmptySidList = [] {
        return listOfAccounts(0, 0);
    };
    table.freeSidList = releaseAccounts;
    table.appendToSidList = append;
    table.appendToSidList2 = appendAll;
    return table;
}
