// What is special about single templates.
#include "res/resource.h"
#include "tests/support/bare_dialog.h"
#include "tests/support/dialog_look.h"
#include "tests/support/library_template.h"
#include "tests/support/window_text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

DWORD styleOf(HWND control)
{
    return static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
}

LONG widthOf(const RECT& area)
{
    return area.right - area.left;
}

LONG heightOf(const RECT& area)
{
    return area.bottom - area.top;
}

/// The controls that the arrow keys reach from one.
std::vector<int> groupOf(const BareDialog& dialog, int first)
{
    std::vector<int> group;
    HWND each = dialog.control(first);
    do {
        group.push_back(GetDlgCtrlID(each));
        each = GetNextDlgGroupItem(dialog.window(), each, FALSE);
    } while (GetDlgCtrlID(each) != first && group.size() < 20);
    return group;
}

/// A control as the template describes it.
struct TemplateItem {
    DWORD extendedStyle;
    DWORD style;
    std::wstring className; ///< empty for a class that goes by a number
};

/// The controls of an extended template of the library, in their order.
std::vector<TemplateItem> itemsOf(int number)
{
    const auto* const start = reinterpret_cast<const WORD*>(libraryTemplate(number));
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

} // namespace

TEST(QuotaTemplateTest, NewMembersAreIndentedBelowMembers)
{
    const BareDialog dialog(IDD_QUOTA_SETTINGS_ADD);
    const RECT members = placeOf(dialog.control(IDC_QUOTA_GROUP_MEMBERS));
    const RECT newMembers = placeOf(dialog.control(IDC_QUOTA_NEW_MEMBERS));
    EXPECT_GT(newMembers.left, members.left);
    EXPECT_GE(newMembers.top, members.bottom);
}

TEST(QuotaTemplateTest, RadioButtonsAreOneGroupAndOnlyThey)
{
    EXPECT_THAT(groupOf(BareDialog(IDD_QUOTA_SETTINGS_ADD), IDC_QUOTA_NO_FILES),
                ElementsAre(IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES));
}

TEST(QuotaTemplateTest, HasRoomForTheLongestSizes)
{
    for (const int number : {IDD_QUOTA_SETTINGS_ADD, IDD_QUOTA_SETTINGS_EDIT, IDD_QUOTA_LIMIT}) {
        const BareDialog dialog(number);
        for (const HWND control : controlsOf(dialog.window())) {
            if (kindOf(control) == "edit") {
                RECT room{};
                GetClientRect(control, &room);
                const SIZE needed = textSize(control, L"-1048576K");
                EXPECT_LE(needed.cx + 4, room.right) << inWords(control);
                EXPECT_LE(needed.cy, room.bottom) << inWords(control);
            }
        }
    }
}

TEST(ChooserTemplateTest, TheArrowKeysGoFromOneWayToTheOther)
{
    EXPECT_THAT(groupOf(BareDialog(IDD_CHOOSER), IDC_CHOOSER_SEARCH),
                ElementsAre(IDC_CHOOSER_SEARCH, IDC_CHOOSER_TYPE));
}

TEST(ChooserTemplateTest, TabReachesTheFieldsOnceTheyAreEnabled)
{
    const BareDialog dialog(IDD_CHOOSER);
    for (const int id : {IDC_CHOOSER_BASE, IDC_CHOOSER_NAME}) {
        EnableWindow(dialog.control(id), TRUE);
    }
    std::vector<int> stops;
    HWND at = dialog.control(IDC_CHOOSER_SEARCH);
    do {
        stops.push_back(GetDlgCtrlID(at));
        at = GetNextDlgTabItem(dialog.window(), at, FALSE);
    } while (at != nullptr && GetDlgCtrlID(at) != IDC_CHOOSER_SEARCH && stops.size() < 20);
    EXPECT_THAT(stops, ElementsAre(IDC_CHOOSER_SEARCH, IDC_CHOOSER_CUSTOM_BASE, IDC_CHOOSER_BASE,
                                   IDC_CHOOSER_LIST, IDC_CHOOSER_NAME, IDOK, IDCANCEL));
}

TEST(ChooserTemplateTest, ControlsStandInLine)
{
    const BareDialog dialog(IDD_CHOOSER);
    const auto place = [&](int id) {
        return placeOf(dialog.control(id));
    };
    EXPECT_EQ(place(IDC_CHOOSER_SEARCH).left, place(IDC_CHOOSER_TYPE).left);
    EXPECT_EQ(place(IDC_CHOOSER_CUSTOM_BASE).left, place(IDC_CHOOSER_LIST).left);
    EXPECT_EQ(place(IDC_CHOOSER_BASE).left, place(IDC_CHOOSER_NAME).left);
    EXPECT_EQ(place(IDC_CHOOSER_BASE).right, place(IDC_CHOOSER_NAME).right);
    EXPECT_EQ(place(IDC_CHOOSER_BASE).right, place(IDC_CHOOSER_LIST).right);
    EXPECT_EQ(place(IDCANCEL).right, place(IDC_CHOOSER_LIST).right);
    EXPECT_EQ(place(IDOK).top, place(IDCANCEL).top);
}

