// A fill on a system that runs short of timers and of room for messages.
#include "tests/accounts/chooser_fixture.h"

#include <atomic>
#include <string>
#include <vector>

namespace {

/// Neither timers nor, for some calls, messages of the dialog's own thread.
class ShortOfEverything : public ChooserFixture {
protected:
    ShortOfEverything()
    {
        thread = GetCurrentThreadId();
        realPost = m_posts.original<BOOL WINAPI(HWND, UINT, WPARAM, LPARAM)>();
        refused = 0;
        now = 1000;
        EXPECT_EQ(m_posts.count() + m_timers.count() + m_clock.count(), 3);
    }

    static inline int refused; ///< posts so far that were not taken
    static inline int toRefuse = 0;

private:
    static BOOL WINAPI post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (GetCurrentThreadId() == thread && refused < toRefuse) {
            ++refused;
            return FALSE;
        }
        return realPost(window, message, wParam, lParam);
    }
    static UINT_PTR WINAPI noTimer(HWND, UINT_PTR, UINT, TIMERPROC) { return 0; }
    /// Each look at the clock finds it so much later that the list has no time left for more rows.
    static ULONGLONG WINAPI clock() { return now += 100; }

    static inline DWORD thread;
    static inline BOOL(WINAPI* realPost)(HWND, UINT, WPARAM, LPARAM);
    static inline std::atomic<ULONGLONG> now;

    ImportPatch m_posts{ImportPatch::corvane(), "PostMessageW", &post};
    ImportPatch m_timers{ImportPatch::corvane(), "SetTimer", &noTimer};
    ImportPatch m_clock{ImportPatch::corvane(), "GetTickCount64", &clock};
};

} // namespace

TEST_F(ShortOfEverything, AListThatFindsNoWayBackToItsRowsIsReminded)
{
    std::vector<std::string> users;
    for (int i = 0; i < 60; ++i) {
        users.push_back("DOM\\user" + std::to_string(i));
    }
    giveUsers(users);
    toRefuse = 2;
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_EQ(list(dialog).rowCount(), 61);
        EXPECT_GT(refused, 0);
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ShortOfEverything, AFillThatCouldNotBeStartedEndsWithoutATimerToo)
{
    const ImportPatch noThread(
        ImportPatch::corvane(), "_beginthread",
        +[](void(__cdecl*)(void*), unsigned, void*) -> std::uintptr_t {
            return static_cast<std::uintptr_t>(-1);
        });
    ASSERT_EQ(noThread.count(), 1);
    toRefuse = 0;
    searchServer();
    cancel();
    EXPECT_EQ(choose(), nullptr);
}
