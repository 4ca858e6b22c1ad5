// What hosts are told not to do, or to expect little of: two threads at once, lists of other threads, two dialogs of a kind.
// Nothing of it may end in a fault, in a hang, or in a result that is another's.
#include "res/resource.h"
#include "tests/stress/heap_rules.h"
#include "tests/stress/stress.h"
#include "tests/support/dialog_script.h"
#include "tests/support/faulting_call.h"
#include "tests/support/library_template.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"
#include "tests/support/recording_store.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

/// Does something in the dialogs of its own thread, again and again, as long as it lives.
class Worker {
public:
    explicit Worker(std::function<void(HWND)> act)
        : m_act(std::move(act))
        , m_outer(std::exchange(current, this))
    {
    }
    ~Worker()
    {
        KillTimer(nullptr, m_timer);
        current = m_outer;
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD)
    {
        if (HWND front = DialogScript::front()) {
            current->m_act(front);
        }
    }
    static thread_local Worker* current;

    std::function<void(HWND)> m_act;
    Worker* m_outer;
    UINT_PTR m_timer = SetTimer(nullptr, 0, 10, tick);
};
thread_local Worker* Worker::current = nullptr;

/// Of what some runtimes do not bear for long, a quarter.
long long fewRounds()
{
    return (stress::count() + 3) / 4;
}

void post(HWND dialog, int id)
{
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

/// A store that may be asked by several threads: it keeps nothing but what the recording store locks.
class Apart : public testing::Test {
protected:
    Apart()
    {
        m_store.answer.getQuotaList = [](const wchar_t* folder) {
            QuotaRule* first = nullptr;
            for (int i = 0; i < 30; ++i) {
                QuotaRule* const rule = heapRule(folder, nullptr, 1000 + i);
                rule->next = first;
                first = rule;
            }
            return first;
        };
        m_store.answer.getRealSize = [](const wchar_t*) -> int64_t {
            return 4096;
        };
        m_store.answer.getSidByNameW = [](const wchar_t* name) -> void* {
            unsigned char sid[] = {1, 1, 0, 0, 0, 0, 0, 5, static_cast<unsigned char>(name[0]), 1, 0, 0};
            void* const made = std::malloc(sizeof sid);
            std::memcpy(made, sid, sizeof sid);
            return made;
        };
    }

    RecordingStore m_store;
};

/// Fills, sorts, edits, adds and drops in a list of its own.
void workOnAList(std::uint32_t seed, const std::wstring& folder)
{
    std::mt19937 random(seed);
    ListHost host;
    CListCtrl* const list = host.object();
    const Worker worker([&](HWND dialog) { post(dialog, random() % 3 == 0 ? IDCANCEL : IDOK); });
    initializeListCtrl2(list, nullptr);
    for (long long round = 0; round < fewRounds() && !testing::Test::HasFailure(); ++round) {
        stress::alive("a list on a thread of its own");
        fillUpListCtrl2(Paths{folder + L"a", folder + L"b"}, list);
        sortListCtrl2(list, static_cast<int>(random() % 6));
        host.selectOnly({static_cast<int>(random() % 20)});
        editFromListCtrl2(list);
        addToListCtrl2(list, nullptr, Paths{folder + std::to_wstring(round)});
        QuotaRule* const first = getDataModified2(list);
        std::vector<QuotaRule*> all;
        for (QuotaRule* rule = first; rule != nullptr; rule = rule->next) {
            all.push_back(rule);
            EXPECT_TRUE(std::wstring(rule->path).starts_with(folder) || rule->path[2] == L'/') << "another's";
        }
        EXPECT_EQ(static_cast<int>(all.size()), host.rowCount());
        host.select(-1);
        EXPECT_NE(dropFromListCtrl2(list), 0);
        EXPECT_EQ(host.rowCount(), 0);
        for (QuotaRule* const rule : all) {
            releaseRule(rule);
        }
    }
}

} // namespace

