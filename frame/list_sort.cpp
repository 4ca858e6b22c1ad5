#include "frame/list_sort.h"

#include "frame/column_reader.h"
#include "frame/list_ctrl.h"
#include "frame/message_box.h"
#include "frame/sort_key.h"

#include <bit>
#include <cstdint>
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
        , m_reader(list, column)
    {
        const int rows = list.rowCount();
        m_slots.resize(std::bit_ceil(static_cast<std::size_t>(rows) * 2 + 1));
        for (int row = 0; row < rows; ++row) {
            add(row);
        }
    }

    /// The platform's comparison result for two rows with the given item data.
    int compare(LPARAM first, LPARAM second) const
    {
        const SortKey& a = m_slots[slotOf(first)].key;
        const SortKey& b = m_slots[slotOf(second)].key;
        if (a.text == nullptr || b.text == nullptr) {
            showMessage(m_owner, "Sort failed unexpectedly", captions::kError);
            return 0;
        }
        return compareSortKeys(a, b, sortDescending);
    }

private:
    /// A row under its item data, in the table itself and as small as can be: a comparison touches one place per
    /// row.
    struct Slot {
        LPARAM data = 0;
        SortKey key{kFree}; ///< without a text when reading it raised a fault
        bool taken() const { return key.text != kFree; }
    };
    static constexpr wchar_t kFree[] = L"";

    void add(int row)
    {
        LPARAM data = 0;
        const wchar_t* text = m_reader.read(row, data);
        Slot& slot = m_slots[slotOf(data)];
        if (slot.taken()) {
            return; // two rows with the same item data: the first one stands for both, as it is the one found
        }
        slot.data = data;
        slot.key = text != nullptr ? sortKey(text) : SortKey{nullptr};
    }

    // The slot that holds an item data, or the free one where it belongs.
    std::size_t slotOf(LPARAM data) const
    {
        const std::size_t mask = m_slots.size() - 1;
        // Item data are mostly addresses, alike in their low and in their high bits.
        const std::uint64_t hash = static_cast<std::uint64_t>(data) * 0x9E3779B97F4A7C15u;
        std::size_t slot = (hash >> 32) & mask;
        while (m_slots[slot].taken() && m_slots[slot].data != data) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    HWND m_owner;
    ColumnReader m_reader;
    std::vector<Slot> m_slots;
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
