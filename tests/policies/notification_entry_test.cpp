// The dialog on one notification: what it shows, what it takes.
#include "corvane.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/file_dialogs.h"
#include "tests/support/windows_radios.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

using testing::ElementsAre;

namespace {

constexpr char kEntry[] = "Notification script and options...";
constexpr int kAccount = 1026;
constexpr int kRunAs = 1028;
constexpr int kPassword = 1029;
constexpr int kIncrement = 1030;
constexpr int kForWhom[] = {1022, 1023, 1024, 1025}; // by the value that they stand for
constexpr int kRates[] = {1031, 1032, 1033, 1034, 1035, 1036, 1037};

constexpr const wchar_t* kNotSet = nullptr;

class NotificationEntryTest : public testing::Test {
protected:
    /// Opens the entry dialog on a notification with these attributes, acts in it and presses OK.
    void edit(const std::array<const wchar_t*, 6>& attributes, EditorVisit::OnEntry act)
    {
        const uint32_t index = store.putNotification(L"script", attributes);
        EditorVisit visit(store, 1015);
        visit.edit(0)
            .entry(kEntry,
                   [act](HWND entry) {
                       act(entry);
                       clickLater(entry, IDOK);
                   })
            .press(IDCANCEL);
        EXPECT_EQ(visit.run(editNotifications), 0);
        edited = index;
    }

    const wchar_t* attribute(uint32_t which) const { return store.attribute(edited, which); }

    PolicyStore store;
    uint32_t edited = 0;
};

/// Whether a text stands in the writable data of the library.
bool corvaneHolds(std::wstring_view text)
{
    const auto* const module = reinterpret_cast<const BYTE*>(ImportPatch::corvane());
    MEMORY_BASIC_INFORMATION region{};
    bool found = false;
    size_t searched = 0;
    for (const BYTE* at = module;
         VirtualQuery(at, &region, sizeof region) != 0 && region.AllocationBase == module;
         at = static_cast<const BYTE*>(region.BaseAddress) + region.RegionSize)
    {
        if (region.State == MEM_COMMIT && (region.Protect & (PAGE_READWRITE | PAGE_WRITECOPY)) != 0) {
            const std::wstring_view data(static_cast<const wchar_t*>(region.BaseAddress),
                                         region.RegionSize / sizeof(wchar_t));
            searched += data.size();
            found = found || data.find(text) != std::wstring_view::npos;
        }
    }
    EXPECT_GT(searched, 0u);
    return found;
}

/// The one checked button of a group, 0 for none.
template <size_t N>
int checkedOf(HWND dialog, const int (&buttons)[N])
{
    int checked = 0;
    for (const int button : buttons) {
        if (isChecked(dialog, button)) {
            EXPECT_EQ(checked, 0) << "more than one is checked";
            checked = button;
        }
    }
    return checked;
}

} // namespace

TEST_F(NotificationEntryTest, ANewOneIsForAnyoneOnceADay)
{
    EditorVisit visit(store, 1015);
    visit.add()
        .entry(kEntry,
               [](HWND entry) {
                   EXPECT_EQ(checkedOf(entry, kForWhom), 1022);
                   EXPECT_EQ(checkedOf(entry, kRates), 1036);
                   EXPECT_FALSE(isEnabled(entry, kAccount));
                   EXPECT_EQ(controlText(entry, ids::kText), "");
                   EXPECT_EQ(controlText(entry, kAccount), "");
                   EXPECT_EQ(controlText(entry, kRunAs), "");
                   EXPECT_EQ(controlText(entry, kPassword), "");
                   EXPECT_EQ(controlText(entry, kIncrement), "0");
               })
        .press(IDCANCEL)
        .press(IDCANCEL);
    visit.run(editNotifications);
}

TEST_F(NotificationEntryTest, EachForWhomHasItsButton)
{
    for (int value = 0; value < 4; ++value) {
        const std::wstring text = std::to_wstring(value);
        edit({L"jane", text.c_str(), L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            EXPECT_EQ(checkedOf(entry, kForWhom), kForWhom[value]);
            EXPECT_EQ(isEnabled(entry, kAccount), value == 1);
        });
        EXPECT_STREQ(attribute(1), text.c_str());
        EXPECT_STREQ(attribute(0), L"jane"); // also where its edit is disabled
    }
}

TEST_F(NotificationEntryTest, ChoosingForWhomEnablesTheAccountAndIsStored)
{
    for (int value = 0; value < 4; ++value) {
        edit({kNotSet, value == 0 ? L"3" : L"0", L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            click(entry, kForWhom[value]);
            EXPECT_EQ(checkedOf(entry, kForWhom), kForWhom[value]);
            EXPECT_EQ(isEnabled(entry, kAccount), value == 1);
        });
        EXPECT_EQ(std::wstring(attribute(1)), std::to_wstring(value));
    }
}

