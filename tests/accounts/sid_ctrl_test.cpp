// The account list's own operations, which no dialog reaches.
#include "accounts/sid_ctrl.h"

#include "store/lornix.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::ElementsAre;
using testing::StartsWith;

namespace {

struct SidCtrlTest : testing::Test {
    SidCtrlTest()
    {
        parent =
            CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 600, 300, nullptr, nullptr, nullptr, nullptr);
        window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 600, 300,
                                 parent, nullptr, nullptr, nullptr);
        list.attach(window);
    }
    ~SidCtrlTest() override { DestroyWindow(parent); }

    void addRows()
    {
        list.initColumns();
        int row = 0;
        for (const wchar_t* name : {L"bob", L"carl", L"adam", L"Bob"}) {
            const std::wstring fullName = std::wstring(L"DOM\\") + name;
            list.insertAccountRow(row, 0, name, fullName.c_str(), L"User",
                                  reinterpret_cast<void*>(INT_PTR{100 + row}));
            ++row;
        }
    }

    RecordingStore store;
    HWND parent;
    HWND window;
    CSidCtrl list;
};

/// Makes reading one row's text fail, as a broken control may.
LRESULT CALLBACK faultAtRow(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR row)
{
    const auto* const item = reinterpret_cast<const LVITEMW*>(lParam);
    if ((message == LVM_GETITEMTEXTW && wParam == row) ||
        (message == LVM_GETITEMW && item->iItem == static_cast<int>(row) && (item->mask & LVIF_TEXT) != 0))
    {
        RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

template <class Member>
std::ptrdiff_t slotOf(Member member)
{
    std::ptrdiff_t words[sizeof(Member) / sizeof(std::ptrdiff_t)];
    std::memcpy(words, &member, sizeof member);
    return words[0];
}

} // namespace

TEST_F(SidCtrlTest, ItsOperationsTakeTheirSlotsInOrder)
{
    const std::ptrdiff_t first = slotOf(&CSidCtrl::onColumnClick);
    constexpr std::ptrdiff_t kSlot = sizeof(void*);
    EXPECT_EQ(slotOf(&CSidCtrl::colorCell), first + kSlot);
    EXPECT_EQ(slotOf(&CSidCtrl::applyFilter), first + 2 * kSlot);
}

TEST_F(SidCtrlTest, InsertsARowWithAllItHas)
{
    list.initColumns();
    EXPECT_EQ(list.insertAccountRow(0, 3, L"bob", L"DOM\\bob", L"User", reinterpret_cast<void*>(1)), 0);
    EXPECT_EQ(list.insertAccountRow(7, 0, L"carl", L"DOM\\carl", L"Group", nullptr), 1)
        << "there is no seventh";
    EXPECT_EQ(list.image(0), 3);
    EXPECT_EQ(list.text(0, 0), L"bob");
    EXPECT_EQ(list.text(0, 1), L"DOM\\bob");
    EXPECT_EQ(list.text(0, 2), L"User");
    EXPECT_EQ(list.data(0), 1);
    EXPECT_EQ(list.text(1, 1), L"DOM\\carl");
}

TEST_F(SidCtrlTest, FindsARowByItsExactText)
{
    addRows();
    EXPECT_EQ(list.findRowByText(0, L"bob", 0), 0);
    EXPECT_EQ(list.findRowByText(1, L"bob", 0), -1) << "case counts";
    EXPECT_EQ(list.findRowByText(0, L"Bob", 0), 3);
    EXPECT_EQ(list.findRowByText(0, L"DOM\\adam", 1), 2);
    EXPECT_EQ(list.findRowByText(0, L"bo", 0), -1);
    EXPECT_EQ(list.findRowByText(4, L"bob", 0), -1);
    EXPECT_EQ(list.findRowByText(0, nullptr, 0), -1);
}

TEST_F(SidCtrlTest, SelectingASidMovesTheMarkAndNothingElse)
{
    addRows();
    EXPECT_EQ(list.selectSid(store.account("DOM\\adam")), 1);
    EXPECT_EQ(SendMessageW(window, LVM_GETSELECTIONMARK, 0, 0), 2);
    EXPECT_EQ(list.nextSelected(), -1);
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW DOM\\adam 512"));
}

TEST_F(SidCtrlTest, SelectingASidWithoutARowChangesNothing)
{
    addRows();
    EXPECT_EQ(list.selectSid(store.account("DOM\\adam")), 1);
    EXPECT_EQ(list.selectSid(store.account("DOM\\nobody")), 0);
    EXPECT_EQ(list.selectSid(store.unknownAccount()), 0);
    EXPECT_EQ(SendMessageW(window, LVM_GETSELECTIONMARK, 0, 0), 2);
}

TEST_F(SidCtrlTest, AFaultWhileSelectingASidIsLogged)
{
    addRows();
    store.raise("getAccountBySidW", Fault::kAccessViolation);
    EXPECT_EQ(list.selectSid(store.account("DOM\\adam")), 0);
    EXPECT_THAT(store.lines(), ElementsAre("No CU selected\n"));
}

TEST_F(SidCtrlTest, AFaultInAComparisonIsLoggedAndCountsAsEqual)
{
    addRows();
    SetWindowSubclass(window, faultAtRow, 1, 1);
    list.onColumnClick(0);
    EXPECT_EQ(list.rowCount(), 4);
    ASSERT_FALSE(store.lines().empty());
    for (const std::string& line : store.lines()) {
        EXPECT_THAT(line, StartsWith("*** FAIL in comparison: "));
        EXPECT_THAT(line, testing::HasSubstr("101")) << "the row that cannot be read";
        EXPECT_THAT(line, testing::EndsWith(" ***\n"));
    }
}

TEST_F(SidCtrlTest, ReadsEachRowOnceForASort)
{
    addRows();
    static int reads;
    reads = 0;
    const auto count = [](HWND target, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                          DWORD_PTR) -> LRESULT {
        const bool text =
            message == LVM_GETITEMTEXTW ||
            (message == LVM_GETITEMW && (reinterpret_cast<const LVITEMW*>(lParam)->mask & LVIF_TEXT) != 0);
        reads += text ? 1 : 0;
        return DefSubclassProc(target, message, wParam, lParam);
    };
    SetWindowSubclass(window, count, 1, 0);
    list.onColumnClick(1);
    EXPECT_EQ(reads, list.rowCount());
}

TEST_F(SidCtrlTest, AnObjectThatGoesBeforeItsWindowLeavesItAlone)
{
    {
        CSidCtrl filled;
        filled.attach(window);
        EXPECT_EQ(filled.startFill(L"SERVER"), 1);
    }
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
    EXPECT_EQ(SendMessageW(window, LVM_GETITEMCOUNT, 0, 0), list.rowCount());
    // The thread of that fill may still run, on this store.
    CSidCtrl next;
    next.attach(window);
    next.startFill(L"SERVER");
    const ULONGLONG deadline = GetTickCount64() + 20000;
    MSG message;
    while (GetTickCount64() < deadline && next.findRowByText(0, L"Anyone", 0) != 0) {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }
    EXPECT_EQ(next.findRowByText(0, L"Anyone", 0), 0);
    EXPECT_EQ(next.rowCount(), 1);
}
