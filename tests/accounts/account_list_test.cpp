// The account list in the chooser: its columns, sorting, filters, colours, and the row that stands for the fill.
#include "tests/accounts/chooser_fixture.h"

#include "store/lornix.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <functional>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class AccountListTest : public ChooserFixture {
protected:
    /// Fills the list, does one thing with it, and cancels.
    void filled(std::function<void(HWND)> act)
    {
        searchServer();
        then("work", std::move(act));
        finish();
    }
    void finish()
    {
        cancel();
        EXPECT_EQ(choose(), nullptr);
    }
    /// A fill that stands still with its first rows in the list while things are done to it.
    void during(std::function<void(HWND)> act, int rowsBefore = 2)
    {
        gate.shut();
        startSearch();
        script.step("the first rows", [this, rowsBefore](HWND dialog) {
            return list(dialog).rowCount() == rowsBefore && gate.waiting() == 1;
        });
        then("work", [this, act = std::move(act)](HWND dialog) {
            act(dialog);
            gate.open();
        });
        waitForFill();
    }
};

/// What the dialog answers to a stage of the list's painting.
LRESULT paintStage(HWND dialog, DWORD stage, int row, int column, COLORREF& color)
{
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {GetDlgItem(dialog, IDC_CHOOSER_LIST), IDC_CHOOSER_LIST, NM_CUSTOMDRAW};
    draw.nmcd.dwDrawStage = stage;
    draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
    draw.iSubItem = column;
    draw.clrText = color;
    const LRESULT answer = SendMessageW(dialog, WM_NOTIFY, IDC_CHOOSER_LIST, reinterpret_cast<LPARAM>(&draw));
    color = draw.clrText;
    return answer;
}

COLORREF colorOf(HWND dialog, int row, int column)
{
    COLORREF color = 0x123456;
    EXPECT_EQ(paintStage(dialog, CDDS_ITEMPREPAINT | CDDS_SUBITEM, row, column, color), CDRF_DODEFAULT);
    return color;
}

constexpr COLORREF kMatch = 0x7F00FF;
constexpr COLORREF kGrey = 0x7F7F7F;

} // namespace

// ---- columns ----

TEST_F(AccountListTest, HasItsColumnsStylesAndFilterBar)
{
    script.onDialog("let rows be renamed", [](HWND dialog) {
        SetWindowLongPtrW(list(dialog), GWL_STYLE,
                          GetWindowLongPtrW(list(dialog), GWL_STYLE) | LVS_EDITLABELS);
        ListView_SetExtendedListViewStyle(list(dialog), LVS_EX_CHECKBOXES);
    });
    filled([this](HWND dialog) {
        const HWND header = list(dialog).header();
        EXPECT_THAT(list(dialog).columns(), ElementsAre("Account 200", "Full Name 200", "Type 50"));
        EXPECT_EQ(GetWindowLongPtrW(list(dialog), GWL_STYLE) & 0x200, 0) << "labels are not edited";
        EXPECT_EQ(ListView_GetExtendedListViewStyle(list(dialog)), 0x4021u | LVS_EX_CHECKBOXES);
        EXPECT_EQ(GetWindowLongPtrW(header, GWL_STYLE) & 0x100, 0x100);
        EXPECT_EQ(filterBar->delay(), 50);
        for (int column = 0; column < 3; ++column) {
            EXPECT_TRUE(filterBar->takesText(column)) << column;
        }
    });
}

TEST_F(AccountListTest, HasFourImagesOf16Pixels)
{
    filled([](HWND dialog) {
        const HIMAGELIST images = ListView_GetImageList(list(dialog), LVSIL_SMALL);
        ASSERT_NE(images, nullptr);
        EXPECT_EQ(ImageList_GetImageCount(images), 4);
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(images, &width, &height);
        EXPECT_EQ(width, 16);
        EXPECT_EQ(height, 16);
    });
}

// ---- sorting ----

