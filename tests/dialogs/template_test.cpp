// The dialog templates, control by control, and whether they are fit to be looked at.
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include "corvane.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

HMODULE library()
{
    static const auto unused = &countItems2; // an import, so that the library is loaded
    (void)unused;
    return GetModuleHandleW(L"corvane");
}

INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

/// A template as the platform makes it a window, without any of the library's code.
class BareDialog {
public:
    explicit BareDialog(int number)
    {
        const HRSRC found = FindResourceW(library(), MAKEINTRESOURCEW(number), RT_DIALOG);
        const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(library(), found);
        if (loaded != nullptr) {
            window_ = CreateDialogIndirectParamW(nullptr, static_cast<LPCDLGTEMPLATEW>(LockResource(loaded)),
                                                 nullptr, ignore, 0);
        }
    }
    ~BareDialog() { DestroyWindow(window_); }
    BareDialog(const BareDialog&) = delete;
    BareDialog& operator=(const BareDialog&) = delete;

    HWND window() const { return window_; }

    std::vector<HWND> controls() const
    {
        std::vector<HWND> found;
        for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
        {
            found.push_back(child);
        }
        return found;
    }

    RECT area(HWND control) const
    {
        RECT rect{};
        GetWindowRect(control, &rect);
        MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }

    /// Dialog units as pixels.
    SIZE pixels(LONG width, LONG height) const
    {
        RECT rect = {0, 0, width, height};
        MapDialogRect(window_, &rect);
        return {rect.right, rect.bottom};
    }

private:
    HWND window_ = nullptr;
};

DWORD styleOf(HWND control)
{
    return static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
}

bool isClass(HWND control, const char* name)
{
    return className(control) == name;
}

DWORD buttonType(HWND control)
{
    return isClass(control, "Button") ? styleOf(control) & BS_TYPEMASK : ~DWORD{0};
}

bool isGroupBox(HWND control)
{
    return buttonType(control) == BS_GROUPBOX;
}

/// What a control is, in words: "edit 1002 read-only", "label \"In Use:\"".
std::string inWords(HWND control)
{
    const int id = GetDlgCtrlID(control);
    const std::string quoted = '"' + windowText(control) + '"';
    std::string words;
    if (isClass(control, "Static")) {
        words = "label " + quoted;
    } else if (isClass(control, "Edit")) {
        words = "edit " + std::to_string(id);
        words += (styleOf(control) & ES_READONLY) != 0 ? " read-only" : "";
    } else {
        switch (buttonType(control)) {
        case BS_GROUPBOX:
            return "group " + quoted;
        case BS_AUTORADIOBUTTON:
            words = "radio ";
            break;
        case BS_AUTOCHECKBOX:
            words = "check ";
            break;
        case BS_DEFPUSHBUTTON:
            words = "default button ";
            break;
        case BS_PUSHBUTTON:
            words = "button ";
            break;
        default:
            words = className(control) + ' ';
        }
        words += std::to_string(id) + ' ' + quoted;
    }
    words += (styleOf(control) & WS_VISIBLE) == 0 ? " hidden" : "";
    words += (styleOf(control) & WS_DISABLED) != 0 ? " disabled" : "";
    return words;
}

std::vector<std::string> controlsInWords(int number)
{
    const BareDialog dialog(number);
    std::vector<std::string> words;
    for (const HWND control : dialog.controls()) {
        words.push_back(inWords(control));
    }
    return words;
}

const std::vector<std::string> kCommonControls = {
    "label \"Applied to:\"",
    "edit 1012 read-only",
    "label \"Credentials:\"",
    "edit 1001 read-only",
    "group \"Quota limits\"",
    "label \"Object Size:\"",
    "edit 1005 read-only",
    "label \"In Use:\"",
    "edit 1002 read-only",
    "label \"Soft limit:\"",
    "edit 1003",
    "label \"Hard limit:\"",
    "edit 1004",
};

std::vector<std::string> with(std::vector<std::string> first, const std::vector<std::string>& then)
{
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

const std::vector<std::string> kEnd = {"default button 1 \"OK\"", "button 2 \"Cancel\""};

SIZE textSize(HWND control, const std::wstring& text)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT area{};
    DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return {area.right, area.bottom};
}

bool overlap(const RECT& a, const RECT& b)
{
    RECT both{};
    return IntersectRect(&both, &a, &b) != FALSE;
}

bool within(const RECT& inner, const RECT& outer)
{
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

constexpr int kQuotaTemplates[] = {148, 141, 140};

class TemplateTest : public testing::TestWithParam<int> {
protected:
    BareDialog dialog{GetParam()};
    void SetUp() override { ASSERT_NE(dialog.window(), nullptr) << "no template " << GetParam(); }
};

} // namespace

