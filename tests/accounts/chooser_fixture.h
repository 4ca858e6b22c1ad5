// The chooser on a store with accounts, worked as a person works it.
#pragma once

#include "corvane.h"
#include "res/resource.h"
#include "tests/accounts/filter_bar.h"
#include "tests/support/dialog_script.h"
#include "tests/support/import_patch.h"
#include "tests/support/list_view.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A search base that makes the fill ask the store and no directory.
inline constexpr wchar_t kServer[] = L"SERVER";

inline constexpr char kWaitText[] = "Please wait until data fetched...";

/// The fill threads that the library starts while this object lives.
class FillThreads {
public:
    FillThreads();
    ~FillThreads();
    FillThreads(const FillThreads&) = delete;
    FillThreads& operator=(const FillThreads&) = delete;

    int started() const;
    /// Waits for the end of one, counted from 0; fails the test when it does not end.
    void waitFor(int thread);
    /// Waits for the end of all; fails the test when one does not end.
    void waitForAll();
    /// Waits, and lets go of what is kept of them.
    void forget();

private:
    ImportPatch m_start;
};

/// Waits until a thing is so; fails the test when it does not become so.
template <class Condition>
void waitFor(const char* what, Condition condition)
{
    const ULONGLONG deadline = GetTickCount64() + 20000;
    while (!condition()) {
        if (GetTickCount64() > deadline) {
            FAIL() << "waited in vain: " << what;
        }
        Sleep(1);
    }
}

/// Holds threads up that come to it, until it is opened.
class Gate {
public:
    Gate()
        : m_event(CreateEventW(nullptr, TRUE, TRUE, nullptr))
    {
    }
    ~Gate() { CloseHandle(m_event); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    void shut() { ResetEvent(m_event); }
    void open() { SetEvent(m_event); }
    void pass()
    {
        ++m_waiting;
        WaitForSingleObject(m_event, INFINITE);
        --m_waiting;
    }
    /// How many threads it holds up.
    int waiting() const { return m_waiting; }

private:
    HANDLE m_event;
    std::atomic<int> m_waiting = 0;
};

struct ChooserFixture : testing::Test {
    ChooserFixture();
    ~ChooserFixture() override;

    /// Lets the store find accounts on this machine.
    void giveUsers(const std::vector<std::string>& names);
    void giveGroups(const std::vector<std::string>& names);

    /// Presses "Search..." with a server as search base, and waits for the end of the fill.
    void searchServer();
    /// Presses it and does not wait.
    void startSearch();
    void waitForFill();
    /// One thing done in the dialog.
    void then(const char* what, std::function<void(HWND)> act) { script.onDialog(what, std::move(act)); }
    void cancel();

    /// Runs the script on the dialog. @return the chooser's result.
    void* choose(SidList* owners = nullptr);
    /// The same. @return the name of the chosen account.
    std::string chosenName(SidList* owners = nullptr);
    /// The same, with one thing more to do before Cancel.
    void lookAndCancel(std::function<void(HWND)> act, SidList* owners = nullptr);

    static ListView list(HWND dialog) { return ListView(dialog, IDC_CHOOSER_LIST); }
    /// Selects a row as a click does.
    static void select(HWND dialog, int row);

    /// The store's lines that the dialog writes, without those of the enumeration.
    std::vector<std::string> dialogLines() const;

    RecordingStore store;
    DialogScript script;
    std::unique_ptr<FilterBar> filterBar; ///< made when the search starts
    Gate gate;                            ///< before each answer to enumerateUsers
    FillThreads threads;

private:
    SidList* append(SidList* list, const std::vector<const void*>& sids);

    std::vector<const void*> m_users;
    std::vector<const void*> m_groups;
};

/// Text as the debug channel's "%p" writes it.
std::string pointerText(const void* pointer);