TEST(TemplatesTest, TheTreeHasLinesAndButtonsAndNoLabelsToEdit)
{
    const BareDialog dialog(IDD_CHOOSE_FILE);
    EXPECT_EQ(styleOf(dialog.control(IDC_CHOOSE_FILE_TREE)) &
                  (TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_EDITLABELS),
              static_cast<DWORD>(TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT));
}

TEST(TemplatesTest, TheProcessesAreSortedAndOneIsChosen)
{
    const BareDialog dialog(IDD_PROCESS_CHOOSER);
    const HWND list = dialog.control(IDC_PROCESS_LIST);
    EXPECT_EQ(styleOf(list) & 0xFFFF & ~static_cast<DWORD>(LVS_SHAREIMAGELISTS),
              static_cast<DWORD>(LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SORTASCENDING));
    RECT room{};
    GetClientRect(list, &room);
    // No bar below its column, also when there is one at the side.
    EXPECT_GE(room.right, 310 + GetSystemMetrics(SM_CXVSCROLL));
}

TEST(TemplatesTest, About)
{
    const BareDialog dialog(IDD_ABOUT);
    const RECT logo = placeOf(dialog.control(IDC_ABOUT_LOGO));
    const RECT picture = placeOf(dialog.control(IDC_ABOUT_PICTURE));
    const SIZE logoSize = unitsAsPixels(dialog.window(), 66, 14);
    const SIZE pictureSize = unitsAsPixels(dialog.window(), 188, 157);
    EXPECT_NEAR(widthOf(logo), logoSize.cx, 1);
    EXPECT_NEAR(heightOf(logo), logoSize.cy, 1);
    EXPECT_NEAR(widthOf(picture), pictureSize.cx, 1);
    EXPECT_NEAR(heightOf(picture), pictureSize.cy, 1);
    for (const int id : {IDC_ABOUT_LOGO, IDC_ABOUT_PICTURE}) {
        EXPECT_EQ(styleOf(dialog.control(id)) & SS_TYPEMASK, static_cast<DWORD>(SS_BITMAP));
        EXPECT_NE(styleOf(dialog.control(id)) & WS_VISIBLE, 0u);
    }
    // At the top right, in line with the picture below.
    RECT client{};
    GetClientRect(dialog.window(), &client);
    EXPECT_GT(logo.left, client.right / 2);
    EXPECT_LT(logo.bottom, picture.top);
    EXPECT_EQ(logo.right, picture.right);
    int lines = 0;
    for (const HWND control : controlsOf(dialog.window())) {
        if (kindOf(control) == "label") {
            ++lines;
            const RECT place = placeOf(control);
            EXPECT_GE(place.top, picture.bottom);
            EXPECT_EQ(place.left, picture.left);
            EXPECT_NE(windowText(control), "");
        }
    }
    EXPECT_EQ(lines, 2);
}

TEST(TemplatesTest, OfAllListsOnlyTheBackupToolsSortByThemselves)
{
    for (const int number : {IDD_NOTIFICATIONS, IDD_EXCLUDES, IDD_ADMINISTRATIVE_ACCOUNTS, IDD_BACKUP_TOOLS,
                             IDD_BLOCKED_EXTENSIONS})
    {
        const BareDialog dialog(number);
        const HWND list =
            dialog.control(number == IDD_NOTIFICATIONS ? IDC_NOTIFICATIONS_LIST : IDC_POLICY_LIST);
        const DWORD style = styleOf(list);
        EXPECT_EQ((style & (LVS_SORTASCENDING | LVS_SORTDESCENDING)) != 0, number == IDD_BACKUP_TOOLS)
            << number;
        EXPECT_EQ(style & LVS_SINGLESEL, 0u) << number;
    }
}

TEST(TemplatesTest, AllListsAndTreesHaveTheSameFrame)
{
    // The templates themselves: a runtime may make one frame of another when it opens them.
    for (const int number : {IDD_CHOOSER, IDD_NOTIFICATIONS, IDD_EXCLUDES, IDD_ADMINISTRATIVE_ACCOUNTS,
                             IDD_PROCESS_CHOOSER, IDD_BACKUP_TOOLS, IDD_CHOOSE_FILE, IDD_BLOCKED_EXTENSIONS})
    {
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
