#include "measure.h"

#include "bench_store.h"
#include "list_view.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

double wallClock()
{
    LARGE_INTEGER ticks;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    return static_cast<double>(ticks.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

// Of this thread. It ticks in hundredths of a second.
double processorTime()
{
    FILETIME created;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
    const auto seconds = [](const FILETIME& time) {
        return (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime) * 1e-7;
    };
    return seconds(kernel) + seconds(user);
}

// Painting and whatever else waits is done between the steps and not within one.
void settle(HWND window)
{
    UpdateWindow(window);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
}

std::uint64_t hashOfRows(HWND list)
{
    std::uint64_t hash = 0;
    wchar_t text[260];
    const int rows = list_view::rowCount(list);
    for (int row = 0; row < rows; ++row) {
        for (const int column : {kNameColumn, kInUseColumn}) {
            LVITEMW item{};
            item.iSubItem = column;
            item.pszText = text;
            item.cchTextMax = 260;
            SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
            hash = hash * 31 + std::hash<std::wstring_view>{}(text);
        }
    }
    return hash;
}

void selectEverySecondRow(HWND list)
{
    list_view::setRedraw(list, false);
    const int rows = list_view::rowCount(list);
    for (int row = 1; row < rows; row += 2) {
        LVITEMW item{};
        item.state = LVIS_SELECTED;
        item.stateMask = LVIS_SELECTED;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
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

} // namespace

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

void Tally::add(const Life& life)
{
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        m_shortest[m] = m_lives == 0 ? life.wall[m] : std::min(m_shortest[m], life.wall[m]);
        m_processor[m] += life.processor[m];
    }
    ++m_lives;
}

Seconds Tally::seconds() const
{
    Seconds seconds;
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        seconds[m] = m_shortest[m] < kShort ? m_shortest[m] : m_processor[m] / m_lives;
    }
    return seconds;
}

Life runLife(HWND window, Side& side, const PathList& folders)
{
    HWND list = createList(window);
    settle(window);
    Life life;
    std::size_t step = 0;
    const auto timed = [&](const std::function<void()>& work) {
        const double clockStart = wallClock();
        const double processorStart = processorTime();
        work();
        life.processor[step] = processorTime() - processorStart;
        life.wall[step] = wallClock() - clockStart;
        settle(window);
        life.shown[step++] = hashOfRows(list);
    };
    timed([&] { side.fill(list, folders); });
    timed([&] { side.refill(list, folders); });
    timed([&] { side.sort(list, kInUseColumn); }); // the rows stand in no order of their uses
    timed([&] { side.sort(list, kNameColumn); });  // nor of their names now
    timed([&] { side.chain(list); });
    selectEverySecondRow(list);
    settle(window);
    timed([&] { side.drop(list); });
    DestroyWindow(list);
    benchStoreReleaseAll();
    return life;
}
