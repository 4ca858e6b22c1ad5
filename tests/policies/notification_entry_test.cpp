// The dialog on one notification: what it shows, what it takes.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/file_dialogs.h"
#include "tests/policies/notification_case.h"
#include "tests/support/windows_radios.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

using testing::ElementsAre;

namespace {

const std::vector<int> kForWhom = {IDC_NOTIFY_ANYONE, IDC_NOTIFY_ACCOUNT_ONLY, IDC_NOTIFY_USERS_OF_LIMIT,
                                   IDC_NOTIFY_USERS_NOT_OF_LIMIT}; // by the value that they stand for
const std::vector<int> kRates = {IDC_NOTIFY_NO_LIMIT,         IDC_NOTIFY_PER_SECOND, IDC_NOTIFY_PER_MINUTE,
                                 IDC_NOTIFY_PER_FIVE_MINUTES, IDC_NOTIFY_PER_HOUR,   IDC_NOTIFY_PER_DAY,
                                 IDC_NOTIFY_PER_WEEK};

struct NotificationEntryTest : testing::Test {
    /// Opens the entry dialog on a notification with these attributes, acts in it and presses OK.
    void edit(const std::array<const wchar_t*, 6>& attributes, EditorVisit::OnEntry act)
    {
        const uint32_t index = store.putNotification(L"script", attributes);
        EditorVisit visit(store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST);
        visit.edit(0)
            .entry([act](HWND entry) {
                act(entry);
                clickLater(entry, IDOK);
            })
            .cancel();
        edited = index;
    }

    static std::array<const wchar_t*, 6> withRate(const wchar_t* rate)
    {
        return {kNotSet, L"0", rate, kNotSet, kNotSet, L"0"};
    }

    const wchar_t* attribute(uint32_t which) const { return store.attribute(edited, which); }

    PolicyStore store;
    uint32_t edited = 0;
};

} // namespace

TEST_F(NotificationEntryTest, ANewOneIsForAnyoneOnceADay)
{
    EditorVisit visit(store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST);
    visit.add()
        .entry([](HWND entry) {
            EXPECT_EQ(checkedOf(entry, kForWhom), IDC_NOTIFY_ANYONE);
            EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_DAY);
            EXPECT_FALSE(isEnabled(entry, IDC_NOTIFY_ACCOUNT));
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_ACCOUNT), "");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_RUN_AS), "");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_PASSWORD), "");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_MIN_INCREMENT), "0");
        })
        .press(IDCANCEL)
        .cancel();
}

TEST_F(NotificationEntryTest, EachForWhomHasItsButton)
{
    for (size_t value = 0; value < kForWhom.size(); ++value) {
        const std::wstring text = std::to_wstring(value);
        edit({L"jane", text.c_str(), L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            EXPECT_EQ(checkedOf(entry, kForWhom), kForWhom.at(value));
            EXPECT_EQ(isEnabled(entry, IDC_NOTIFY_ACCOUNT), value == 1);
        });
        EXPECT_STREQ(attribute(1), text.c_str());
        EXPECT_STREQ(attribute(0), L"jane"); // also where its edit is disabled
    }
}

TEST_F(NotificationEntryTest, ChoosingForWhomEnablesTheAccountAndIsStored)
{
    for (size_t value = 0; value < kForWhom.size(); ++value) {
        edit({kNotSet, value == 0 ? L"3" : L"0", L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            click(entry, kForWhom.at(value));
            EXPECT_EQ(checkedOf(entry, kForWhom), kForWhom.at(value));
            EXPECT_EQ(isEnabled(entry, IDC_NOTIFY_ACCOUNT), value == 1);
        });
        EXPECT_EQ(std::wstring(attribute(1)), std::to_wstring(value));
    }
}

TEST_F(NotificationEntryTest, LeavingTheAccountDisablesItsEditAndKeepsItsText)
{
    for (size_t value = 0; value < kForWhom.size(); ++value) {
        edit({L"jane", L"1", L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            EXPECT_TRUE(isEnabled(entry, IDC_NOTIFY_ACCOUNT));
            click(entry, kForWhom.at(value));
            EXPECT_EQ(isEnabled(entry, IDC_NOTIFY_ACCOUNT), value == 1);
        });
        EXPECT_EQ(std::wstring(attribute(1)), std::to_wstring(value));
        EXPECT_STREQ(attribute(0), L"jane");
    }
}

