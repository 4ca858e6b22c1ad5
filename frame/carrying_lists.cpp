#include "frame/carrying_lists.h"

#include "frame/list_ctrl.h"

#include <algorithm>

namespace {

ATOM kindOf(HWND window)
{
    return static_cast<ATOM>(GetClassLongPtrW(window, GCW_ATOM));
}

} // namespace

void CarryingLists::remember(HWND list)
{
    // Mostly the same as the last time.
    const auto same = [=](const List& known) {
        return known.window == list;
    };
    if (std::find_if(m_lists.rbegin(), m_lists.rend(), same) == m_lists.rend() && IsWindow(list)) {
        m_lists.push_back({list, kindOf(list)});
    }
}

bool CarryingLists::exists(const List& list)
{
    return IsWindow(list.window) && kindOf(list.window) == list.kind;
}

StandIns::Carried CarryingLists::read() const
{
    StandIns::Carried carried;
    for (const List& known : m_lists) {
        if (!exists(known)) {
            continue;
        }
        const DWORD thread = GetWindowThreadProcessId(known.window, nullptr);
        if (thread != GetCurrentThreadId()) {
            carried.threads.push_back(thread);
            continue;
        }
        if ((GetWindowLongPtrW(known.window, GWL_STYLE) & LVS_OWNERDATA) != 0) {
            continue; // has no item data, and would ask its host for them
        }
        const CListCtrl list(known.window);
        const int rows = list.rowCount();
        for (int row = 0; row < rows; ++row) {
            carried.values.push_back(static_cast<std::uint32_t>(static_cast<UINT_PTR>(list.data(row))));
        }
    }
    return carried;
}

void CarryingLists::tidy()
{
    std::erase_if(m_lists, [](const List& list) { return !exists(list); });
}
