// What the platform's own filter bar has beside the texts of its fields, and the keyboard in it.
#include "tests/accounts/chooser_fixture.h"

#include "frame/dialog_items.h"

#include <commctrl.h>

#include <functional>

namespace {

class FilterBarTest : public ChooserFixture {
protected:
    FilterBarTest() { giveUsers({"DOM\\ann", "DOM\\bob", "DOM\\carol"}); }

    void filled(std::function<void(HWND)> act)
    {
        searchServer();
        script.onDialog("work", std::move(act));
    }
    void finish()
    {
        cancel();
        EXPECT_EQ(choose(), nullptr);
    }
};

} // namespace

TEST_F(FilterBarTest, AFilterWithoutAValueShowsItsPromptAndIsNone)
{
    filled([this](HWND dialog) {
        EXPECT_TRUE(filterBar->showsPrompt(0)) << "an empty text would be a filter";
        EXPECT_EQ(list(dialog).rowCount(), 4);
        filterBar->type(1, L"");
        EXPECT_EQ(list(dialog).rowCount(), 4) << "the prompt's text is no filter";
    });
    finish();
}

TEST_F(FilterBarTest, TheButtonOfAFilterTakesItOff)
{
    filled([this](HWND dialog) {
        filterBar->type(0, L"bo");
        ASSERT_EQ(list(dialog).rowCount(), 1);
        filterBar->clickButton(0);
        EXPECT_EQ(list(dialog).rowCount(), 4);
        EXPECT_TRUE(filterBar->showsPrompt(0));
        EXPECT_EQ(filterBar->opened(), -1);
    });
    finish();
}

TEST_F(FilterBarTest, TheButtonBeginsAFilterWhereThereIsNone)
{
    filled([this](HWND dialog) {
        filterBar->type(0, L"bo");
        filterBar->clickButton(2);
        EXPECT_EQ(filterBar->opened(), 2);
        EXPECT_EQ(list(dialog).rowCount(), 1) << "the other column's filter stays";
    });
    finish();
}

TEST_F(FilterBarTest, EnterInAFieldGoesOnToTheListAndClosesNothing)
{
    filled([this](HWND dialog) {
        select(dialog, list(dialog).rowOf("bob")); // enough to be added
        ASSERT_TRUE(isEnabled(dialog, IDOK));
        SetActiveWindow(dialog);
        HWND field = filterBar->openField(0);
        ASSERT_EQ(GetFocus(), field);
        MSG enter{field, WM_KEYDOWN, VK_RETURN, 0x1C0001, 0, {}};
        EXPECT_TRUE(IsDialogMessageW(dialog, &enter)) << "as the dialog's loop does it";
        EXPECT_EQ(GetFocus(), list(dialog));
    });
    finish();
}

TEST_F(FilterBarTest, EnterInTheListStillAdds)
{
    filled([](HWND dialog) {
        select(dialog, list(dialog).rowOf("bob"));
        SetFocus(list(dialog));
        PostMessageW(list(dialog), WM_KEYDOWN, VK_RETURN, 0x1C0001);
    });
    EXPECT_EQ(chosenName(), "DOM\\bob");
}

TEST_F(FilterBarTest, TheKeyboardOfADialogThatWasEnteredAgainDuringTheFillComesToTheList)
{
    gate.shut();
    startSearch();
    script.step("the thread in the store", [this](HWND) { return gate.waiting() == 1; });
    script.onDialog("leave and come back", [this](HWND dialog) {
        SetActiveWindow(dialog);
        SetFocus(dialog); // what had the keyboard is disabled
        ASSERT_EQ(GetFocus(), dialog);
        EnableWindow(list(dialog), TRUE);
        rescueKeyboard(dialog, list(dialog));
        EXPECT_EQ(GetFocus(), list(dialog));
        EnableWindow(GetDlgItem(dialog, IDCANCEL), TRUE);
        SetFocus(GetDlgItem(dialog, IDCANCEL));
        rescueKeyboard(dialog, list(dialog));
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDCANCEL)) << "a control that can be used keeps it";
        gate.open();
    });
    finish();
}
