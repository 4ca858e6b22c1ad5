// The templates of the policy dialogs, control by control, and their layout as a person sees it.
#include "tests/support/import_patch.h"
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <ostream>
#include <vector>

using testing::UnorderedElementsAreArray;

namespace {

struct ControlLook {
    int id;
    std::string kind;
    std::string text;
    friend bool operator==(const ControlLook&, const ControlLook&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ControlLook& control)
    {
        return out << control.id << ' ' << control.kind << " \"" << control.text << '"';
    }
};

struct TemplateCase {
    int number;
    std::string caption;
    int width, height; ///< dialog units
    std::vector<ControlLook> controls;
};

std::ostream& operator<<(std::ostream& out, const TemplateCase& tested)
{
    return out << tested.number;
}

constexpr int kStatic = -1;
const char kLegend[] =
    "Script will receive the following parameters:\n\t1 - directory with soft limit exceeded\n\t2 - "
    "user reaches soft limit\n\t3 - occupied size";

std::vector<ControlLook> listControls(int list, const char* remove, bool edit)
{
    std::vector<ControlLook> controls = {{list, "list", "List1"},
                                         {1005, "button", "Add..."},
                                         {1006, "button", remove},
                                         {IDOK, "default button", "OK"},
                                         {IDCANCEL, "button", "Cancel"}};
    if (edit) {
        controls.push_back({1008, "button", "Edit..."});
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
     {{kStatic, "text", "File/Path to exclude:"},
      {1012, "edit", ""},
      {3, "button", "Browse..."},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
    {150,
     "Backup Processes",
     260,
     68,
     {{kStatic, "text", "Proces name:"},
      {1012, "edit", ""},
      {4, "button", "Browse running..."},
      {3, "button", "Browse from disk..."},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
    {157,
     "Blocked extension",
     369,
     72,
     {{kStatic, "text", "Path mask:"},
      {1012, "edit", ""},
      {kStatic, "text", "Account:"},
      {1039, "edit", ""},
      {3, "button", "Browse..."},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
    {153,
     "Notification script and options...",
     324,
     252,
     {{kStatic, "text", "Choose script:"},
      {1012, "edit", ""},
      {3, "button", "Browse..."},
      {kStatic, "group", "Legend"},
      {kStatic, "text", kLegend},
      {kStatic, "group", "Limit for specific user:"},
      {1022, "radio", "Anyone"},
      {1024, "radio", "Only user were specified in limit"},
      {1025, "radio", "All users except defined in limit"},
      {1023, "radio", "Specific user/group only"},
      {1026, "edit", ""},
      {kStatic, "group", "Impersonate to:"},
      {kStatic, "text", "User:"},
      {1028, "edit", ""},
      {kStatic, "text", "Password:"},
      {1029, "password", ""},
      {kStatic, "text", "Ignore increments less than"},
      {1030, "edit", ""},
      {kStatic, "group", "Limit amount of notifications for one limit to"},
      {1031, "radio", "No limit"},
      {1032, "radio", "Once per second"},
      {1033, "radio", "Once per minute"},
      {1034, "radio", "Once per five minutes"},
      {1035, "radio", "Once per hour"},
      {1036, "radio", "Once per day"},
      {1037, "radio", "Once per week"},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
    // Carried, never shown.
    {143,
     "Notification script...",
     324,
     103,
     {{kStatic, "text", "Choose script:"},
      {1012, "edit", ""},
      {3, "button", "Browse..."},
      {kStatic, "group", "Legend"},
      {kStatic, "text", kLegend},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
    {136,
     "Exclude file",
     267,
     50,
     {{kStatic, "text", "File/Path to exclude:"},
      {1012, "edit", ""},
      {IDOK, "default button", "OK"},
      {IDCANCEL, "button", "Cancel"}}},
};

INT_PTR CALLBACK doNothing(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

std::string kindOf(HWND control)
{
    const std::string name = className(control);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(control, GWL_STYLE));
    if (name == "SysListView32") {
        return "list";
    }
    if (name == "Edit") {
        return (style & ES_PASSWORD) != 0 ? "password" : "edit";
    }
    if (name == "Static") {
        return "text";
    }
    switch (style & BS_TYPEMASK) {
    case BS_GROUPBOX:
        return "group";
    case BS_AUTORADIOBUTTON:
        return "radio";
    case BS_DEFPUSHBUTTON:
        return "default button";
    case BS_PUSHBUTTON:
        return "button";
    default:
        return name;
    }
}

struct Placed {
    HWND window;
    ControlLook look;
    RECT at; ///< in the dialog's client area
};

bool overlap(const RECT& a, const RECT& b)
{
    RECT common;
    return IntersectRect(&common, &a, &b) != FALSE;
}

bool inside(const RECT& outer, const RECT& inner)
{
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

class TemplateTest : public testing::TestWithParam<TemplateCase> {
protected:
    void SetUp() override
    {
        const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&controls);
        const HMODULE module = ImportPatch::corvane();
        const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(tested.number), RT_DIALOG);
        ASSERT_NE(resource, nullptr);
        const auto* const loaded = static_cast<LPCDLGTEMPLATEW>(LoadResource(module, resource));
        dialog_ = CreateDialogIndirectParamW(nullptr, loaded, nullptr, doNothing, 0);
        ASSERT_NE(dialog_, nullptr);
        for (HWND child = GetWindow(dialog_, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
        {
            RECT at;
            GetWindowRect(child, &at);
            MapWindowPoints(nullptr, dialog_, reinterpret_cast<POINT*>(&at), 2);
            const auto id = static_cast<int>(static_cast<short>(GetDlgCtrlID(child)));
            placed_.push_back({child, {id, kindOf(child), windowText(child)}, at});
        }
    }

    void TearDown() override { DestroyWindow(dialog_); }

    RECT units(int left, int top, int right, int bottom) const
    {
        RECT rect = {left, top, right, bottom};
        MapDialogRect(dialog_, &rect);
        return rect;
    }

    /// What the control's text needs, in its own font.
    SIZE textSize(const Placed& control) const
    {
        const HDC dc = GetDC(control.window);
        const auto font = reinterpret_cast<HFONT>(SendMessageW(control.window, WM_GETFONT, 0, 0));
        const HGDIOBJ before = SelectObject(dc, font);
        RECT needed = {0, 0, 0, 0};
        const std::wstring text = wide(control.look.text);
        DrawTextW(dc, text.c_str(), -1, &needed, DT_CALCRECT | DT_EXPANDTABS);
        SelectObject(dc, before);
        ReleaseDC(control.window, dc);
        return {needed.right, needed.bottom};
    }

    const TemplateCase& tested = GetParam();
    HWND dialog_ = nullptr;
    std::vector<Placed> placed_;
};

} // namespace

TEST_P(TemplateTest, HasItsControls)
{
    EXPECT_EQ(windowText(dialog_), tested.caption);
    std::vector<ControlLook> looks;
    for (const Placed& control : placed_) {
        looks.push_back(control.look);
    }
    EXPECT_THAT(looks, UnorderedElementsAreArray(tested.controls));
}

TEST_P(TemplateTest, HasItsSize)
{
    RECT client;
    GetClientRect(dialog_, &client);
    const RECT wanted = units(0, 0, tested.width, tested.height);
    EXPECT_EQ(client.right, wanted.right);
    EXPECT_EQ(client.bottom, wanted.bottom);
}

TEST_P(TemplateTest, KeepsItsMargins)
{
    RECT client;
    GetClientRect(dialog_, &client);
    const RECT margin = units(7, 6, 7, 7); // a button beside an edit stands a unit higher
    const RECT room = {margin.left, margin.top, client.right - margin.right + 1,
                       client.bottom - margin.bottom + 1};
    for (const Placed& control : placed_) {
        EXPECT_TRUE(inside(room, control.at)) << control.look;
    }
}

TEST_P(TemplateTest, NothingOverlaps)
{
    for (const Placed& a : placed_) {
        for (const Placed& b : placed_) {
            if (&a == &b || !overlap(a.at, b.at)) {
                continue;
            }
            // A group box holds the whole of what it holds.
            EXPECT_TRUE((a.look.kind == "group" && inside(a.at, b.at)) ||
                        (b.look.kind == "group" && inside(b.at, a.at)))
                << a.look << " and " << b.look;
        }
    }
}

TEST_P(TemplateTest, NothingIsCutOff)
{
    const RECT mark = units(0, 0, 12, 0); // a radio's circle; the caption's inset of a group
    for (const Placed& control : placed_) {
        const SIZE needed = textSize(control);
        const LONG width = control.at.right - control.at.left;
        const LONG height = control.at.bottom - control.at.top;
        if (control.look.kind == "text") {
            EXPECT_LE(needed.cx, width) << control.look;
            EXPECT_LE(needed.cy, height) << control.look;
        } else if (control.look.kind == "radio" || control.look.kind == "group") {
            EXPECT_LE(needed.cx + mark.right, width) << control.look;
        } else if (control.look.kind.ends_with("button")) {
            EXPECT_LE(needed.cx + 8, width) << control.look;
        }
    }
}

TEST_P(TemplateTest, TheTabKeyGoesDownColumnByColumn)
{
    // From the first control in the order of the template through all stops and back to the first.
    const HWND first = GetNextDlgTabItem(dialog_, nullptr, FALSE);
    ASSERT_NE(first, nullptr);
    std::vector<HWND> stops = {first};
    for (HWND next = GetNextDlgTabItem(dialog_, first, FALSE); next != first && stops.size() < 50;
         next = GetNextDlgTabItem(dialog_, next, FALSE))
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
    for (const Placed& control : placed_) {
        const bool plain = control.look.kind == "edit" || control.look.kind == "password" ||
                           control.look.kind == "list" || control.look.kind.ends_with("button");
        expected += plain && IsWindowEnabled(control.window) ? 1 : 0;
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
    const HMODULE module = ImportPatch::corvane();
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    for (const int number : {142, 146, 149, 152, 156}) {
        const auto* const loaded = static_cast<LPCDLGTEMPLATEW>(
            LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(number), RT_DIALOG)));
        const HWND dialog = CreateDialogIndirectParamW(nullptr, loaded, nullptr, doNothing, 0);
        const auto style =
            static_cast<DWORD>(GetWindowLongPtrW(GetDlgItem(dialog, number == 142 ? 1015 : 1011), GWL_STYLE));
        EXPECT_EQ((style & (LVS_SORTASCENDING | LVS_SORTDESCENDING)) != 0, number == 152) << number;
        EXPECT_EQ(style & LVS_SINGLESEL, 0u) << number;
        DestroyWindow(dialog);
    }
}
