// Preparing a list view for quota rules.
#include "tests/quota/rule_list_test.h"

#include "tests/support/text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What the list was told, in its order.
std::vector<std::string> told;

LRESULT CALLBACK listen(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR /*id*/,
                        DWORD_PTR /*data*/)
{
    switch (message) {
    case LVM_DELETEALLITEMS:
        told.push_back("delete all rows");
        break;
    case LVM_DELETECOLUMN:
        told.push_back("delete column " + std::to_string(wParam));
        break;
    case LVM_INSERTCOLUMNW: {
        const auto& column = *reinterpret_cast<const LVCOLUMNW*>(lParam);
        told.push_back("insert column " + std::to_string(wParam) + " \"" + utf8(column.pszText) + "\" " +
                       std::to_string(column.cx) +
                       ((column.fmt & LVCFMT_JUSTIFYMASK) == LVCFMT_RIGHT ? " right" : ""));
        break;
    }
    default:
        break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

struct ListColumnsTest : RuleListTest {
    DWORD extendedStyle() const
    {
        return static_cast<DWORD>(SendMessageW(host.list(), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    }
};

constexpr DWORD kAdded = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP;

} // namespace

TEST_F(ListColumnsTest, AreInsertedInThisOrder)
{
    told.clear();
    SetWindowSubclass(host.list(), listen, 1, 0);
    prepare();
    EXPECT_THAT(told, ElementsAre("delete all rows", "insert column 0 \"Credentials\" 100 right",
                                  "insert column 1 \"Quota Limit\" 50 right",
                                  "insert column 2 \"Soft Quota Limit\" 50 right",
                                  "insert column 3 \"In Use\" 50 right", "insert column 4 \"%%\" 40 right",
                                  "insert column 5 \"Defined in\" 100 right"));
    told.clear();
    prepare();
    EXPECT_THAT(std::vector(told.begin(), told.begin() + 7),
                ElementsAre("delete all rows", "delete column 0", "delete column 0", "delete column 0",
                            "delete column 0", "delete column 0", "delete column 0"));
    EXPECT_EQ(told.size(), 13u);
}

TEST_F(ListColumnsTest, StandInTheHeader)
{
    prepare();
    EXPECT_THAT(host.columns(), ElementsAre(testing::StartsWith("Credentials 100"), "Quota Limit 50 right",
                                            "Soft Quota Limit 50 right", "In Use 50 right", "%% 40 right",
                                            "Defined in 100 right"));
}

TEST_F(ListColumnsTest, TakeThePlaceOfWhatWasThere)
{
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = 10;
    for (int i = 0; i < 9; ++i) {
        SendMessageW(host.list(), LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    }
    host.addRow(0, {L"a"});
    prepare();
    EXPECT_EQ(Header_GetItemCount(host.header()), 6);
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListColumnsTest, ExtendedStylesAreAddedToThoseThatAreThere)
{
    SendMessageW(host.list(), LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES | LVS_EX_ONECLICKACTIVATE);
    prepare();
    EXPECT_EQ(extendedStyle(), kAdded | LVS_EX_CHECKBOXES | LVS_EX_ONECLICKACTIVATE);
}

TEST_F(ListColumnsTest, ExtendedStylesAreThese)
{
    prepare();
    EXPECT_EQ(extendedStyle(), kAdded);
}

TEST_F(ListColumnsTest, FoldersAreFilledInAtOnce)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    store.put(L"C:\\b", nullptr, 4096, 1024, 0);
    prepare({L"C:\\b", L"C:\\a"});
    EXPECT_THAT(store.calls(), ElementsAre("getQuotaList C:\\b", "getQuotaList C:\\a"));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a", "C:\\b"));
}

TEST_F(ListColumnsTest, PreparingAgainFillsAfresh)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    prepare({L"C:\\a"});
    prepare({L"C:\\a"});
    EXPECT_EQ(host.rowCount(), 1);
    prepare();
    EXPECT_EQ(host.rowCount(), 0);
}
