// A list that faults while it is sorted.
#include "tests/quota/rule_list_test.h"

#include "tests/support/import_patch.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;

namespace {

WNDPROC before = nullptr;
Fault fault = Fault::kNone;

int* volatile nowhere = nullptr;

bool readsTextOfFirstRow(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == LVM_GETITEMTEXTW) {
        return wParam == 0;
    }
    const auto* const item = reinterpret_cast<const LVITEMW*>(lParam);
    return message == LVM_GETITEMW && item->iItem == 0 && (item->mask & LVIF_TEXT) != 0;
}

// The list as a host might have broken it: the text of its first row cannot be had.
LRESULT CALLBACK faultOnFirstRow(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (readsTextOfFirstRow(message, wParam, lParam)) {
        if (fault == Fault::kAccessViolation) {
            *nowhere = 1;
        } else {
            RaiseException(0xE0000001, 0, 0, nullptr);
        }
    }
    return CallWindowProcW(before, window, message, wParam, lParam);
}

std::vector<std::string> boxesOfSorting;

int WINAPI noteBoxOfSorting(HWND owner, const char* text, const char* caption, UINT style)
{
    boxesOfSorting.push_back(std::string(caption) + ": " + text + ", " + std::to_string(style) + ", " +
                             std::to_string(reinterpret_cast<UINT_PTR>(owner)));
    return IDOK;
}

struct SortFaultTest : RuleListTest {
    void fill(const std::vector<std::wstring>& names)
    {
        prepare();
        LPARAM data = 0;
        for (const std::wstring& name : names) {
            host.addRow(++data, {name});
        }
        sort(5); // so that the next column is a new one; all texts there are equal
        before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(host.list(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(faultOnFirstRow)));
    }

    std::vector<std::string> sorted()
    {
        sort(0);
        SetWindowLongPtrW(host.list(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
        return host.column(0);
    }
};

} // namespace

TEST_F(SortFaultTest, ShowsABoxAndTakesTheRowsAsEqual)
{
    for (const Fault kind : {Fault::kAccessViolation, Fault::kForeignException}) {
        fault = kind;
        fill({L"alice", L"bob"});
        DialogScript script;
        script.answerBox("Sort failed unexpectedly", "Error");
        EXPECT_THAT(script.run([this] { return sorted(); }), ElementsAre("alice", "bob"));
        EXPECT_EQ(script.boxOwner(), host.window());
    }
}

TEST_F(SortFaultTest, ShowsABoxForEachComparisonWithTheRow)
{
    fault = Fault::kAccessViolation;
    const ImportPatch box(ImportPatch::corvane(), "MessageBoxA", noteBoxOfSorting);
    ASSERT_EQ(box.count(), 1);
    fill({L"alice", L"bob", L"cleo", L"dan", L"eve"});
    boxesOfSorting.clear();
    sorted();
    EXPECT_GE(boxesOfSorting.size(), 1u);
    EXPECT_LE(boxesOfSorting.size(), 4u);
    EXPECT_THAT(boxesOfSorting, Each("Error: Sort failed unexpectedly, " + std::to_string(MB_OK) + ", " +
                                     std::to_string(reinterpret_cast<UINT_PTR>(host.header()))));
}

TEST_F(SortFaultTest, SortsWellAgainAfterwards)
{
    fault = Fault::kAccessViolation;
    fill({L"alice", L"bob"});
    {
        const ImportPatch box(ImportPatch::corvane(), "MessageBoxA", noteBoxOfSorting);
        sorted();
    }
    sort(5);
    sort(0);
    EXPECT_THAT(host.column(0), ElementsAre("bob", "alice"));
}
