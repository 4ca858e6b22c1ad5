#include "frame/list_sort.h"

#include "frame/crash_guard.h"
#include "frame/list_ctrl.h"
#include "frame/message_box.h"
#include "frame/sort_key.h"

#include <cstdint>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace {

// One order for all lists of the process: a host that sorts two lists by the same column in turn has always
// seen the second one sorted the other way round.
int sortColumn = -1;
bool sortDescending = false;

/// The texts of the sorted column, read once before the sort: the required comparison finds both rows again and
/// reads both texts each time, which would make the sort quadratic.
class ColumnKeys {
public:
    ColumnKeys(const CListCtrl& list, int column)
        : m_owner(list.topChild())
    {
        const int rows = list.rowCount();
        std::size_t slots = 16;
        while (slots < static_cast<std::size_t>(rows) * 2) {
            slots *= 2;
        }
        m_slots.resize(slots);
        for (int row = 0; row < rows; ++row) {
            add(list, row, column);
        }
    }

    /// The platform's comparison result for two rows with the given item data.
    int compare(LPARAM first, LPARAM second) const
    {
        const Slot& a = m_slots[slotOf(first)];
        const Slot& b = m_slots[slotOf(second)];
        if (!a.readable || !b.readable) {
            showMessage(m_owner, "Sort failed unexpectedly", captions::kError);
            return 0;
        }
        return compareSortKeys(a.key, b.key, sortDescending);
    }

private:
    /// A row under its item data, in the table itself: a comparison touches one place per row.
    struct Slot {
        LPARAM data = 0;
        SortKey key;
        bool taken = false;
        bool readable = false; ///< false also when reading the row's text raised a fault
    };

    void add(const CListCtrl& list, int row, int column)
    {
        const LPARAM data = list.data(row);
        Slot& slot = m_slots[slotOf(data)];
        if (slot.taken) {
            return; // two rows with the same item data: the first one stands for both, as it is the one found
        }
        slot.data = data;
        slot.taken = true;
        slot.readable = runGuarded([&] { slot.key = sortKey(keep(list.text(row, column))); });
    }

    // The slot that holds an item data, or the free one where it belongs.
    std::size_t slotOf(LPARAM data) const
    {
        const std::size_t mask = m_slots.size() - 1;
        const auto bits = static_cast<std::uint64_t>(data);
        std::size_t slot = ((bits >> 4) ^ (bits << 7) ^ (bits >> 20)) & mask;
        while (m_slots[slot].taken && m_slots[slot].data != data) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    const wchar_t* keep(std::wstring text) { return m_texts.emplace_back(std::move(text)).c_str(); }

    HWND m_owner;
    std::vector<Slot> m_slots;
    std::deque<std::wstring> m_texts;
};

int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM keys)
{
    return reinterpret_cast<const ColumnKeys*>(keys)->compare(first, second);
}

} // namespace

void sortRows(const CListCtrl& list, int column)
{
    sortDescending = column == sortColumn && !sortDescending;
    sortColumn = column;
    ColumnKeys keys(list, column);
    list.send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&keys), reinterpret_cast<LPARAM>(&compareRows));
}
