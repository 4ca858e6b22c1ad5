// Choosers that go at random moments of their fill, with all that may go with them.
#include "corvane.h"
#include "res/resource.h"
#include "tests/stress/directory.h"
#include "tests/stress/stress.h"
#include "tests/support/dialog_script.h"
#include "tests/support/leak_count.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

/// How the store and the directory answer now.
enum class Pace : std::uint8_t { kFast, kSlow, kStuck };
std::atomic<Pace> pace = Pace::kFast;
HANDLE release; ///< lets go what is stuck

void pauseAsTold()
{
    switch (pace.load()) {
    case Pace::kFast:
        break;
    case Pace::kSlow:
        Sleep(2);
        break;
    case Pace::kStuck:
        WaitForSingleObject(release, INFINITE);
        break;
    }
}

class AbortFill : public testing::Test {
protected:
    AbortFill()
    {
        release = CreateEventW(nullptr, TRUE, TRUE, nullptr);
        for (int i = 0; i < 200; ++i) {
            m_users.push_back(m_store.account("DOM\\user" + std::to_string(i)));
        }
        m_store.answer.enumerateUsers = [this](const wchar_t*, SidList* list) {
            pauseAsTold();
            for (const void* const user : m_users) {
                list = m_store.answer.appendToSidList(list, m_store.answer.sidDup(user));
            }
            return list;
        };
        m_store.answer.enumerateGroups = [](const wchar_t*, SidList* list) {
            pauseAsTold();
            return list;
        };
        m_store.answer.getDomainServerByName = [](const wchar_t*) {
            pauseAsTold();
            return _wcsdup(L"SECOND");
        };
        m_owners = RecordingStore::makeSidList({m_users[3], m_users[5]});
    }
    ~AbortFill() override
    {
        freeSidList()(m_owners);
        CloseHandle(release);
    }

    unsigned upTo(unsigned most) { return m_random() % (most + 1); }

    void round();
    void search(HWND dialog);
    void act(HWND dialog);
    void end(HWND dialog, HWND owner);
    HMODULE load();
    long blocksOfAnUnloading();
    void letLibraryGo();
    void settle();

    using Freeing = void (*)(SidList*);
    static Freeing freeSidList()
    {
        return reinterpret_cast<Freeing>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"lornix"), "freeSidList")));
    }

    std::mt19937 m_random{stress::seed()};
    RecordingStore m_store;
    std::vector<const void*> m_users;
    SidList* m_owners;
    std::vector<HMODULE> m_held; ///< the library, once for each round since it was let go
    int m_loads = 0;             ///< of those after which the library was there anew
    int m_stuckRounds = 0;       ///< left, until what is stuck is let go
};

void AbortFill::search(HWND dialog)
{
    switch (upTo(2)) {
    case 0: // the base that the library picks
        break;
    case 1:
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        type(dialog, IDC_CHOOSER_BASE, L"SERVER");
        break;
    default:
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        type(dialog, IDC_CHOOSER_BASE, L"WinNT://FAR");
        break;
    }
    click(dialog, IDOK);
}

/// What a person does to a list that fills.
void AbortFill::act(HWND dialog)
{
    HWND list = GetDlgItem(dialog, IDC_CHOOSER_LIST);
    switch (upTo(4)) {
    case 0: {
        NMLISTVIEW header{};
        header.hdr = {list, IDC_CHOOSER_LIST, static_cast<UINT>(LVN_COLUMNCLICK)};
        header.iSubItem = static_cast<int>(upTo(2));
        SendMessageW(dialog, WM_NOTIFY, IDC_CHOOSER_LIST, reinterpret_cast<LPARAM>(&header));
        break;
    }
    case 1: {
        NMHEADERW filter{};
        filter.hdr = {reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)), 0,
                      static_cast<UINT>(HDN_FILTERCHANGE)};
        filter.iItem = static_cast<int>(upTo(2));
        SendMessageW(list, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&filter));
        break;
    }
    case 2: {
        LVITEMW item{};
        item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageW(list, LVM_SETITEMSTATE, upTo(5), reinterpret_cast<LPARAM>(&item));
        break;
    }
    case 3:
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        break;
    default:
        SetFocus(dialog);
        break;
    }
}

void AbortFill::end(HWND dialog, HWND owner)
{
    switch (upTo(6)) {
    case 0:
        DestroyWindow(dialog);
        break;
    case 1:
        EndDialog(dialog, 0);
        break;
    case 2:
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        break;
    case 3:
        DestroyWindow(owner);
        break;
    case 4:
        DestroyWindow(GetDlgItem(dialog, IDC_CHOOSER_LIST));
        pump(upTo(10), upTo(2));
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        break;
    case 5: {
        LVITEMW item{};
        item.stateMask = item.state = LVIS_SELECTED;
        SendMessageW(GetDlgItem(dialog, IDC_CHOOSER_LIST), LVM_SETITEMSTATE, upTo(3),
                     reinterpret_cast<LPARAM>(&item));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        if (IsWindowVisible(dialog)) { // nothing could be picked
            SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        }
        break;
    }
    default:
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        break;
    }
}