TEST_F(NotificationEntryTest, LeavingTheAccountDisablesItsEditAndKeepsItsText)
{
    for (int value = 0; value < 4; ++value) {
        edit({L"jane", L"1", L"0", kNotSet, kNotSet, L"0"}, [value](HWND entry) {
            EXPECT_TRUE(isEnabled(entry, kAccount));
            click(entry, kForWhom[value]);
            EXPECT_EQ(isEnabled(entry, kAccount), value == 1);
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
            EXPECT_FALSE(isEnabled(entry, kAccount));
        });
        EXPECT_STREQ(attribute(1), stored);
    }
    edit({kNotSet, L"4", L"0", kNotSet, kNotSet, L"0"}, [](HWND entry) { click(entry, 1025); });
    EXPECT_STREQ(attribute(1), L"3");
}

TEST_F(NotificationEntryTest, OfSeveralCheckedForWhomsTheLaterCounts)
{
    // Clicks check one alone; another program may do otherwise.
    const auto check = [this](std::initializer_list<int> values) {
        edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"}, [values = std::vector(values)](HWND entry) {
            for (const int value : values) {
                CheckDlgButton(entry, kForWhom[value], BST_CHECKED);
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
        EXPECT_EQ(checkedOf(entry, kForWhom), 1022);
        EXPECT_EQ(checkedOf(entry, kRates), 1036);
    });
}

TEST_F(NotificationEntryTest, AMissingForWhomIsAnyone)
{
    edit({kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet}, [](HWND entry) {
        EXPECT_EQ(checkedOf(entry, kForWhom), 1022);
        EXPECT_EQ(checkedOf(entry, kRates), 1036);
        EXPECT_EQ(controlText(entry, kIncrement), "0");
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
    for (const Rate rate : {Rate{1031, L"-1"}, Rate{1032, L"1"}, Rate{1033, L"60"}, Rate{1034, L"300"},
                            Rate{1035, L"3600"}, Rate{1036, L"86400"}, Rate{1037, L"604800"}})
    {
        edit({kNotSet, L"0", rate.text, kNotSet, kNotSet, L"0"},
             [rate](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), rate.button); });
        EXPECT_STREQ(attribute(2), rate.text);

        edit({kNotSet, L"0", rate.button == 1031 ? L"1" : L"-1", kNotSet, kNotSet, L"0"}, [rate](HWND entry) {
            click(entry, rate.button);
            EXPECT_EQ(checkedOf(entry, kRates), rate.button);
            EXPECT_EQ(checkedOf(entry, kForWhom), 1022) << "the groups are one";
        });
        EXPECT_STREQ(attribute(2), rate.text);
    }
}

TEST_F(NotificationEntryTest, ARateOfNothingIsADay)
{
    edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 1036); });
    EXPECT_STREQ(attribute(2), L"86400");
}

TEST_F(NotificationEntryTest, ARateThatIsNoChoiceStaysUnlessOneIsChosen)
{
    edit({kNotSet, L"0", L"5m", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 0); });
    EXPECT_STREQ(attribute(2), L"5m");
    edit({kNotSet, L"0", L"5m", kNotSet, kNotSet, L"0"}, [](HWND entry) { click(entry, 1033); });
    EXPECT_STREQ(attribute(2), L"60");
}

TEST_F(NotificationEntryTest, AUnitLetterCountsInARate)
{
    // 60 * 1024 is no choice, 300 followed by anything else is.
    edit({kNotSet, L"0", L"60k", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 0); });
    edit({kNotSet, L"0", L"300x", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 1034); });
    EXPECT_STREQ(attribute(2), L"300");
    edit({kNotSet, L"0", L"-1x", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(checkedOf(entry, kRates), 1031); });
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

    EditorVisit visit(store, 1015);
    visit.add()
        .entry(kEntry,
               [passBy](HWND entry) {
                   passBy(entry);
                   EXPECT_EQ(checkedOf(entry, kForWhom), 1022);
                   EXPECT_EQ(checkedOf(entry, kRates), 1036);
                   clickLater(entry, IDCANCEL);
               })
        .press(IDCANCEL);
    visit.run(editNotifications);
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
        EXPECT_THAT(stops(entry, kForWhom), ElementsAre(1024));
        EXPECT_THAT(stops(entry, kRates), ElementsAre(1031));
        click(entry, 1025);
        click(entry, 1035);
        EXPECT_THAT(stops(entry, kForWhom), ElementsAre(1025));
        EXPECT_THAT(stops(entry, kRates), ElementsAre(1035));
    });
}