TEST_F(NotificationEntryTest, AForWhomThatIsNoneStaysUnlessOneIsChosen)
{
    for (const wchar_t* stored : {L"4", L"-1", L"-1k"}) {
        edit({kNotSet, stored, L"0", kNotSet, kNotSet, L"0"}, [](HWND entry) {
            EXPECT_EQ(checkedOf(entry, kForWhom), 0);
            EXPECT_FALSE(isEnabled(entry, IDC_NOTIFY_ACCOUNT));
        });
        EXPECT_STREQ(attribute(1), stored);
    }
    edit({kNotSet, L"4", L"0", kNotSet, kNotSet, L"0"},
         [](HWND entry) { click(entry, IDC_NOTIFY_USERS_NOT_OF_LIMIT); });
    EXPECT_STREQ(attribute(1), L"3");
}

TEST_F(NotificationEntryTest, OfSeveralCheckedForWhomsTheLaterCounts)
{
    // Clicks check one alone; another program may do otherwise.
    const auto check = [this](std::vector<size_t> values) {
        edit(withRate(L"0"), [=](HWND entry) {
            for (const size_t value : values) {
                CheckDlgButton(entry, kForWhom.at(value), BST_CHECKED);
            }
        });
    };
    check({0, 1});
    EXPECT_STREQ(attribute(1), L"1");
    check({1, 2});
    EXPECT_STREQ(attribute(1), L"2");
    check({1, 2, 3});
    EXPECT_STREQ(attribute(1), L"3");
}

TEST_F(NotificationEntryTest, AnEmptyForWhomIsAnyone)
{
    edit({kNotSet, L"", L"", kNotSet, kNotSet, L"0"}, [](HWND entry) {
        EXPECT_EQ(checkedOf(entry, kForWhom), IDC_NOTIFY_ANYONE);
        EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_DAY);
    });
}

TEST_F(NotificationEntryTest, AMissingForWhomIsAnyone)
{
    edit({kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet}, [](HWND entry) {
        EXPECT_EQ(checkedOf(entry, kForWhom), IDC_NOTIFY_ANYONE);
        EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_DAY);
        EXPECT_EQ(controlText(entry, IDC_NOTIFY_MIN_INCREMENT), "0");
    });
    EXPECT_STREQ(attribute(1), L"0");
    EXPECT_STREQ(attribute(2), L"86400");
    EXPECT_STREQ(attribute(5), L"0");
}

TEST_F(NotificationEntryTest, EachRateHasItsButton)
{
    struct Rate {
        int button;
        const wchar_t* text;
    };
    for (const Rate rate : {Rate{IDC_NOTIFY_NO_LIMIT, L"-1"}, Rate{IDC_NOTIFY_PER_SECOND, L"1"},
                            Rate{IDC_NOTIFY_PER_MINUTE, L"60"}, Rate{IDC_NOTIFY_PER_FIVE_MINUTES, L"300"},
                            Rate{IDC_NOTIFY_PER_HOUR, L"3600"}, Rate{IDC_NOTIFY_PER_DAY, L"86400"},
                            Rate{IDC_NOTIFY_PER_WEEK, L"604800"}})
    {
        edit(withRate(rate.text), [rate](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), rate.button); });
        EXPECT_STREQ(attribute(2), rate.text);

        edit(withRate(rate.button == IDC_NOTIFY_NO_LIMIT ? L"1" : L"-1"), [rate](HWND entry) {
            click(entry, rate.button);
            EXPECT_EQ(checkedOf(entry, kRates), rate.button);
            EXPECT_EQ(checkedOf(entry, kForWhom), IDC_NOTIFY_ANYONE) << "the groups are one";
        });
        EXPECT_STREQ(attribute(2), rate.text);
    }
}

TEST_F(NotificationEntryTest, ARateOfNothingIsADay)
{
    edit(withRate(L"0"), [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_DAY); });
    EXPECT_STREQ(attribute(2), L"86400");
}