TEST_F(Apart, TwoThreadsEachWithAListAndDialogs)
{
    std::vector<std::thread> threads;
    for (const wchar_t drive : {L'C', L'D', L'E'}) {
        threads.emplace_back([drive] {
            EXPECT_EQ(faultOf([drive] { workOnAList(stress::seed() + drive, {drive, L':', L'\\'}); }), 0u);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(m_store.openSidLists(), 0);
}

// What the runtime itself makes of three threads with dialogs: the same template, none of the library's code.
TEST_F(Apart, ThreeThreadsWithDialogsOfNobody)
{
    const auto nobody = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            for (const int id : {IDC_QUOTA_APPLIED_TO, IDC_QUOTA_HARD_LIMIT, IDC_QUOTA_SOFT_LIMIT}) {
                SetDlgItemTextW(dialog, id, L"C:\\some\\folder");
            }
            SetTimer(dialog, 1, 10, nullptr);
        }
        return message == WM_TIMER ? EndDialog(dialog, IDOK) : FALSE;
    };
    const LPCDLGTEMPLATEW page = libraryTemplate(IDD_QUOTA_SETTINGS_ADD);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([=] {
            for (long long round = 0; round < fewRounds(); ++round) {
                stress::alive("a dialog of nobody");
                EXPECT_EQ(DialogBoxIndirectParamW(nullptr, page, nullptr, nobody, 0), IDOK);
                ListHost host;
                for (int row = 0; row < 60; ++row) {
                    host.addRow(row, {L"a", L"b", L"c"});
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// Documented: the account chooser keeps its last choice for all. What a call gives is its own dialog's all the same: a
// SID that two callers got would be released twice.
TEST_F(Apart, ChoosersOfTwoThreadsGiveEachItsOwn)
{
    const auto choose = [](const wchar_t* name) {
        const Worker worker([name](HWND dialog) {
            if (!isChecked(dialog, IDC_CHOOSER_TYPE)) {
                click(dialog, IDC_CHOOSER_TYPE);
                type(dialog, IDC_CHOOSER_NAME, name);
                post(dialog, IDOK);
            }
        });
        for (long long round = 0; round < stress::count(); ++round) {
            stress::alive("a chooser on a thread of its own");
            auto* const sid = static_cast<unsigned char*>(chooseSidFromUserInput(nullptr));
            ASSERT_NE(sid, nullptr) << name;
            ASSERT_EQ(sid[8], name[0]);
            std::free(sid);
        }
    };
    std::thread other([&] { EXPECT_EQ(faultOf([&] { choose(L"other"); }), 0u); });
    EXPECT_EQ(faultOf([&] { choose(L"this"); }), 0u);
    other.join();
}

// Two windows of one thread: a dialog opens over another of its kind, from a timer, and both come to their ends.
TEST_F(Apart, TwoListsOfAThreadEachWithItsDialog)
{
    ListHost first;
    ListHost second;
    initializeListCtrl2(first.object(), nullptr);
    initializeListCtrl2(second.object(), nullptr);
    std::mt19937 random(stress::seed());
    for (long long round = 0; round < stress::count() && !HasFailure(); ++round) {
        stress::alive("two lists of a thread");
        unsigned char inner = 2;
        const bool innerOk = random() % 2 == 0;
        const bool outerOk = random() % 2 == 0;
        const Worker worker([&](HWND dialog) {
            if (inner != 2) {
                post(dialog, outerOk ? IDOK : IDCANCEL);
                return;
            }
            inner = 3; // only once
            const Worker over([&](HWND) {
                for (const HWND each : DialogScript::dialogs()) {
                    if (each != dialog) { // neither of the two disables the other
                        post(each, innerOk ? IDOK : IDCANCEL);
                    }
                }
            });
            inner = addToListCtrl2(second.object(), nullptr, Paths{L"C:\\inner"});
        });
        EXPECT_EQ(addToListCtrl2(first.object(), nullptr, Paths{L"C:\\outer"}) != 0, outerOk);
        EXPECT_EQ(inner != 0, innerOk);
        EXPECT_EQ(first.rowCount(), outerOk ? 1 : 0);
        EXPECT_EQ(second.rowCount(), innerOk ? 1 : 0);
        for (ListHost* const host : {&first, &second}) {
            QuotaRule* const rules = getDataModified2(host->object());
            host->select(-1);
            dropFromListCtrl2(host->object());
            releaseChain(rules);
        }
        m_store.takeCalls();
    }
}

// A call for the list of another thread comes through, as long as that one takes its messages.
TEST_F(Apart, AListOfAnotherThread)
{
    HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CListCtrl* list = nullptr;
    DWORD owner = 0;
    std::thread other([&] {
        ListHost host;
        list = host.object();
        owner = GetCurrentThreadId();
        SetEvent(ready);
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0) {
            DispatchMessageW(&message);
        }
    });
    WaitForSingleObject(ready, INFINITE);
    initializeListCtrl2(list, nullptr);
    for (long long round = 0; round < stress::count() && !HasFailure(); ++round) {
        stress::alive("a list of another thread");
        fillUpListCtrl2(Paths{L"C:\\a"}, list);
        sortListCtrl2(list, 1);
        EXPECT_EQ(countItems2(list), 30);
        QuotaRule* const rules = getDataModified2(list);
        EXPECT_EQ(chainTexts(rules).size(), 30u);
        initializeListCtrl2(list, nullptr);
        releaseChain(rules);
        m_store.takeCalls();
    }
    PostThreadMessageW(owner, WM_QUIT, 0, 0);
    other.join();
    CloseHandle(ready);
}