TEST_F(AccountListTest, AHeaderClickSortsFromZToAAndTheNextTurnsItRound)
{
    giveUsers({"DOM\\bob", "DOM\\Carl", "DOM\\adam"});
    filled([](HWND dialog) {
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Carl", "bob", "Anyone", "adam"));
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("adam", "Anyone", "bob", "Carl"));
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Carl", "bob", "Anyone", "adam"));
    });
}

TEST_F(AccountListTest, AnotherHeaderStartsFromZToAAgain)
{
    giveUsers({"DOM\\bob"});
    giveGroups({"DOM\\staff"});
    filled([](HWND dialog) {
        list(dialog).clickColumn(0);
        list(dialog).clickColumn(0);
        list(dialog).clickColumn(2);
        EXPECT_THAT(list(dialog).column(2), ElementsAre("User", "System", "Group"));
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("staff", "bob", "Anyone"));
    });
}

TEST_F(AccountListTest, NumbersInNamesAreTexts)
{
    giveUsers({"9", "10", "100"});
    filled([](HWND dialog) {
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Anyone", "9", "100", "10"));
    });
}

TEST_F(AccountListTest, ItemDataGoWithTheirRows)
{
    giveUsers({"DOM\\bob", "DOM\\carl"});
    filled([](HWND dialog) {
        list(dialog).clickColumn(0);
        EXPECT_EQ(RecordingStore::nameOf(reinterpret_cast<void*>(list(dialog).data(0))), "DOM\\carl");
        EXPECT_EQ(list(dialog).data(2), 1);
    });
}

// ---- filters ----

TEST_F(AccountListTest, AFilterHidesWhatDoesNotBeginWithItInAnyCase)
{
    giveUsers({"DOM\\bob", "DOM\\Bobby", "DOM\\carl"});
    filled([this](HWND dialog) {
        filterBar->type(0, L"BO");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("bob", "Bobby"));
        filterBar->type(0, L"bobb");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Bobby"));
        filterBar->type(0, L"x");
        EXPECT_THAT(list(dialog).column(0), IsEmpty());
    });
}

TEST_F(AccountListTest, ClearingTheFilterBringsAllRowsBackAsTheyWereAndSorts)
{
    giveUsers({"DOM\\bob", "DOM\\adam", "DOM\\carl"});
    giveGroups({"DOM\\staff"});
    filled([this](HWND dialog) {
        const LPARAM bob = list(dialog).data(1);
        const int groupImage = list(dialog).image(4);
        filterBar->type(0, L"c");
        EXPECT_THAT(list(dialog).rows(), ElementsAre("carl|DOM\\carl|User"));
        filterBar->type(0, L"");
        const std::vector<std::string> all = list(dialog).rows();
        EXPECT_THAT(all,
                    UnorderedElementsAre("Anyone|Anyone|System", "bob|DOM\\bob|User", "adam|DOM\\adam|User",
                                         "carl|DOM\\carl|User", "staff|DOM\\staff|Group"));
        // The order is the one that all lists share, so a column sorted before comes the other way round.
        std::vector<std::string> fromZToA = {"staff", "carl", "bob", "Anyone", "adam"};
        const std::vector<std::string> names = list(dialog).column(0);
        const std::vector<std::string> fromAToZ(fromZToA.rbegin(), fromZToA.rend());
        EXPECT_TRUE(names == fromZToA || names == fromAToZ);
        EXPECT_EQ(list(dialog).data(list(dialog).rowOf("bob")), bob);
        EXPECT_EQ(list(dialog).image(list(dialog).rowOf("staff")), groupImage);
    });
}

TEST_F(AccountListTest, RowsThatComeBackAreSortedByTheChangedColumnAsTheListsOrderHasIt)
{
    giveUsers({"DOM\\bob", "DOM\\adam", "DOM\\carl"});
    filled([this](HWND dialog) {
        CorvaneListObject object{{}, list(dialog)};
        // Leaves the shared order at column 1, so that column 0 starts from Z to A.
        sortListCtrl2(reinterpret_cast<CListCtrl*>(&object), 1);
        filterBar->type(0, L"b");
        filterBar->type(0, L"");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("carl", "bob", "Anyone", "adam"));
        filterBar->type(0, L"b");
        filterBar->type(0, L"");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("adam", "Anyone", "bob", "carl"))
            << "the other way round";
    });
}