TEST_F(NotificationEntryTest, ARateThatIsNoChoiceStaysUnlessOneIsChosen)
{
    edit(withRate(L"5m"), [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 0); });
    EXPECT_STREQ(attribute(2), L"5m");
    edit(withRate(L"5m"), [](HWND entry) { click(entry, IDC_NOTIFY_PER_MINUTE); });
    EXPECT_STREQ(attribute(2), L"60");
}

TEST_F(NotificationEntryTest, AUnitLetterCountsInARate)
{
    // 60 * 1024 is no choice, 300 followed by anything else is.
    edit(withRate(L"60k"), [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 0); });
    edit(withRate(L"300x"),
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_FIVE_MINUTES); });
    EXPECT_STREQ(attribute(2), L"300");
    edit(withRate(L"-1x"), [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_NO_LIMIT); });
}

TEST_F(NotificationEntryTest, PassingByWithTheTabKeyChoosesNothing)
{
    const WindowsRadios radios;
    const auto passBy = [](HWND entry) {
        EXPECT_EQ(tabThrough(entry), 2);
    };
    edit({kNotSet, L"2", L"300", kNotSet, kNotSet, L"0"}, passBy);
    EXPECT_STREQ(attribute(1), L"2");
    EXPECT_STREQ(attribute(2), L"300");
    edit({kNotSet, L"4", L"5m", kNotSet, kNotSet, L"0"}, passBy);
    EXPECT_STREQ(attribute(1), L"4");
    EXPECT_STREQ(attribute(2), L"5m");
    EXPECT_EQ(WindowsRadios::clicks(), 0);

    EditorVisit visit(store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST);
    visit.add()
        .entry([passBy](HWND entry) {
            passBy(entry);
            EXPECT_EQ(checkedOf(entry, kForWhom), IDC_NOTIFY_ANYONE);
            EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_DAY);
            clickLater(entry, IDCANCEL);
        })
        .cancel();
    EXPECT_EQ(WindowsRadios::clicks(), 0);
}

TEST_F(NotificationEntryTest, TheTabStopGoesWithTheChoice)
{
    const auto stops = [](HWND entry, const auto& buttons) {
        std::vector<int> found;
        std::copy_if(std::begin(buttons), std::end(buttons), std::back_inserter(found), [entry](int button) {
            return (GetWindowLongPtrW(GetDlgItem(entry, button), GWL_STYLE) & WS_TABSTOP) != 0;
        });
        return found;
    };
    edit({kNotSet, L"2", L"5m", kNotSet, kNotSet, L"0"}, [stops](HWND entry) {
        EXPECT_THAT(stops(entry, kForWhom), ElementsAre(IDC_NOTIFY_USERS_OF_LIMIT));
        EXPECT_THAT(stops(entry, kRates), ElementsAre(IDC_NOTIFY_NO_LIMIT));
        click(entry, IDC_NOTIFY_USERS_NOT_OF_LIMIT);
        click(entry, IDC_NOTIFY_PER_HOUR);
        EXPECT_THAT(stops(entry, kForWhom), ElementsAre(IDC_NOTIFY_USERS_NOT_OF_LIMIT));
        EXPECT_THAT(stops(entry, kRates), ElementsAre(IDC_NOTIFY_PER_HOUR));
    });
}

TEST_F(NotificationEntryTest, AfterAChoiceTheArrowKeysChooseAgain)
{
    const WindowsRadios radios;
    edit(withRate(L"5m"), [](HWND entry) {
        tabThrough(entry);
        EXPECT_EQ(checkedOf(entry, kRates), 0);
        click(entry, IDC_NOTIFY_PER_SECOND);
        EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_PER_SECOND);
        focusOf(entry);
        SetFocus(GetDlgItem(entry, IDC_NOTIFY_NO_LIMIT)); // as the arrow keys do
        EXPECT_EQ(checkedOf(entry, kRates), IDC_NOTIFY_NO_LIMIT);
    });
    EXPECT_STREQ(attribute(2), L"-1");
}