TEST(QuotaTemplateTest, AddingARule)
{
    EXPECT_THAT(
        controlsInWords(148),
        ElementsAreArray(with(
            with(kCommonControls, {"group \"Advanced\"", "radio 1016 \"No existing files are part of quota\"",
                                   "radio 1018 \"Owned files are part of quota\"",
                                   "radio 1015 \"All existing  files are part of quota\"",
                                   "check 1006 \"Apply the same settings for all group members\"",
                                   "check 1040 \"Apply the same limit for new group members\"",
                                   "check 1019 \"Enable hard limit less than object size\""}),
            kEnd)));
}

TEST(QuotaTemplateTest, EditingARule)
{
    EXPECT_THAT(controlsInWords(141), ElementsAreArray(with(kCommonControls, kEnd)));
}

TEST(QuotaTemplateTest, ASingleLimit)
{
    EXPECT_THAT(controlsInWords(140), ElementsAreArray(with({"label \"Limit:\"", "edit 1004"}, kEnd)));
}

TEST(QuotaTemplateTest, NewMembersAreIndentedBelowMembers)
{
    const BareDialog dialog(148);
    const RECT members = dialog.area(GetDlgItem(dialog.window(), 1006));
    const RECT newMembers = dialog.area(GetDlgItem(dialog.window(), 1040));
    EXPECT_GT(newMembers.left, members.left);
    EXPECT_GE(newMembers.top, members.bottom);
}

TEST(QuotaTemplateTest, RadioButtonsAreOneGroupAndOnlyThey)
{
    const BareDialog dialog(148);
    const HWND first = GetDlgItem(dialog.window(), 1016);
    std::vector<int> group;
    HWND each = first;
    do {
        group.push_back(GetDlgCtrlID(each));
        each = GetNextDlgGroupItem(dialog.window(), each, FALSE);
    } while (each != first && group.size() < 20);
    EXPECT_THAT(group, ElementsAre(1016, 1018, 1015));
}

TEST(QuotaTemplateTest, TabGoesThroughTheFieldsToFill)
{
    const auto stops = [](int number) {
        const BareDialog dialog(number);
        std::vector<int> ids;
        HWND stop = GetNextDlgTabItem(dialog.window(), nullptr, FALSE);
        const HWND first = stop;
        do {
            ids.push_back(GetDlgCtrlID(stop));
            stop = GetNextDlgTabItem(dialog.window(), stop, FALSE);
        } while (stop != first && ids.size() < 30);
        // A group of radio buttons is one stop for a person, whichever of them has it.
        std::erase_if(ids, [](int id) { return id == 1018 || id == 1015; });
        return ids;
    };
    EXPECT_THAT(stops(148), ElementsAre(1003, 1004, 1016, 1006, 1040, 1019, IDOK, IDCANCEL));
    EXPECT_THAT(stops(141), ElementsAre(1003, 1004, IDOK, IDCANCEL));
    EXPECT_THAT(stops(140), ElementsAre(1004, IDOK, IDCANCEL));
}

INSTANTIATE_TEST_SUITE_P(Quota, TemplateTest, testing::ValuesIn(kQuotaTemplates),
                         testing::PrintToStringParamName());

TEST_P(TemplateTest, HasTheCaption)
{
    EXPECT_EQ(windowText(dialog.window()), "Quota Settings");
}

TEST_P(TemplateTest, HasTheFont)
{
    const auto font = reinterpret_cast<HFONT>(SendMessageW(dialog.window(), WM_GETFONT, 0, 0));
    LOGFONTW look{};
    ASSERT_NE(GetObjectW(font, sizeof look, &look), 0);
    EXPECT_EQ(utf8(look.lfFaceName), "MS Sans Serif");
    const HDC screen = GetDC(nullptr);
    constexpr int kPointSize = 8;
    constexpr int kPointsPerInch = 72;
    EXPECT_EQ(look.lfHeight, -MulDiv(kPointSize, GetDeviceCaps(screen, LOGPIXELSY), kPointsPerInch));
    ReleaseDC(nullptr, screen);
    for (const HWND control : dialog.controls()) {
        EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), font) << inWords(control);
    }
}

TEST_P(TemplateTest, IsAModalWindowWithACloseBox)
{
    const DWORD style = styleOf(dialog.window());
    EXPECT_EQ(style & WS_CAPTION, static_cast<DWORD>(WS_CAPTION));
    EXPECT_NE(style & WS_SYSMENU, 0u);
    EXPECT_NE(style & WS_POPUP, 0u);
    EXPECT_NE(style & DS_MODALFRAME, 0u);
    EXPECT_EQ(style & WS_CHILD, 0u);
}

