// The templates of the policy dialogs, control by control, and their layout as a person sees it.
#include "tests/support/bare_dialog.h"
#include "tests/support/dialog_look.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <ostream>
#include <vector>

using testing::UnorderedElementsAreArray;

namespace {

struct TemplateCase {
    int number;
    std::string caption;
    int width, height;                 ///< dialog units
    std::vector<std::string> controls; ///< in words
};

std::ostream& operator<<(std::ostream& out, const TemplateCase& tested)
{
    return out << tested.number;
}

const char kLegend[] =
    "label \"Script will receive the following parameters:\n\t1 - directory with soft limit exceeded\n\t2 - "
    "user reaches soft limit\n\t3 - occupied size\"";

std::vector<std::string> listControls(int list, const std::string& remove, bool edit)
{
    std::vector<std::string> controls = {"list " + std::to_string(list) + " \"List1\"",
                                         "button 1005 \"Add...\"", "button 1006 \"" + remove + '"',
                                         "default button 1 \"OK\"", "button 2 \"Cancel\""};
    if (edit) {
        controls.push_back("button 1008 \"Edit...\"");
    }
    return controls;
}

const std::vector<TemplateCase> kTemplates = {
    {142, "Notifications", 343, 175, listControls(1015, "Remove", true)},
    {146, "Manage exception files", 340, 175, listControls(1011, "Delete", true)},
    {149, "Manage Administrative Accounts", 340, 175, listControls(1011, "Delete", false)},
    {152, "Manage backup tools", 340, 175, listControls(1011, "Delete", true)},
    {156, "Manage blocked extensions", 340, 175, listControls(1011, "Delete", true)},
    {147,
     "Exclude file",
     369,
     50,
     {"label \"File/Path to exclude:\"", "edit 1012", "button 3 \"Browse...\"", "default button 1 \"OK\"",
      "button 2 \"Cancel\""}},
    {150,
     "Backup Processes",
     260,
     68,
     {"label \"Proces name:\"", "edit 1012", "button 4 \"Browse running...\"",
      "button 3 \"Browse from disk...\"", "default button 1 \"OK\"", "button 2 \"Cancel\""}},
    {157,
     "Blocked extension",
     369,
     72,
     {"label \"Path mask:\"", "edit 1012", "label \"Account:\"", "edit 1039 disabled",
      "button 3 \"Browse...\"", "default button 1 \"OK\"", "button 2 \"Cancel\""}},
    {153,
     "Notification script and options...",
     324,
     252,
     {"label \"Choose script:\"",
      "edit 1012",
      "button 3 \"Browse...\"",
      "group \"Legend\"",
      kLegend,
      "group \"Limit for specific user:\"",
      "radio 1022 \"Anyone\"",
      "radio 1024 \"Only user were specified in limit\"",
      "radio 1025 \"All users except defined in limit\"",
      "radio 1023 \"Specific user/group only\"",
      "edit 1026",
      "group \"Impersonate to:\"",
      "label \"User:\"",
      "edit 1028",
      "label \"Password:\"",
      "password 1029",
      "label \"Ignore increments less than\"",
      "edit 1030",
      "group \"Limit amount of notifications for one limit to\"",
      "radio 1031 \"No limit\"",
      "radio 1032 \"Once per second\"",
      "radio 1033 \"Once per minute\"",
      "radio 1034 \"Once per five minutes\"",
      "radio 1035 \"Once per hour\"",
      "radio 1036 \"Once per day\"",
      "radio 1037 \"Once per week\"",
      "default button 1 \"OK\"",
      "button 2 \"Cancel\""}},
    // Carried, never shown.
    {143,
     "Notification script...",
     324,
     103,
     {"label \"Choose script:\"", "edit 1012", "button 3 \"Browse...\"", "group \"Legend\"", kLegend,
      "default button 1 \"OK\"", "button 2 \"Cancel\""}},
    {136,
     "Exclude file",
     267,
     50,
     {"label \"File/Path to exclude:\"", "edit 1012", "default button 1 \"OK\"", "button 2 \"Cancel\""}},
};

/// A control as the template describes it.
struct TemplateItem {
    DWORD extendedStyle;
    DWORD style;
    std::wstring className; ///< empty for a class that goes by a number
};

/// The controls of an extended template of the library, in their order.
std::vector<TemplateItem> itemsOf(int number)
{
    const HMODULE library = GetModuleHandleW(L"corvane");
    const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(number), RT_DIALOG);
    const auto* const start = static_cast<const WORD*>(LockResource(LoadResource(library, found)));
    const WORD* at = start;
    const auto skipName = [&at] { // a number behind a mark, or a text
        std::wstring name;
        if (*at == 0xFFFF) {
            at += 2;
        } else {
            name = reinterpret_cast<const wchar_t*>(at);
            at += name.size() + 1;
        }
        return name;
    };
    const auto align = [&] {
        at += (at - start) % 2;
    };
    constexpr int kControls = 8;
    constexpr int kHeader = 13; // up to the menu
    const int controls = at[kControls];
    at += kHeader;
    for (int name = 0; name < 3; ++name) { // menu, class, caption
        skipName();
    }
    at += 3; // size, weight, kind of the font
    skipName();
    std::vector<TemplateItem> items;
    for (int i = 0; i < controls; ++i) {
        align();
        const auto* const numbers = reinterpret_cast<const DWORD*>(at);
        TemplateItem item{numbers[1], numbers[2], {}};
        at += 12; // the three numbers, the place and the id
        item.className = skipName();
        skipName();
        at += 1 + *at / 2; // what else is handed to the control
        items.push_back(std::move(item));
    }
    return items;
}