TEST_F(NotificationEntryTest, TakesNoMoreTypingThanItKeeps)
{
    const std::wstring stored(400, L's');
    edit({stored.c_str(), L"1", L"0", stored.c_str(), stored.c_str(), stored.c_str()}, [](HWND entry) {
        for (const int field : {IDC_NOTIFY_ACCOUNT, IDC_NOTIFY_RUN_AS, IDC_NOTIFY_PASSWORD,
                                IDC_NOTIFY_MIN_INCREMENT, IDC_ENTRY_TEXT})
        {
            EXPECT_EQ(SendDlgItemMessageW(entry, field, EM_GETLIMITTEXT, 0, 0), 259) << field;
        }
        // What is stored is shown whole, although OK cuts it.
        EXPECT_EQ(controlText(entry, IDC_NOTIFY_ACCOUNT), std::string(400, 's'));
        EXPECT_EQ(controlText(entry, IDC_NOTIFY_PASSWORD), std::string(400, 's'));
    });
    EXPECT_EQ(attribute(0), std::wstring(259, L's'));
}

TEST_F(NotificationEntryTest, AnEmptyFieldIsNotSet)
{
    edit({L"jane", L"1", L"60", L"runner", L"pw", L"3k"}, [](HWND entry) {
        for (const int field :
             {IDC_NOTIFY_ACCOUNT, IDC_NOTIFY_RUN_AS, IDC_NOTIFY_PASSWORD, IDC_NOTIFY_MIN_INCREMENT})
        {
            type(entry, field, L"");
        }
    });
    for (const uint32_t which : {0u, 3u, 4u, 5u}) {
        EXPECT_EQ(attribute(which), nullptr) << which;
    }
}

TEST_F(NotificationEntryTest, ThePasswordIsHiddenAndKept)
{
    edit({kNotSet, L"0", L"0", L"runner", L"p\u00e4ss \u4e16", L"0"}, [](HWND entry) {
        EXPECT_NE(SendDlgItemMessageW(entry, IDC_NOTIFY_PASSWORD, EM_GETPASSWORDCHAR, 0, 0), 0);
    });
    EXPECT_STREQ(attribute(4), L"p\u00e4ss \u4e16");
}

TEST_F(NotificationEntryTest, NoAccountIsProposedToRunAs)
{
    edit(withRate(L"0"), [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_NOTIFY_RUN_AS), ""); });
    EXPECT_EQ(attribute(3), nullptr);
}

TEST_F(NotificationEntryTest, TheIncrementIsTakenAsTyped)
{
    edit(withRate(L"0"), [](HWND entry) { type(entry, IDC_NOTIFY_MIN_INCREMENT, L" not a number"); });
    EXPECT_STREQ(attribute(5), L" not a number");
}

TEST_F(NotificationEntryTest, BrowsesForAProgram)
{
    FileDialogs files;
    files.answer = L"C:\\scripts\\mail.vbs";
    edit(withRate(L"0"), [&](HWND entry) {
        click(entry, IDC_ENTRY_BROWSE);
        EXPECT_EQ(files.asked, "open, Executable Files, Notification script and options...");
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\scripts\\mail.vbs");
        files.answer.clear();
        click(entry, IDC_ENTRY_BROWSE);
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\scripts\\mail.vbs");
    });
    EXPECT_THAT(store.scripts.present(), ElementsAre(L"C:\\scripts\\mail.vbs"));
}

TEST_F(NotificationEntryTest, AFaultLeavesItOpenWithWhatWasTyped)
{
    FileDialogs files;
    const auto fault = [](OPENFILENAMEW*) -> BOOL {
        RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
        return TRUE;
    };
    const ImportPatch open(ImportPatch::corvane(), "GetOpenFileNameW",
                           static_cast<BOOL(WINAPI*)(OPENFILENAMEW*)>(fault));
    edit(withRate(L"0"), [&](HWND entry) {
        type(entry, IDC_ENTRY_TEXT, L"typed");
        store.takeCalls();
        click(entry, IDC_ENTRY_BROWSE);
        EXPECT_THAT(store.takeCalls(), ElementsAre("ODS UI CRASH: nleDlg, MyDlgProc, 193\n"));
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "typed");
    });
    EXPECT_THAT(store.scripts.present(), ElementsAre(L"typed"));
}
