// What the dialog looks like before anything is done in it.
#include "tests/accounts/chooser_fixture.h"
#include "tests/support/dialog_look.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <functional>

using testing::ElementsAre;

namespace {

class ChooserTemplateTest : public ChooserFixture {
protected:
    void look(const std::function<void(HWND)>& at)
    {
        script.onDialog("look", [&](HWND dialog) {
            at(dialog);
            click(dialog, IDCANCEL);
        });
        EXPECT_EQ(choose(), nullptr);
    }
};

} // namespace

TEST_F(ChooserTemplateTest, HasItsCaptionAndControlsInTabOrder)
{
    look([](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "Choose subject");
        EXPECT_THAT(inWords(controlsOf(dialog)),
                    ElementsAre("radio 1013 \"Search account\"", "radio 1014 \"Type exact account name\"",
                                "check 1006 \"Customize search base\"", "label \"Search base:\"",
                                "edit 1007 disabled", "list 1008 \"SidList\"", "label \"User/Group:\"",
                                "edit 1009 disabled", "default button 1 \"Search...\"",
                                "button 2 \"Cancel\""));
    });
}

TEST_F(ChooserTemplateTest, StartsInTheListModeWithNothingChecked)
{
    look([](HWND dialog) {
        EXPECT_TRUE(isChecked(dialog, 1013));
        EXPECT_FALSE(isChecked(dialog, 1014));
        EXPECT_FALSE(isChecked(dialog, 1006));
        for (const int id : {1013, 1006, 1008, 1014, 1, 2}) {
            EXPECT_TRUE(isEnabled(dialog, id)) << id;
        }
        for (const int id : {1007, 1009}) {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
        EXPECT_EQ(GetDlgCtrlID(focusOf(dialog)), 1013);
        EXPECT_EQ(rowCount(dialog), 0);
    });
}

TEST_F(ChooserTemplateTest, TabReachesEveryControlThatTakesInput)
{
    look([](HWND dialog) {
        for (const int id : {1007, 1009}) {
            EnableWindow(GetDlgItem(dialog, id), TRUE);
        }
        std::vector<int> stops;
        HWND at = GetDlgItem(dialog, 1013);
        do {
            stops.push_back(GetDlgCtrlID(at));
            at = GetNextDlgTabItem(dialog, at, FALSE);
        } while (at != nullptr && GetDlgCtrlID(at) != 1013 && stops.size() < 20);
        EXPECT_THAT(stops, ElementsAre(1013, 1006, 1007, 1008, 1009, 1, 2));
        const HWND first = GetDlgItem(dialog, 1013);
        const HWND second = GetDlgItem(dialog, 1014);
        EXPECT_EQ(GetNextDlgGroupItem(dialog, first, FALSE), second) << "the arrow keys";
        EXPECT_EQ(GetNextDlgGroupItem(dialog, second, FALSE), first);
    });
}

TEST_F(ChooserTemplateTest, IsLaidOutWithCare)
{
    look([](HWND dialog) {
        expectNothingCutOff(dialog);
        expectNoOverlap(dialog);
        expectMargins(dialog);
        expectUsualFont(dialog);
        expectModalFrame(dialog);
    });
}

TEST_F(ChooserTemplateTest, ControlsStandInLine)
{
    look([](HWND dialog) {
        const auto place = [&](int id) {
            return placeOf(GetDlgItem(dialog, id));
        };
        EXPECT_EQ(place(1013).left, place(1014).left);
        EXPECT_EQ(place(1006).left, place(1008).left);
        EXPECT_EQ(place(1007).left, place(1009).left);
        EXPECT_EQ(place(1007).right, place(1009).right);
        EXPECT_EQ(place(1007).right, place(1008).right);
        EXPECT_EQ(place(2).right, place(1008).right);
        EXPECT_EQ(place(1).top, place(2).top);
    });
}

TEST_F(ChooserTemplateTest, TheListHoldsItsColumnsWithoutScrollingSideways)
{
    giveUsers({"DOM\\ann"});
    searchServer();
    look([](HWND dialog) {
        RECT client;
        GetClientRect(list(dialog), &client);
        EXPECT_GE(client.right, 200 + 200 + 50);
    });
}
