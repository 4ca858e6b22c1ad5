#include "frame/list_sort.h"

#include "frame/column_reader.h"
#include "frame/data_table.h"
#include "frame/message_box.h"
#include "frame/sort_rank.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

// QUIRK: one order for all lists of the process. Of two lists sorted by the same column in turn, the second one comes
// out the other way round. ListSortTest.AllListsShareColumnAndOrder
int sortColumn = -1;
bool sortDescending = false;

/// The column that is sorted by, read once. The platform hands a comparison two item data; to find both rows again
/// and to read both texts each time would make the sort quadratic.
struct Column {
    Column(const CListCtrl& list, int column)
        : reader(list, column)
    {
        const auto rows = static_cast<std::size_t>(list.rowCount());
        data.resize(rows);
        keys.resize(rows);
        for (std::size_t row = 0; row < rows; ++row) {
            const wchar_t* const text = reader.read(static_cast<int>(row), data[row]);
            keys[row] = text != nullptr ? sortKey(text) : SortKey{nullptr};
            readable = readable && text != nullptr;
        }
    }

    ColumnReader reader; ///< keeps the texts
    std::vector<LPARAM> data;
    std::vector<SortKey> keys; ///< without a text where reading it raised a fault
    bool readable = true;
};

/// A sort that compares small numbers: a comparison touches little, and there are many.
class RankedSort {
public:
    RankedSort(const Column& column, const std::vector<std::uint32_t>& ranks)
        : m_ranks(ranks.size())
    {
        for (std::size_t row = 0; row < ranks.size(); ++row) {
            m_ranks.add(column.data[row], {ranks[row], true});
        }
    }

    int compare(LPARAM first, LPARAM second) const
    {
        return compareRanks(m_ranks.of(first).value, m_ranks.of(second).value, sortDescending);
    }

private:
    struct Rank {
        std::uint32_t value = 0;
        bool taken = false;
    };
    DataTable<Rank> m_ranks;
};

/// A sort by the keys themselves, where some are numbers and some texts, or some could not be read.
class KeySort {
public:
    KeySort(const Column& column, HWND owner)
        : m_owner(owner)
        , m_keys(column.keys.size())
    {
        for (std::size_t row = 0; row < column.keys.size(); ++row) {
            m_keys.add(column.data[row], {&column.keys[row], true});
        }
    }

    int compare(LPARAM first, LPARAM second) const
    {
        const SortKey* const a = m_keys.of(first).key;
        const SortKey* const b = m_keys.of(second).key;
        if (a == nullptr || b == nullptr || a->text == nullptr || b->text == nullptr) {
            showMessage(m_owner, "Sort failed unexpectedly", captions::kError);
            return 0;
        }
        return compareSortKeys(*a, *b, sortDescending);
    }

private:
    struct Place {
        const SortKey* key = nullptr;
        bool taken = false;
    };
    HWND m_owner; ///< of the message box after a fault
    DataTable<Place> m_keys;
};

template <class Sort>
int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM sort)
{
    return reinterpret_cast<const Sort*>(sort)->compare(first, second);
}

template <class Sort>
void run(const CListCtrl& list, const Sort& sort)
{
    list.send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&sort), reinterpret_cast<LPARAM>(&compareRows<Sort>));
}

} // namespace

void sortRows(const CListCtrl& list, int column)
{
    sortDescending = column == sortColumn && !sortDescending;
    sortColumn = column;
    const Column read(list, column);
    std::vector<std::uint32_t> ranks(read.keys.size());
    if (read.readable && rankKeys(read.keys, ranks)) {
        run(list, RankedSort(read, ranks));
    } else {
        run(list, KeySort(read, list.topChild()));
    }
}
