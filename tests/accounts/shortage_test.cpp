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
        s_thread = GetCurrentThreadId();
        s_post = m_posts.original<BOOL WINAPI(HWND, UINT, WPARAM, LPARAM)>();
        s_refused = 0;
        s_now = 1000;
        EXPECT_EQ(m_posts.count() + m_timers.count() + m_clock.count(), 3);
    }

    static inline int s_refused; ///< posts so far that were not taken
    static inline int s_toRefuse = 0;

private:
    static BOOL WINAPI post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (GetCurrentThreadId() == s_thread && s_refused < s_toRefuse) {
            ++s_refused;
            return FALSE;
        }
        return s_post(window, message, wParam, lParam);
    }
    static UINT_PTR WINAPI noTimer(HWND, UINT_PTR, UINT, TIMERPROC) { return 0; }
    /// Each look at the clock finds it so much later that the list has no time left for more rows.
    static ULONGLONG WINAPI clock() { return s_now += 100; }

    static inline DWORD s_thread;
    static inline BOOL(WINAPI* s_post)(HWND, UINT, WPARAM, LPARAM);
    static inline std::atomic<ULONGLONG> s_now;

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
    s_toRefuse = 2;
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_EQ(list(dialog).rowCount(), 61);
        EXPECT_GT(s_refused, 0);
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
    s_toRefuse = 0;
    searchServer();
    cancel();
    EXPECT_EQ(choose(), nullptr);
}
