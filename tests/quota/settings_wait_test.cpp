// What is seen while the Quota Settings dialog measures.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/import_patch.h"
#include "tests/support/leak_count.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace quota_settings;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr DWORD kSlow = 3000;       // milliseconds
constexpr DWORD kPatience = 60'000; // far more than any machine needs
int* volatile nowhere = nullptr;

/// A window of this process that can be seen and belongs to another thread.
HWND windowOfAnotherThread()
{
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM result) -> BOOL {
            DWORD process = 0;
            const DWORD thread = GetWindowThreadProcessId(window, &process);
            if (process != GetCurrentProcessId() || thread == GetCurrentThreadId() ||
                !IsWindowVisible(window)) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

/// The texts of a window's children, from left to right and down.
std::vector<std::string> linesOf(HWND window)
{
    std::vector<std::string> lines;
    for (HWND line = GetWindow(window, GW_CHILD); line != nullptr; line = GetWindow(line, GW_HWNDNEXT)) {
        lines.push_back(windowText(line));
    }
    return lines;
}

/// Waits for the notice.
HWND awaitNotice()
{
    const ULONGLONG end = GetTickCount64() + kPatience;
    HWND notice = nullptr;
    while (notice == nullptr && GetTickCount64() < end) {
        Sleep(10);
        notice = windowOfAnotherThread();
    }
    return notice;
}

bool answers(HWND window)
{
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_BLOCK, kPatience, &result) != 0;
}

struct SettingsWaitTest : testing::Test {
    RecordingStore store;
    void* const staff = store.account("SALES\\staff");
    std::vector<HWND> seen;
};

} // namespace

TEST_F(SettingsWaitTest, AStoreThatTakesThreeSecondsIsSeenAtWork)
{
    store.answer.getRealSize = [this](const wchar_t*) -> int64_t {
        const ULONGLONG start = GetTickCount64();
        const HWND notice = awaitNotice();
        seen.push_back(notice);
        EXPECT_GE(GetTickCount64() - start, 400u) << "quick work is not told of";
        EXPECT_THAT(linesOf(notice), ElementsAre("Measuring ...", "C:\\data"));
        EXPECT_TRUE(answers(notice)) << "it paints, whatever the store does";
        EXPECT_EQ(GetWindow(notice, GW_OWNER), nullptr);
        EXPECT_NE(GetForegroundWindow(), notice);
        while (GetTickCount64() - start < kSlow) {
            Sleep(10);
        }
        EXPECT_TRUE(IsWindowVisible(notice));
        return 3 * kMiB;
    };
    QuotaRule* const rule = newRule(staff);
    whileOpen(rule, kAdd, [this](HWND dialog) {
        EXPECT_FALSE(IsWindow(seen.at(0))) << "gone before the dialog is seen";
        EXPECT_EQ(windowOfAnotherThread(), nullptr);
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "3072K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "15360K");
    });
    EXPECT_EQ(seen.size(), 1u);
    EXPECT_EQ(store.calls(), callsForAccount("SALES\\staff"));
}

TEST_F(SettingsWaitTest, LookingUpMembersIsSeenToo)
{
    store.answer.enumerateGroupUsers = [this](const wchar_t*, const wchar_t*, SidList* list) {
        seen.push_back(awaitNotice());
        EXPECT_THAT(linesOf(seen.back()), ElementsAre("Looking up group members ...", "SALES\\staff"));
        return list;
    };
    whileOpen(newRule(staff), kAdd, [this](HWND) { EXPECT_FALSE(IsWindow(seen.at(0))); });
    EXPECT_EQ(seen.size(), 1u);
}

TEST_F(SettingsWaitTest, AFaultTakesItAway)
{
    store.answer.getRealSize = [this](const wchar_t*) -> int64_t {
        seen.push_back(awaitNotice());
        EXPECT_NE(seen.back(), nullptr);
        *nowhere = 1;
        return 1;
    };
    whileOpen(newRule(), kEdit, [this](HWND dialog) {
        EXPECT_FALSE(IsWindow(seen.at(0)));
        EXPECT_EQ(windowOfAnotherThread(), nullptr);
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "0 ");
    });
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(SettingsWaitTest, ItLeavesNothingBehind)
{
    store.answer.getRealSize = [](const wchar_t*) -> int64_t {
        EXPECT_NE(awaitNotice(), nullptr);
        return 1;
    };
    QuotaRule* const rule = newRule();
    const auto open = [&] {
        whileOpen(rule, kEdit);
        store.takeCalls();
    };
    open();
    open();
    LeakCount::now();
    // Caches of the system fill when they like, but only once: a leak would be there each time.
    testing::Message growth;
    for (int round = 0; round < 5; ++round) {
        LeakCount before = LeakCount::now();
        open();
        const LeakCount after = LeakCount::now();
        growth << "\n  " << before << " before, " << after << " after";
        before.heapBlocks = after.heapBlocks; // those of threads are counted elsewhere
        if (after == before) {
            return;
        }
    }
    ADD_FAILURE() << growth;
}

namespace {
int windowsMade = 0;
std::vector<DWORD> waits; ///< for the end of the work, before there is a notice

HWND WINAPI countWindow(DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE, void*)
{
    ++windowsMade;
    return nullptr;
}

/// On a busy machine quick work takes long now and then; here it never takes too long.
DWORD WINAPI waitForTheEnd(HANDLE done, DWORD milliseconds)
{
    waits.push_back(milliseconds);
    return WaitForSingleObject(done, kPatience);
}
} // namespace

TEST_F(SettingsWaitTest, AQuickStoreMakesNoWindow)
{
    const ImportPatch make(ImportPatch::corvane(), "CreateWindowExW", countWindow);
    const ImportPatch wait(ImportPatch::corvane(), "WaitForSingleObject", waitForTheEnd);
    ASSERT_EQ(make.count() + wait.count(), 2);
    windowsMade = 0;
    waits.clear();
    whileOpen(newRule(staff), kAdd);
    EXPECT_EQ(windowsMade, 0);
    EXPECT_THAT(waits, AllOf(Not(IsEmpty()), Each(testing::Ge(400u)))) << "that is what quick means";
}
