#include "frame/list_sort.h"

#include "frame/crash_guard.h"
#include "frame/list_ctrl.h"
#include "frame/message_box.h"
#include "frame/scan_number.h"

#include <cstdint>
#include <cwchar>
#include <string>
#include <vector>

namespace {

// One order for all lists of the process: a host that sorts two lists by the same column in turn has always
// seen the second one sorted the other way round.
int sortColumn = -1;
bool sortDescending = false;

/// What a comparison needs to know of a row, read once before the sort: the required comparison finds both
/// rows again and reads both texts each time, and would make the sort quadratic.
struct RowKey {
    LPARAM data = 0;
    bool readable = false; ///< false when reading the row's text raised a fault
    bool isNumber = false;
    std::int64_t number = 0;
    std::wstring text;
};

class RowKeys {
public:
    RowKeys(const CListCtrl& list, int column)
        : m_owner(list.topChild())
    {
        const int rows = list.rowCount();
        m_keys.reserve(static_cast<std::size_t>(rows));
        std::size_t slots = 16;
        while (slots < static_cast<std::size_t>(rows) * 2) {
            slots *= 2;
        }
        m_slots.resize(slots);
        for (int row = 0; row < rows; ++row) {
            add(list, row, column);
        }
    }

    const RowKey& at(LPARAM data) { return m_keys[m_slots[slotOf(data)].key]; }

    /// The platform's comparison result for two rows with the given item data.
    int compare(LPARAM first, LPARAM second)
    {
        int result = 0;
        if (!runGuarded([&] { result = compareKeys(cached(m_first, first), cached(m_second, second)); })) {
            fail();
            return 0;
        }
        return result;
    }

private:
    struct Slot {
        LPARAM data = 0;
        std::uint32_t key = kFree;
        static constexpr std::uint32_t kFree = UINT32_MAX;
    };

    void add(const CListCtrl& list, int row, int column)
    {
        RowKey key;
        key.data = list.data(row);
        Slot& slot = m_slots[slotOf(key.data)];
        if (slot.key != Slot::kFree) {
            return; // two rows with the same item data: the first one stands for both, as it is the one found
        }
        key.readable = runGuarded([&] { key.text = list.text(row, column); });
        const ScannedNumber scanned = scanNumber(key.text.c_str());
        key.isNumber = scanned.found;
        key.number = scaled(scanned.number, unitShift(scanned.next));
        slot = {key.data, static_cast<std::uint32_t>(m_keys.size())};
        m_keys.push_back(std::move(key));
    }

    // The slot that holds an item data, or the free one where it belongs.
    std::size_t slotOf(LPARAM data) const
    {
        const std::size_t mask = m_slots.size() - 1;
        const auto bits = static_cast<std::uint64_t>(data);
        std::size_t slot = ((bits >> 4) ^ (bits << 7) ^ (bits >> 20)) & mask;
        while (m_slots[slot].key != Slot::kFree && m_slots[slot].data != data) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    // In a merge one side of a comparison is mostly that of the last one.
    const RowKey& cached(const RowKey*& last, LPARAM data)
    {
        if (last == nullptr || last->data != data) {
            last = &at(data);
        }
        return *last;
    }

    int compareKeys(const RowKey& first, const RowKey& second) const
    {
        if (!first.readable || !second.readable) {
            fail();
            return 0;
        }
        if (first.isNumber && second.isNumber) {
            const auto a = static_cast<std::uint64_t>(first.number);
            const auto b = static_cast<std::uint64_t>(second.number);
            // Cut to 32 bits, so that sizes 2 GiB or more apart may sort wrongly. Kept: the order is what
            // hosts show.
            return static_cast<int>(static_cast<std::uint32_t>(sortDescending ? b - a : a - b));
        }
        // Second against first: texts run from Z to A on the first click, numbers from small to large. Kept
        // too.
        const int order = _wcsicmp(second.text.c_str(), first.text.c_str());
        return sortDescending ? -order : order;
    }

    void fail() const { showMessage(m_owner, "Sort failed unexpectedly", captions::kError); }

    HWND m_owner;
    std::vector<RowKey> m_keys;
    std::vector<Slot> m_slots;
    const RowKey* m_first = nullptr;
    const RowKey* m_second = nullptr;
};

int CALLBACK compareRows(LPARAM first, LPARAM second, LPARAM keys)
{
    return reinterpret_cast<RowKeys*>(keys)->compare(first, second);
}

} // namespace

void sortRows(const CListCtrl& list, int column)
{
    sortDescending = column == sortColumn && !sortDescending;
    sortColumn = column;
    RowKeys keys(list, column);
    list.send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&keys), reinterpret_cast<LPARAM>(&compareRows));
}