TEST_F(AccountListTest, ANarrowerFilterDoesNotSort)
{
    giveUsers({"DOM\\b1", "DOM\\c", "DOM\\b3", "DOM\\b2"});
    filled([this](HWND dialog) {
        filterBar->type(0, L"b");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("b1", "b3", "b2"));
    });
}

TEST_F(AccountListTest, FiltersOfSeveralColumnsCombine)
{
    giveUsers({"A\\bob", "B\\bob", "B\\carl"});
    giveGroups({"B\\bobs"});
    filled([this](HWND dialog) {
        filterBar->type(0, L"bob");
        filterBar->type(1, L"b\\");
        EXPECT_THAT(list(dialog).rows(), UnorderedElementsAre("bob|B\\bob|User", "bobs|B\\bobs|Group"));
        filterBar->type(2, L"gr");
        EXPECT_THAT(list(dialog).rows(), ElementsAre("bobs|B\\bobs|Group"));
        filterBar->type(1, L"");
        EXPECT_THAT(list(dialog).rows(), ElementsAre("bobs|B\\bobs|Group"));
        filterBar->type(2, L"");
        EXPECT_THAT(list(dialog).rows(),
                    UnorderedElementsAre("bob|A\\bob|User", "bob|B\\bob|User", "bobs|B\\bobs|Group"));
    });
}

TEST_F(AccountListTest, AFilterMessageForNoColumnDoesNothing)
{
    giveUsers({"DOM\\bob"});
    filled([this](HWND dialog) {
        filterBar->type(-1, L"x");
        EXPECT_EQ(list(dialog).rowCount(), 2);
    });
}

TEST_F(AccountListTest, TheSelectionStaysOnARowThatStays)
{
    giveUsers({"DOM\\a1", "DOM\\b1", "DOM\\a2", "DOM\\a3", "DOM\\b2"});
    filled([this](HWND dialog) {
        for (const wchar_t* filter : {L"b", L"b2"}) { // one by rebuilding the list, one by single deletions
            select(dialog, list(dialog).rowOf("b2"));
            ListView_SetSelectionMark(list(dialog), list(dialog).rowOf("b2"));
            filterBar->type(0, filter);
            const int row = list(dialog).rowOf("b2");
            EXPECT_EQ(list(dialog).selected(), row);
            EXPECT_EQ(list(dialog).focused(), row);
            EXPECT_EQ(ListView_GetSelectionMark(list(dialog)), row);
        }
    });
}

TEST_F(AccountListTest, AHiddenRowLosesItsSelection)
{
    giveUsers({"DOM\\bob"});
    filled([this](HWND dialog) {
        select(dialog, list(dialog).rowOf("bob"));
        filterBar->type(0, L"any");
        EXPECT_EQ(list(dialog).selected(), -1);
        filterBar->type(0, L"");
        EXPECT_EQ(list(dialog).selected(), -1);
    });
}

// ---- colours ----

TEST_F(AccountListTest, ACellThatIsWhatItsFilterSaysStandsOut)
{
    giveUsers({"DOM\\bob", "DOM\\Bo b", "DOM\\bobby"});
    filled([this](HWND dialog) {
        EXPECT_EQ(colorOf(dialog, 1, 0), kGrey) << "no filter";
        filterBar->type(0, L" BOB");
        EXPECT_EQ(list(dialog).rowCount(), 0) << "for hiding, a blank counts";
        filterBar->type(0, L"bo");
        filterBar->type(0, L"bob");
        const int bob = list(dialog).rowOf("bob");
        EXPECT_EQ(colorOf(dialog, bob, 0), kMatch);
        EXPECT_EQ(colorOf(dialog, bob, 1), kGrey);
        EXPECT_EQ(colorOf(dialog, bob, 2), kGrey);
        EXPECT_EQ(colorOf(dialog, list(dialog).rowOf("bobby"), 0), kGrey) << "the ends must meet";
    });
}

