#include "panel_measures.h"

#include "bench/support/account_sid.h"
#include "bench/support/list_view.h"
#include "bench/support/time.h"
#include "bench_store.h"
#include "measure.h"
#include "res/resource.h"
#include "row_text.h"
#include "store/lornix.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr int kButtons[] = {101, 102};
constexpr int kListId = 100;

CListCtrl* objectOf(CorvaneListObject& list)
{
    return reinterpret_cast<CListCtrl*>(&list);
}

// ---- a group's rule ----

Time accepted; ///< when OK was pressed

void CALLBACK acceptSettings(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dialog = GetActiveWindow();
    HWND box = dialog != nullptr ? GetDlgItem(dialog, IDC_QUOTA_GROUP_MEMBERS) : nullptr;
    if (box != nullptr) {
        SendMessageW(box, BM_CLICK, 0, 0);
        accepted = now();
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    }
}

/// From OK to the last row.
Time addGroup(HWND window, HWND list)
{
    CorvaneListObject object{};
    object.window = list;
    const AccountSid group(1);
    AccountSid sid = group;
    wchar_t path[] = L"D:\\Departments";
    std::uintptr_t paths[] = {1, reinterpret_cast<std::uintptr_t>(path)};
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, acceptSettings);
    addToListCtrl2(objectOf(object), &sid, reinterpret_cast<const PathList*>(paths));
    const Time time = now() - accepted;
    KillTimer(nullptr, timer);
    settle(window);
    return time;
}

/// The same records and rows, without a dialog. The group's own row is there already.
Time addBareGroup(HWND window, HWND list, int members)
{
    const Time time = timed([&] {
        SidList* accounts = enumerateGroupUsers(nullptr, L"", nullptr);
        list_view::setRedraw(list, false);
        for (int i = 0; i <= members; ++i) {
            auto* rule = static_cast<QuotaRule*>(std::malloc(sizeof(QuotaRule)));
            *rule = QuotaRule{};
            rule->sid = sidDup(accounts->sids[std::min(i, members - 1)]);
            rule->path = _wcsdup(L"D:\\Departments");
            rule->hardLimit = 104857600;
            rule->softLimit = 99614720;
            RowText text;
            text.writeNumbers(*rule);
            getAccountBySidW(rule->sid, text.name, 128);
            text.insertInto(list, rule->path, reinterpret_cast<LPARAM>(rule));
        }
        list_view::setRedraw(list, true);
        freeSidList(accounts);
    });
    settle(window);
    return time;
}

Comparison groupRule(HWND window, int members, int rounds)
{
    Tally corvane;
    Tally bare;
    benchStoreServeMembers(members);
    for (int round = 0; round < rounds; ++round) {
        HWND list = createList(window);
        corvane.add(addGroup(window, list));
        DestroyWindow(list);
        list = createList(window);
        bare.add(addBareGroup(window, list, members));
        DestroyWindow(list);
    }
    benchStoreServeMembers(0);
    return {"group rule with N members", members, corvane, bare};
}

// ---- a parent that listens ----

enum class Answer : std::uint8_t { kCorvane, kBare };

/// What a panel does at every change of a row.
LRESULT CALLBACK listen(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR answer)
{
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == LVN_ITEMCHANGED) {
        if (static_cast<Answer>(answer) == Answer::kCorvane) {
            checkForButtons(window, kListId, kButtons[0], kButtons[1], 0);
        } else {
            const BOOL any = SendDlgItemMessageW(window, kListId, LVM_GETSELECTEDCOUNT, 0, 0) > 0;
            for (const int button : kButtons) {
                EnableWindow(GetDlgItem(window, button), any);
            }
        }
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

/// A list whose rows change while its parent listens.
class HeardList {
public:
    HeardList(HWND window, int rows, Answer answer)
        : m_window(window)
        , m_list(createList(window))
    {
        SetWindowLongPtrW(m_list, GWLP_ID, kListId);
        wchar_t cell[] = L"text";
        wchar_t* const cells[] = {cell, cell, cell, cell, cell, cell};
        list_view::setRedraw(m_list, false);
        for (int row = 0; row < rows; ++row) {
            list_view::insert(m_list, row, cells, row + 1);
        }
        list_view::setRedraw(m_list, true);
        settle(window);
        SetWindowSubclass(window, listen, 1, static_cast<DWORD_PTR>(answer));
    }
    HeardList(const HeardList&) = delete;
    HeardList& operator=(const HeardList&) = delete;
    ~HeardList()
    {
        RemoveWindowSubclass(m_window, listen, 1);
        DestroyWindow(m_list);
    }

    Time selectAllThenOne()
    {
        return timed([this] {
            list_view::select(m_list, -1, true);
            list_view::selectOnly(m_list, 0);
        });
    }

private:
    HWND m_window;
    HWND m_list;
};

Comparison heardSelection(HWND window, int rows, int rounds)
{
    Tally corvane;
    Tally bare;
    for (int round = 0; round < rounds; ++round) {
        corvane.add(HeardList(window, rows, Answer::kCorvane).selectAllThenOne());
        bare.add(HeardList(window, rows, Answer::kBare).selectAllThenOne());
    }
    return {"select all, one click, parent listens", rows, corvane, bare};
}

} // namespace

std::vector<Comparison> measurePanel(HWND window, const Options& options)
{
    HWND buttons[std::size(kButtons)];
    for (std::size_t i = 0; i < std::size(kButtons); ++i) {
        buttons[i] =
            CreateWindowExW(0, L"Button", L"", WS_CHILD, 0, 0, 10, 10, window,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(kButtons[i])), nullptr, nullptr);
    }
    std::vector<Comparison> comparisons;
    constexpr int kSeconds = 10000; // above it the control alone takes minutes
    for (const int size : options.sizes) {
        if (size <= kSeconds) {
            const int rounds = std::min(options.roundsOf(size), 5);
            comparisons.push_back(groupRule(window, size, rounds));
            comparisons.push_back(heardSelection(window, size, rounds));
        }
    }
    for (HWND button : buttons) {
        DestroyWindow(button);
    }
    return comparisons;
}