TEST_P(TemplateTest, CutsNoTextOff)
{
    for (const HWND control : dialog.controls()) {
        const std::wstring text = wide(windowText(control));
        if (text.empty()) {
            continue;
        }
        const SIZE needed = textSize(control, text);
        RECT room{};
        GetClientRect(control, &room);
        LONG beside = 0;
        switch (buttonType(control)) {
        case BS_AUTORADIOBUTTON:
        case BS_AUTOCHECKBOX:
            beside = GetSystemMetrics(SM_CXMENUCHECK) + 4; // the mark and the gap after it
            break;
        case BS_GROUPBOX:
        case BS_PUSHBUTTON:
        case BS_DEFPUSHBUTTON:
            beside = 8;
            break;
        default:
            break;
        }
        EXPECT_LE(needed.cx + beside, room.right) << inWords(control);
        EXPECT_LE(needed.cy, room.bottom) << inWords(control);
    }
}

TEST_P(TemplateTest, HasRoomForTheLongestSizes)
{
    for (const HWND control : dialog.controls()) {
        if (isClass(control, "Edit")) {
            RECT room{};
            GetClientRect(control, &room);
            const SIZE needed = textSize(control, L"-1048576K");
            EXPECT_LE(needed.cx + 4, room.right) << inWords(control);
            EXPECT_LE(needed.cy, room.bottom) << inWords(control);
        }
    }
}

TEST_P(TemplateTest, LaysNoControlOverAnother)
{
    const auto controls = dialog.controls();
    for (size_t i = 0; i < controls.size(); ++i) {
        for (size_t j = i + 1; j < controls.size(); ++j) {
            const RECT a = dialog.area(controls[i]);
            const RECT b = dialog.area(controls[j]);
            const auto both = inWords(controls[i]) + " and " + inWords(controls[j]);
            if (isGroupBox(controls[i]) != isGroupBox(controls[j])) {
                const RECT& box = isGroupBox(controls[i]) ? a : b;
                const RECT& other = isGroupBox(controls[i]) ? b : a;
                EXPECT_TRUE(!overlap(a, b) || within(other, box)) << both;
            } else {
                EXPECT_FALSE(overlap(a, b)) << both;
            }
        }
    }
}

TEST_P(TemplateTest, KeepsMarginsOfSevenUnits)
{
    RECT all{};
    RECT client{};
    GetClientRect(dialog.window(), &client);
    for (const HWND control : dialog.controls()) {
        const RECT area = dialog.area(control);
        UnionRect(&all, &all, &area);
    }
    const SIZE margin = dialog.pixels(7, 7);
    constexpr int kRounding = 1;
    EXPECT_NEAR(all.left, margin.cx, kRounding);
    EXPECT_NEAR(all.top, margin.cy, kRounding);
    EXPECT_NEAR(client.right - all.right, margin.cx, kRounding);
    EXPECT_NEAR(client.bottom - all.bottom, margin.cy, kRounding);
}

TEST_P(TemplateTest, HasButtonsOfTheUsualSize)
{
    const SIZE usual = dialog.pixels(50, 14);
    for (const int id : {IDOK, IDCANCEL}) {
        const RECT area = dialog.area(GetDlgItem(dialog.window(), id));
        EXPECT_NEAR(area.right - area.left, usual.cx, 1);
        EXPECT_NEAR(area.bottom - area.top, usual.cy, 1);
    }
}

TEST_P(TemplateTest, LinesLabelsUpWithTheirFields)
{
    const auto controls = dialog.controls();
    for (size_t i = 0; i + 1 < controls.size(); ++i) {
        if (!isClass(controls[i], "Static")) {
            continue;
        }
        const RECT label = dialog.area(controls[i]);
        const RECT field = dialog.area(controls[i + 1]);
        ASSERT_TRUE(isClass(controls[i + 1], "Edit"))
            << "a label stands before its field: " << inWords(controls[i]);
        EXPECT_LE(label.right, field.left) << inWords(controls[i]);
        EXPECT_NEAR((label.top + label.bottom) / 2, (field.top + field.bottom) / 2, 2)
            << inWords(controls[i]);
    }
}

TEST_P(TemplateTest, GivesNoNumberTwice)
{
    std::set<int> seen;
    for (const HWND control : dialog.controls()) {
        const int id = GetDlgCtrlID(control);
        if (!isClass(control, "Static") && !isGroupBox(control)) {
            EXPECT_TRUE(seen.insert(id).second) << inWords(control);
        }
    }
}