TEST_F(AccountListTest, PaintingAsksForItsCells)
{
    filled([](HWND dialog) {
        COLORREF color = 5;
        EXPECT_EQ(paintStage(dialog, CDDS_PREPAINT, 0, 0, color), CDRF_NOTIFYITEMDRAW);
        EXPECT_EQ(paintStage(dialog, CDDS_ITEMPREPAINT, 0, 0, color), CDRF_NOTIFYSUBITEMDRAW);
        EXPECT_EQ(paintStage(dialog, CDDS_POSTPAINT, 0, 0, color), CDRF_DODEFAULT);
        EXPECT_EQ(color, 5u);
    });
}

// ---- during a fill ----

TEST_F(AccountListTest, RowsShowWhileTheStoreIsStillBusy)
{
    SidList* const owners = RecordingStore::makeSidList({store.account("DOM\\zed")});
    gate.shut();
    startSearch();
    script.step("the first rows",
                [&](HWND dialog) { return list(dialog).rowCount() == 3 && gate.waiting() == 1; });
    then("look", [&](HWND dialog) {
        EXPECT_THAT(list(dialog).rows(), ElementsAre(std::string(kWaitText) + "||", "Anyone|Anyone|System",
                                                     "zed|DOM\\zed|File owner"));
        EXPECT_EQ(list(dialog).data(0), 0);
        gate.open();
    });
    waitForFill();
    lookAndCancel([](HWND dialog) { EXPECT_EQ(list(dialog).rowCount(), 2); }, owners);
    freeSidList(owners);
}

TEST_F(AccountListTest, TheWaitingRowGoesWhereverASortMovedIt)
{
    giveUsers({"DOM\\zoe", "DOM\\adam"});
    during([](HWND dialog) {
        list(dialog).clickColumn(0);
        list(dialog).clickColumn(0);
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Anyone", kWaitText));
    });
    then("look",
         [](HWND dialog) { EXPECT_THAT(list(dialog).column(0), ElementsAre("Anyone", "zoe", "adam")); });
    finish();
}

TEST_F(AccountListTest, TheWaitingRowGoesWhenAFilterHasHiddenIt)
{
    giveUsers({"DOM\\anna", "DOM\\bob"});
    during([this](HWND dialog) {
        filterBar->type(0, L"an");
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Anyone"));
    });
    then("look", [this](HWND dialog) {
        EXPECT_THAT(list(dialog).column(0), ElementsAre("Anyone", "anna", "bob"))
            << "what comes later is filtered at the next change";
        filterBar->type(0, L"");
        EXPECT_THAT(list(dialog).column(0), UnorderedElementsAre("Anyone", "anna", "bob"));
        filterBar->type(0, L"an");
        EXPECT_THAT(list(dialog).column(0), UnorderedElementsAre("Anyone", "anna"));
    });
    finish();
}

TEST_F(AccountListTest, AnAccountNamedLikeTheWaitingRowStays)
{
    giveUsers({std::string("DOM\\") + kWaitText, kWaitText});
    during([](HWND dialog) { list(dialog).clickColumn(0); });
    then("look", [](HWND dialog) {
        EXPECT_THAT(list(dialog).column(1),
                    UnorderedElementsAre("Anyone", std::string("DOM\\") + kWaitText, kWaitText));
    });
    finish();
}

TEST_F(AccountListTest, RowsComeInTheirOrderThroughManyBatches)
{
    std::vector<std::string> names;
    for (int i = 0; i < 1500; ++i) {
        names.push_back("DOM\\user" + std::to_string(i));
    }
    giveUsers(names);
    filled([&](HWND dialog) {
        std::vector<std::string> expected = {"Anyone"};
        expected.insert(expected.end(), names.begin(), names.end());
        EXPECT_EQ(list(dialog).column(1), expected);
    });
}