TEST_F(NotificationEntryTest, AfterAChoiceTheArrowKeysChooseAgain)
{
    const WindowsRadios radios;
    edit({kNotSet, L"0", L"5m", kNotSet, kNotSet, L"0"}, [](HWND entry) {
        tabThrough(entry);
        EXPECT_EQ(checkedOf(entry, kRates), 0);
        click(entry, 1032);
        EXPECT_EQ(checkedOf(entry, kRates), 1032);
        focusOf(entry);
        SetFocus(GetDlgItem(entry, 1031)); // as the arrow keys do
        EXPECT_EQ(checkedOf(entry, kRates), 1031);
    });
    EXPECT_STREQ(attribute(2), L"-1");
}

TEST_F(NotificationEntryTest, TakesNoMoreTypingThanItKeeps)
{
    const std::wstring stored(400, L's');
    edit({stored.c_str(), L"1", L"0", stored.c_str(), stored.c_str(), stored.c_str()}, [](HWND entry) {
        for (const int field : {kAccount, kRunAs, kPassword, kIncrement, ids::kText}) {
            EXPECT_EQ(SendDlgItemMessageW(entry, field, EM_GETLIMITTEXT, 0, 0), 259) << field;
        }
        // What is stored is shown whole, although OK cuts it.
        EXPECT_EQ(controlText(entry, kAccount), std::string(400, 's'));
        EXPECT_EQ(controlText(entry, kPassword), std::string(400, 's'));
    });
    EXPECT_EQ(attribute(0), std::wstring(259, L's'));
}

TEST_F(NotificationEntryTest, AnEmptyFieldIsNotSet)
{
    edit({L"jane", L"1", L"60", L"runner", L"pw", L"3k"}, [](HWND entry) {
        for (const int field : {kAccount, kRunAs, kPassword, kIncrement}) {
            type(entry, field, L"");
        }
    });
    for (const uint32_t which : {0u, 3u, 4u, 5u}) {
        EXPECT_EQ(attribute(which), nullptr) << which;
    }
}

TEST_F(NotificationEntryTest, ThePasswordIsHiddenAndKept)
{
    edit({kNotSet, L"0", L"0", L"runner", L"p\u00e4ss \u4e16", L"0"},
         [](HWND entry) { EXPECT_NE(SendDlgItemMessageW(entry, kPassword, EM_GETPASSWORDCHAR, 0, 0), 0); });
    EXPECT_STREQ(attribute(4), L"p\u00e4ss \u4e16");
}

TEST_F(NotificationEntryTest, ThePasswordDoesNotStayInTheLibrarysBuffer)
{
    const wchar_t password[] = L"a very rare password";
    edit({kNotSet, L"0", L"0", L"runner", password, L"0"}, [](HWND) {});
    EXPECT_STREQ(attribute(4), password);
    EXPECT_FALSE(corvaneHolds(password + 7)); // its beginning gives way to the next field's text anyhow
}

TEST_F(NotificationEntryTest, NoAccountIsProposedToRunAs)
{
    edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"},
         [](HWND entry) { EXPECT_EQ(controlText(entry, kRunAs), ""); });
    EXPECT_EQ(attribute(3), nullptr);
}

TEST_F(NotificationEntryTest, TheIncrementIsTakenAsTyped)
{
    edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"},
         [](HWND entry) { type(entry, kIncrement, L" not a number"); });
    EXPECT_STREQ(attribute(5), L" not a number");
}

TEST_F(NotificationEntryTest, BrowsesForAProgram)
{
    FileDialogs files;
    files.answer = L"C:\\scripts\\mail.vbs";
    edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"}, [&](HWND entry) {
        click(entry, ids::kBrowse);
        EXPECT_EQ(files.asked, "open, Executable Files, Notification script and options...");
        EXPECT_EQ(controlText(entry, ids::kText), "C:\\scripts\\mail.vbs");
        files.answer.clear();
        click(entry, ids::kBrowse);
        EXPECT_EQ(controlText(entry, ids::kText), "C:\\scripts\\mail.vbs");
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
    edit({kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"}, [&](HWND entry) {
        type(entry, ids::kText, L"typed");
        store.recording.takeCalls();
        click(entry, ids::kBrowse);
        EXPECT_THAT(store.recording.takeCalls(), ElementsAre("ODS UI CRASH: nleDlg, MyDlgProc, 193\n"));
        EXPECT_EQ(controlText(entry, ids::kText), "typed");
    });
    EXPECT_THAT(store.scripts.present(), ElementsAre(L"typed"));
}
