#include "frame/list_sort.h"

#include "frame/column_keys.h"
#include "frame/message_box.h"
#include "frame/sort_key.h"

namespace {

// One order for all lists of the process: a host that sorts two lists by the same column in turn has always
// seen the second one sorted the other way round.
int sortColumn = -1;
bool sortDescending = false;

struct Sorting {
    HWND owner; ///< of the message box after a fault
    ColumnKeys<SortKey> keys;
};

int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM context)
{
    const auto& sorting = *reinterpret_cast<const Sorting*>(context);
    const SortKey* const a = sorting.keys.of(first);
    const SortKey* const b = sorting.keys.of(second);
    if (a == nullptr || b == nullptr) {
        showMessage(sorting.owner, "Sort failed unexpectedly", captions::kError);
        return 0;
    }
    return compareSortKeys(*a, *b, sortDescending);
}

} // namespace

void sortRows(const CListCtrl& list, int column)
{
    sortDescending = column == sortColumn && !sortDescending;
    sortColumn = column;
    const Sorting sorting{list.topChild(), {list, column, sortKey}};
    list.send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&sorting), reinterpret_cast<LPARAM>(&compareRows));
}