void AbortFill::round()
{
    if (m_stuckRounds > 0 && --m_stuckRounds == 0) {
        SetEvent(release);
    }
    switch (upTo(3)) {
    case 0:
        pace = Pace::kSlow;
        break;
    case 1:
        pace = Pace::kStuck;
        if (m_stuckRounds == 0) {
            ResetEvent(release);
            m_stuckRounds = 1 + static_cast<int>(upTo(4));
        }
        break;
    default:
        pace = Pace::kFast;
        break;
    }

    const HMODULE library = load();
    ASSERT_NE(library, nullptr);
    serveDirectory(library, &pauseAsTold);
    const auto choose = reinterpret_cast<void* (*)(HWND, SidList*)>(
        reinterpret_cast<void*>(GetProcAddress(library, "chooseSidFromUserInput2")));
    HWND owner = CreateWindowExW(0, L"Static", L"owner", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                 nullptr, nullptr, nullptr);
    DialogScript script;
    script.onDialog("search, and go", [&](HWND dialog) {
        if (upTo(9) != 0) {
            search(dialog);
        }
        for (unsigned acts = upTo(3); acts > 0; --acts) {
            pump(upTo(40), upTo(2));
            if (IsWindow(dialog)) {
                act(dialog);
            }
        }
        pump(upTo(60), upTo(2));
        end(dialog, owner);
    });
    void* const chosen = script.run([&] { return choose(owner, upTo(1) == 0 ? m_owners : nullptr); });
    if (reinterpret_cast<ULONG_PTR>(chosen) > 1) {
        std::free(chosen);
    }
    if (IsWindow(owner)) {
        DestroyWindow(owner);
    }
    m_held.push_back(library);
    if (upTo(2) == 0) {
        letLibraryGo();
    }
    m_store.takeCalls();
}

HMODULE AbortFill::load()
{
    m_loads += GetModuleHandleW(L"corvane") == nullptr ? 1 : 0;
    return LoadLibraryW(L"corvane.dll");
}

/// What the C++ runtime inside the library keeps each time that the library goes, used or not.
long AbortFill::blocksOfAnUnloading()
{
    constexpr int kTimes = 10;
    FreeLibrary(load());
    const long before = LeakCount::now().heapBlocks;
    for (int i = 0; i < kTimes; ++i) {
        FreeLibrary(load());
    }
    return (LeakCount::now().heapBlocks - before) / kTimes;
}

void AbortFill::letLibraryGo()
{
    for (const HMODULE library : m_held) {
        FreeLibrary(library);
    }
    m_held.clear();
}

/// Waits for all fills that were left.
void AbortFill::settle()
{
    letLibraryGo();
    pace = Pace::kFast;
    m_stuckRounds = 0;
    SetEvent(release);
    const ULONGLONG deadline = GetTickCount64() + 20000;
    while (GetModuleHandleW(L"corvane") != nullptr && GetTickCount64() < deadline) {
        Sleep(1);
    }
    EXPECT_EQ(GetModuleHandleW(L"corvane"), nullptr) << "a fill thread holds the library";
    EXPECT_EQ(directoryReferences(), 0) << "of objects and sessions";
    EXPECT_EQ(m_store.openSidLists(), 1) << "the owners alone";
    m_store.takeCalls();
}

} // namespace

TEST_F(AbortFill, AtRandomMoments)
{
    ASSERT_NE(LoadLibraryW(L"comdlg32.dll"), nullptr); // some runtimes lose a handle each time it goes
    constexpr int kWarmUp = 20;
    LeakCount before;
    long runtime = 0;
    const auto rounds = static_cast<int>(stress::count());
    for (int i = 0; i < rounds + kWarmUp; ++i) {
        stress::alive(("round " + std::to_string(i)).c_str());
        if (i == kWarmUp) {
            settle();
            runtime = blocksOfAnUnloading();
            m_loads = 0;
            before = LeakCount::now();
        }
        round();
        if (HasFailure()) {
            FAIL() << "round " << i;
        }
        if (i % 500 == 499) {
            settle();
            std::printf("%d: %ld blocks, %ld handles, %ld GDI objects\n", i + 1, LeakCount::now().heapBlocks,
                        LeakCount::now().handles, LeakCount::now().gdiObjects);
            std::fflush(stdout);
        }
    }
    settle();
    const LeakCount after = LeakCount::now();
    std::printf("%d loads, each keeps %ld blocks of the runtime's own\n", m_loads, runtime);
    EXPECT_LT(after.handles, before.handles + 20) << before << " before, " << after << " after";
    EXPECT_LT(after.heapBlocks, before.heapBlocks + m_loads * runtime + 50 + rounds / 50)
        << before << " before, " << after << " after";
    EXPECT_LT(after.gdiObjects, before.gdiObjects + 20) << before << " before, " << after << " after";
    EXPECT_EQ(after.windows, before.windows);
}
