// In-place editing of a soft limit.
#include "tests/quota/rule_list_test.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <memory>
#include <new>

using testing::IsEmpty;

namespace {

struct ReleasePages {
    void operator()(void* pages) const { VirtualFree(pages, 0, MEM_RELEASE); }
};

struct CellEditTest : RuleListTest {
    void SetUp() override
    {
        store.put(L"C:\\b", nullptr, 5000, 4000, 0);
        store.put(L"C:\\a", nullptr, 3000, 2000, 0);
        prepare({L"C:\\b", L"C:\\a"});
        store.takeCalls();
    }

    int notify(UINT code, int row, int column, const wchar_t* text)
    {
        NMLVDISPINFOW notification{};
        notification.hdr = {host.list(), ListHost::kListId, code};
        notification.item.iItem = row;
        notification.item.iSubItem = column;
        notification.item.pszText = const_cast<wchar_t*>(text);
        return hookNotify(host.window(), ListHost::kListId, &notification.hdr);
    }

    /// Types a text into the soft limit of row 0.
    /// @return both limits afterwards, which must be the same.
    int64_t typed(const wchar_t* text)
    {
        EXPECT_EQ(notify(LVN_ENDLABELEDITW, 0, 2, text), 1);
        EXPECT_EQ(host.record(0)->softLimit, host.record(0)->hardLimit);
        return host.record(0)->softLimit;
    }
};

} // namespace

TEST_F(CellEditTest, OnlyTheSoftLimitCanBeEdited)
{
    for (int column = 0; column < 6; ++column) {
        EXPECT_EQ(notify(LVN_BEGINLABELEDITW, 0, column, L""), column == 2 ? 0 : 1);
    }
}

TEST_F(CellEditTest, WritesBothLimits)
{
    EXPECT_EQ(typed(L"500K"), 512000);
    EXPECT_EQ(host.record(1)->softLimit, 4000) << "of this row alone";
    EXPECT_EQ(notify(LVN_ENDLABELEDITW, 1, 2, L"7"), 1);
    EXPECT_EQ(host.record(1)->softLimit, 7);
    EXPECT_EQ(host.record(1)->hardLimit, 7);
}

TEST_F(CellEditTest, ReadsThreeUnits)
{
    EXPECT_EQ(typed(L"2k"), 2048);
    EXPECT_EQ(typed(L"2m"), 2097152);
    EXPECT_EQ(typed(L"1G"), 1073741824);
    EXPECT_EQ(typed(L"1t"), 1);
    EXPECT_EQ(typed(L"5 K"), 5);
    EXPECT_EQ(typed(L"12"), 12);
    EXPECT_EQ(typed(L"-3K"), -3072);
}

TEST_F(CellEditTest, WrapsAt32Bits)
{
    EXPECT_EQ(typed(L"3G"), -1073741824);
    EXPECT_EQ(typed(L"2G"), -2147483648LL);
    EXPECT_EQ(typed(L"4G"), 0);
    EXPECT_EQ(typed(L"4097M"), 1048576);
}

TEST_F(CellEditTest, TakesNoNumberAsMinusOne)
{
    EXPECT_EQ(typed(L"abc"), -1);
    EXPECT_EQ(typed(L""), -1);
}

TEST_F(CellEditTest, LeavesTheTextsAlone)
{
    const auto before = host.rows();
    typed(L"500K");
    EXPECT_EQ(host.rows(), before);
}

TEST_F(CellEditTest, RefusesOtherColumns)
{
    for (const int column : {0, 1, 3, 4, 5}) {
        EXPECT_EQ(notify(LVN_ENDLABELEDITW, 0, column, L"500K"), 0);
    }
    EXPECT_EQ(host.record(0)->softLimit, 2000);
    EXPECT_EQ(host.record(0)->hardLimit, 3000);
}

TEST_F(CellEditTest, KeepsTheLimitsWhenCancelled)
{
    EXPECT_EQ(notify(LVN_ENDLABELEDITW, 0, 2, nullptr), 0);
    EXPECT_EQ(host.record(0)->softLimit, 2000);
    EXPECT_EQ(host.record(0)->hardLimit, 3000);
}

TEST_F(CellEditTest, IgnoresOtherNotifications)
{
    for (const UINT code :
         {LVN_ITEMCHANGED, LVN_COLUMNCLICK, LVN_ENDLABELEDITA, LVN_BEGINLABELEDITA, NM_CLICK})
    {
        EXPECT_EQ(notify(code, 0, 2, L"500K"), 0);
    }
    EXPECT_EQ(host.record(0)->softLimit, 2000);
}

TEST_F(CellEditTest, ANotificationMayBeJustItsHeader)
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const std::unique_ptr<char, ReleasePages> pages(static_cast<char*>(
        VirtualAlloc(nullptr, 2 * system.dwPageSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    ASSERT_NE(pages, nullptr);
    DWORD before = 0;
    ASSERT_TRUE(VirtualProtect(pages.get() + system.dwPageSize, system.dwPageSize, PAGE_NOACCESS, &before));
    const auto header = new (pages.get() + system.dwPageSize - sizeof(NMHDR)) NMHDR;
    for (const UINT code : {NM_SETFOCUS, NM_KILLFOCUS, NM_RELEASEDCAPTURE}) {
        *header = {host.list(), ListHost::kListId, code};
        EXPECT_EQ(hookNotify(host.window(), ListHost::kListId, header), 0);
    }
}

TEST_F(CellEditTest, AsksTheStoreNothing)
{
    typed(L"500K");
    EXPECT_THAT(store.calls(), IsEmpty());
}
