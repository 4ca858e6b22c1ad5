#include "host/folder_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::wstring>;

/// A folder list over a real box of many choices.
struct FolderListTest : testing::Test {
    ~FolderListTest() override { DestroyWindow(box); }

    Names entries() const
    {
        Names texts;
        for (WPARAM i = 0; i < static_cast<WPARAM>(SendMessageW(box, LB_GETCOUNT, 0, 0)); ++i) {
            std::wstring text(static_cast<size_t>(SendMessageW(box, LB_GETTEXTLEN, i, 0)) + 1, L'\0');
            SendMessageW(box, LB_GETTEXT, i, reinterpret_cast<LPARAM>(text.data()));
            text.pop_back();
            texts.push_back(text);
        }
        return texts;
    }
    LRESULT width() const { return SendMessageW(box, LB_GETHORIZONTALEXTENT, 0, 0); }

    HWND box = CreateWindowExW(0, L"LISTBOX", L"", WS_POPUP | WS_HSCROLL | WS_VSCROLL | LBS_EXTENDEDSEL, 0, 0,
                               100, 100, nullptr, nullptr, nullptr, nullptr);
    host::FolderList list{box};
};

} // namespace

TEST_F(FolderListTest, ShowsEachFolderOnceAndTidy)
{
    EXPECT_EQ(list.add({L"C:\\b\\", L"C:/a", L"c:\\B", L""}), (Names{L"C:\\b", L"C:\\a"}));
    EXPECT_EQ(list.add({L"C:\\A", L"C:\\c"}), (Names{L"C:\\c"}));
    EXPECT_EQ(list.all(), (Names{L"C:\\b", L"C:\\a", L"C:\\c"}));
    EXPECT_EQ(entries(), list.all());
    EXPECT_TRUE(list.has(L"c:/a/"));
    EXPECT_FALSE(list.has(L"C:\\d"));
}

TEST_F(FolderListTest, ForgetsWhatIsRemovedAndKnowsWhereTheRestStands)
{
    list.add({L"C:\\a", L"C:\\b", L"C:\\c", L"C:\\d"});
    list.remove({L"c:/c", L"C:\\a", L"C:\\never"});
    EXPECT_EQ(list.all(), (Names{L"C:\\b", L"C:\\d"}));
    EXPECT_EQ(entries(), list.all());
    EXPECT_FALSE(list.has(L"C:\\a"));
    list.selectOnly(L"C:\\d");
    EXPECT_EQ(list.selected(), Names{L"C:\\d"});
    EXPECT_EQ(list.add({L"C:\\a"}), Names{L"C:\\a"});
    list.selectOnly(L"C:\\a");
    EXPECT_EQ(list.selected(), Names{L"C:\\a"});
    EXPECT_EQ(entries(), (Names{L"C:\\b", L"C:\\d", L"C:\\a"}));
}

TEST_F(FolderListTest, SelectsNothingForAFolderThatIsNotShown)
{
    list.add({L"C:\\a", L"C:\\b"});
    list.selectOnly(L"C:\\a");
    list.selectOnly(L"C:\\never");
    EXPECT_EQ(list.selected(), Names{L"C:\\a"});
}

TEST_F(FolderListTest, ScrollsToTheEndOfTheLongestName)
{
    const std::wstring longest = L"C:\\" + std::wstring(200, L'x');
    list.add({L"C:\\short"});
    const LRESULT narrow = width();
    list.add({longest});
    const LRESULT wide = width();
    EXPECT_GT(wide, narrow);
    list.add({L"C:\\other"});
    EXPECT_EQ(width(), wide);
    list.remove({L"C:\\other"});
    EXPECT_EQ(width(), wide);
    list.remove({longest});
    EXPECT_EQ(width(), narrow);
}
