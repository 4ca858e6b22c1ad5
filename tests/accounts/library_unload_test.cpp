// A host that lets the library go while its fill thread is inside the store. This program does not link the library:
// it would never be unloaded then.
#include "res/resource.h"
#include "tests/support/dialog_script.h"
#include "tests/support/leak_count.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <malloc.h>

#include <atomic>

namespace {

struct LibraryUnloadTest : testing::Test {
    LibraryUnloadTest()
    {
        store.answer.enumerateUsers = [this](const wchar_t*, SidList* list) {
            ++inStore;
            WaitForSingleObject(gate, INFINITE);
            --inStore;
            return list;
        };
    }
    ~LibraryUnloadTest() override { CloseHandle(gate); }

    /// Opens the chooser, searches, and lets the dialog go in a way.
    void choose(const std::function<void(HWND)>& end, bool duringFill)
    {
        const HMODULE library = LoadLibraryW(L"corvane.dll");
        ASSERT_NE(library, nullptr);
        const auto chooser = reinterpret_cast<void* (*)(HWND)>(
            reinterpret_cast<void*>(GetProcAddress(library, "chooseSidFromUserInput")));
        ASSERT_NE(chooser, nullptr);
        DialogScript script;
        script.onDialog("search", [](HWND dialog) {
            click(dialog, IDC_CHOOSER_CUSTOM_BASE);
            type(dialog, IDC_CHOOSER_BASE, L"SERVER");
            click(dialog, IDOK);
        });
        if (duringFill) {
            script.step("the thread in the store", [this](HWND) { return inStore == 1; });
        } else {
            script.step("the fill's end", [](HWND dialog) { return isEnabled(dialog, IDCANCEL); });
        }
        script.onDialog("end", end);
        EXPECT_EQ(script.run([&] { return chooser(nullptr); }), nullptr);
        FreeLibrary(library);
    }

    static bool loaded() { return GetModuleHandleW(L"corvane") != nullptr; }
    static void waitUntilUnloaded()
    {
        const ULONGLONG deadline = GetTickCount64() + 20000;
        while (loaded() && GetTickCount64() < deadline) {
            Sleep(1);
        }
        EXPECT_FALSE(loaded()) << "the fill thread holds the library for ever";
    }

    RecordingStore store;
    const HANDLE gate = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::atomic<int> inStore = 0;
};

} // namespace

TEST_F(LibraryUnloadTest, TheProgramDoesNotHoldTheLibraryItself)
{
    EXPECT_FALSE(loaded());
}

TEST_F(LibraryUnloadTest, NothingBigStaysBehindWhenTheLibraryGoes)
{
    const auto bigBlocks = [] {
        constexpr DWORD kBig = 0x8000;
        const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
        int count = 0;
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heap);
        while (HeapWalk(heap, &entry)) {
            count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 && entry.cbData > kBig ? 1 : 0;
        }
        HeapUnlock(heap);
        return count;
    };
    const auto loadAndLetGo = [] {
        const HMODULE library = LoadLibraryW(L"corvane.dll");
        ASSERT_NE(library, nullptr);
        FreeLibrary(library);
        ASSERT_FALSE(loaded());
    };
    loadAndLetGo();
    const int before = bigBlocks();
    for (int i = 0; i < 5; ++i) {
        loadAndLetGo();
    }
    EXPECT_EQ(bigBlocks(), before);
}

TEST_F(LibraryUnloadTest, AFillThatIsLeftBehindKeepsTheLibraryUntilItEnds)
{
    // Some runtimes lose a handle with each unloading of this one.
    ASSERT_NE(LoadLibraryW(L"comdlg32.dll"), nullptr);
    LeakCount before;
    constexpr int kRounds = 12;
    constexpr int kWarmUp = 2;
    for (int round = 0; round < kRounds; ++round) {
        if (round == kWarmUp) {
            before = LeakCount::now();
        }
        ResetEvent(gate);
        choose([](HWND dialog) { DestroyWindow(dialog); }, true);
        EXPECT_TRUE(loaded()) << "the thread is still inside it";
        SetEvent(gate);
        waitUntilUnloaded();
        store.takeCalls();
    }
    const LeakCount after = LeakCount::now();
    EXPECT_LT(after.handles, before.handles + kRounds - kWarmUp)
        << before << " before, " << after << " after";
}

TEST_F(LibraryUnloadTest, AFillThatCameToItsEndLetsTheLibraryGo)
{
    SetEvent(gate);
    for (int round = 0; round < 10; ++round) {
        choose([](HWND dialog) { click(dialog, IDCANCEL); }, false);
        waitUntilUnloaded();
    }
}
