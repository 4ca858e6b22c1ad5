#include "measure.h"

#include "bench/support/list_view.h"
#include "bench_store.h"

#include <algorithm>

void selectEverySecondRow(HWND list)
{
    list_view::setRedraw(list, false);
    const int rows = list_view::rowCount(list);
    for (int row = 1; row < rows; row += 2) {
        list_view::select(list, row, true);
    }
    list_view::setRedraw(list, true);
}

HWND createList(HWND window)
{
    RECT area;
    GetClientRect(window, &area);
    HWND list = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_SHOWSELALWAYS,
                                0, 0, area.right, area.bottom, window, nullptr, nullptr, nullptr);
    CorvaneListObject object{};
    object.window = list;
    initializeListCtrl2(reinterpret_cast<CListCtrl*>(&object), nullptr);
    return list;
}

Folders::Folders(int count)
    : m_paths(static_cast<std::size_t>(count))
    , m_list(static_cast<std::size_t>(count) + 1)
{
    m_list[0] = static_cast<std::uintptr_t>(count);
    for (std::size_t i = 0; i < m_paths.size(); ++i) {
        swprintf(m_paths[i].data(), m_paths[i].size(), L"D:\\Departments\\Group %05u",
                 static_cast<unsigned>(i));
        m_list[i + 1] = reinterpret_cast<std::uintptr_t>(m_paths[i].data());
    }
}

Life runLife(HWND window, Side& side, const PathList& folders)
{
    HWND list = createList(window);
    settle(window);
    Life life;
    std::size_t step = 0;
    const auto take = [&](const std::function<void()>& work) {
        life.times[step] = timed(work);
        settle(window);
        life.shown[step++] = list_view::hashOfRows(list, {kNameColumn, kInUseColumn});
    };
    take([&] { side.fill(list, folders); });
    take([&] { side.refill(list, folders); });
    take([&] { side.sort(list, kInUseColumn); }); // the rows stand in no order of their uses
    take([&] { side.refill(list, folders); });    // the store gives its rules in another
    take([&] { side.sort(list, kNameColumn); });  // nor of their names
    take([&] { side.chain(list); });
    selectEverySecondRow(list);
    settle(window);
    take([&] { side.drop(list); });
    DestroyWindow(list);
    benchStoreReleaseAll();
    return life;
}