class TemplateTest : public testing::TestWithParam<TemplateCase> {
protected:
    void SetUp() override { ASSERT_NE(dialog.window(), nullptr) << "no template " << tested.number; }

    const TemplateCase& tested = GetParam();
    const BareDialog dialog{tested.number};
};

} // namespace

TEST_P(TemplateTest, HasItsControls)
{
    EXPECT_EQ(windowText(dialog.window()), tested.caption);
    EXPECT_THAT(inWords(controlsOf(dialog.window())), UnorderedElementsAreArray(tested.controls));
}

TEST_P(TemplateTest, HasItsSize)
{
    RECT client;
    GetClientRect(dialog.window(), &client);
    const SIZE wanted = unitsAsPixels(dialog.window(), tested.width, tested.height);
    EXPECT_EQ(client.right, wanted.cx);
    EXPECT_EQ(client.bottom, wanted.cy);
}

TEST_P(TemplateTest, HasTheFontAndTheFrame)
{
    expectUsualFont(dialog.window());
    expectModalFrame(dialog.window());
}

TEST_P(TemplateTest, KeepsItsMargins)
{
    const SIZE least = unitsAsPixels(dialog.window(), 7, 7);
    const SIZE leastTop =
        unitsAsPixels(dialog.window(), 7, 6); // a button beside an edit stands a unit higher
    const Margins margins = marginsOf(dialog.window());
    EXPECT_GE(margins.left, least.cx);
    EXPECT_GE(margins.top, leastTop.cy);
    EXPECT_GE(margins.right + 1, least.cx);
    EXPECT_GE(margins.bottom + 1, least.cy);
}

TEST_P(TemplateTest, NothingOverlapsAndNothingIsCutOff)
{
    expectNoOverlap(dialog.window());
    expectNothingCutOff(dialog.window());
}

TEST_P(TemplateTest, TheTabKeyGoesDownColumnByColumn)
{
    // From the first control in the order of the template through all stops and back to the first.
    const HWND first = GetNextDlgTabItem(dialog.window(), nullptr, FALSE);
    ASSERT_NE(first, nullptr);
    std::vector<HWND> stops = {first};
    for (HWND next = GetNextDlgTabItem(dialog.window(), first, FALSE); next != first && stops.size() < 50;
         next = GetNextDlgTabItem(dialog.window(), next, FALSE))
    {
        stops.push_back(next);
    }
    // OK and Cancel come last, and each stop is right of or below the one before, or starts another column.
    ASSERT_GE(stops.size(), 3u);
    EXPECT_EQ(GetDlgCtrlID(stops[stops.size() - 2]), IDOK);
    EXPECT_EQ(GetDlgCtrlID(stops.back()), IDCANCEL);
    for (size_t i = 1; i < stops.size(); ++i) {
        RECT before, after;
        GetWindowRect(stops[i - 1], &before);
        GetWindowRect(stops[i], &after);
        EXPECT_TRUE(after.left >= before.left || after.top >= before.top)
            << GetDlgCtrlID(stops[i - 1]) << " goes back to " << GetDlgCtrlID(stops[i]);
    }
    // Everything to type into or press is reached, radio buttons by the first of their group.
    size_t expected = 0;
    for (const HWND control : controlsOf(dialog.window())) {
        const std::string kind = kindOf(control);
        const bool plain = kind == "edit" || kind == "password" || kind == "list" || kind.ends_with("button");
        expected += plain && IsWindowEnabled(control) ? 1 : 0;
    }
    const auto radios =
        std::count_if(stops.begin(), stops.end(), [](HWND stop) { return kindOf(stop) == "radio"; });
    EXPECT_EQ(stops.size() - static_cast<size_t>(radios), expected);
    EXPECT_EQ(radios, tested.number == 153 ? 2 : 0);
}

INSTANTIATE_TEST_SUITE_P(Policies, TemplateTest, testing::ValuesIn(kTemplates),
                         [](const auto& tested) { return std::to_string(tested.param.number); });

TEST(TemplatesTest, OfAllListsOnlyTheBackupToolsSortByThemselves)
{
    for (const int number : {142, 146, 149, 152, 156}) {
        const BareDialog dialog(number);
        const HWND list = dialog.control(number == 142 ? 1015 : 1011);
        const auto style = static_cast<DWORD>(GetWindowLongW(list, GWL_STYLE));
        EXPECT_EQ((style & (LVS_SORTASCENDING | LVS_SORTDESCENDING)) != 0, number == 152) << number;
        EXPECT_EQ(style & LVS_SINGLESEL, 0u) << number;
    }
}

TEST(TemplatesTest, AllListsAndTreesHaveTheSameFrame)
{
    // The templates themselves: a runtime may make one frame of another when it opens them.
    for (const int number : {9, 142, 146, 149, 151, 152, 155, 156}) {
        int framed = 0;
        for (const TemplateItem& item : itemsOf(number)) {
            if (item.className == L"SysListView32" || item.className == L"SysTreeView32") {
                ++framed;
                EXPECT_EQ(item.extendedStyle, static_cast<DWORD>(WS_EX_CLIENTEDGE)) << number;
                EXPECT_EQ(item.style & WS_BORDER, 0u) << number;
            }
        }
        EXPECT_EQ(framed, 1) << number;
    }
}
