// The templates of the file chooser, the process chooser and the About box, control by control.
#include "corvane.h"
#include "tests/shell/dialog_template.h"
#include "tests/support/import_patch.h"
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

constexpr char kButton[] = "#128";
constexpr char kStatic[] = "#130";

HMODULE library()
{
    return LoadLibraryW(L"corvane.dll");
}

std::vector<std::string> inWords(const DialogTemplate& dialog)
{
    std::vector<std::string> words;
    for (const TemplateControl& control : dialog.controls) {
        words.push_back(std::to_string(control.id) + " " + control.windowClass + " \"" + control.text + "\"");
    }
    return words;
}

bool isDefaultButton(const TemplateControl& control)
{
    return control.windowClass == kButton && (control.style & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
}

struct LayoutTest : testing::TestWithParam<int> {
    const DialogTemplate dialog = DialogTemplate::load(library(), GetParam());
};

INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

} // namespace

TEST(TemplatesTest, ChooseFile)
{
    const DialogTemplate dialog = DialogTemplate::load(library(), 155);
    EXPECT_EQ(dialog.caption, "Choose file...");
    // The tree comes last: the first control gets the focus, and a tree selects a node when it does.
    EXPECT_THAT(inWords(dialog),
                ElementsAre("1 #128 \"OK\"", "2 #128 \"Cancel\"", "1038 SysTreeView32 \"\""));
    const TemplateControl& tree = dialog.at(1038);
    EXPECT_EQ(tree.style & (TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_EDITLABELS),
              static_cast<DWORD>(TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT));
}

TEST(TemplatesTest, Processes)
{
    const DialogTemplate dialog = DialogTemplate::load(library(), 151);
    EXPECT_EQ(dialog.caption, "Select program from list of running processes");
    EXPECT_THAT(inWords(dialog),
                ElementsAre("1020 SysListView32 \"ProcList\"", "1 #128 \"OK\"", "2 #128 \"Cancel\""));
    EXPECT_EQ(dialog.at(1020).style & 0xFFFF & ~static_cast<DWORD>(LVS_SHAREIMAGELISTS),
              static_cast<DWORD>(LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SORTASCENDING));
}

TEST(TemplatesTest, About)
{
    const DialogTemplate dialog = DialogTemplate::load(library(), 144);
    EXPECT_EQ(dialog.caption, "About Vantrel");
    EXPECT_EQ(dialog.width, 229);
    EXPECT_EQ(dialog.height, 245);
    ASSERT_EQ(dialog.controls.size(), 5u);
    const TemplateControl& logo = dialog.at(1018);
    const TemplateControl& picture = dialog.at(7019);
    EXPECT_EQ(logo.width, 66);
    EXPECT_EQ(logo.height, 14);
    EXPECT_EQ(picture.width, 188);
    EXPECT_EQ(picture.height, 157);
    for (const TemplateControl* control : {&logo, &picture}) {
        EXPECT_EQ(control->style & SS_TYPEMASK, static_cast<DWORD>(SS_BITMAP));
        EXPECT_NE(control->style & WS_VISIBLE, 0u);
    }
    // At the top right, in line with the picture below.
    EXPECT_GT(logo.x, dialog.width / 2);
    EXPECT_LT(logo.y + logo.height, picture.y);
    EXPECT_EQ(logo.x + logo.width, picture.x + picture.width);
    int lines = 0;
    for (const TemplateControl& control : dialog.controls) {
        if (control.windowClass == kStatic && control.id != 1018 && control.id != 7019) {
            ++lines;
            EXPECT_GE(control.y, picture.y + picture.height);
            EXPECT_EQ(control.x, picture.x);
            EXPECT_NE(control.text, "");
        }
    }
    EXPECT_EQ(lines, 2);
    EXPECT_EQ(dialog.at(IDOK).text, "OK");
}

INSTANTIATE_TEST_SUITE_P(All, LayoutTest, testing::Values(144, 151, 155), testing::PrintToStringParamName());

TEST_P(LayoutTest, HasTheFontAndTheFrame)
{
    EXPECT_EQ(dialog.font, "MS Sans Serif");
    EXPECT_EQ(dialog.points, 8);
    constexpr DWORD kFrame = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFONT;
    EXPECT_EQ(dialog.style & (kFrame | WS_CHILD | WS_THICKFRAME), kFrame);
}

TEST_P(LayoutTest, KeepsMarginsOfSevenUnits)
{
    int right = 0;
    int bottom = 0;
    for (const TemplateControl& control : dialog.controls) {
        EXPECT_GE(control.x, 7) << control.id;
        EXPECT_GE(control.y, 7) << control.id;
        right = std::max(right, control.x + control.width);
        bottom = std::max(bottom, control.y + control.height);
    }
    EXPECT_LE(right, dialog.width - 7);
    EXPECT_EQ(bottom, dialog.height - 7);
}

TEST_P(LayoutTest, LaysNoControlOverAnother)
{
    for (const TemplateControl& a : dialog.controls) {
        for (const TemplateControl& b : dialog.controls) {
            const bool apart = a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y ||
                               b.y + b.height <= a.y;
            EXPECT_TRUE(&a == &b || apart) << a.id << " and " << b.id;
        }
    }
}

TEST_P(LayoutTest, HasButtonsInARowOneOfThemTheDefault)
{
    int defaults = 0;
    for (const TemplateControl& control : dialog.controls) {
        defaults += isDefaultButton(control) ? 1 : 0;
        if (control.windowClass == kButton) {
            EXPECT_EQ(control.width, 50);
            EXPECT_EQ(control.height, 14);
            EXPECT_EQ(control.y, dialog.at(IDOK).y);
            EXPECT_NE(control.style & WS_TABSTOP, 0u);
        }
    }
    EXPECT_EQ(defaults, 1);
    EXPECT_TRUE(isDefaultButton(dialog.at(IDOK)));
}

TEST_P(LayoutTest, CutsNoTextOff)
{
    HMODULE module = library();
    const auto* resource = static_cast<LPCDLGTEMPLATEW>(
        LockResource(LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(GetParam()), RT_DIALOG))));
    HWND window = CreateDialogIndirectParamW(nullptr, resource, nullptr, ignore, 0);
    ASSERT_NE(window, nullptr);
    HDC dc = GetDC(window);
    SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const std::string kind = className(child);
        if (kind != "Button" && kind != "Static") {
            continue;
        }
        const std::wstring text = wide(windowText(child));
        SIZE needed{};
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &needed);
        RECT room{};
        GetClientRect(child, &room);
        EXPECT_LE(needed.cx + (kind == "Button" ? 8 : 0), room.right) << utf8(text);
        if (!text.empty()) {
            EXPECT_LE(needed.cy, room.bottom) << utf8(text);
        }
    }
    ReleaseDC(window, dc);
    DestroyWindow(window);
}

TEST(TemplatesTest, TheProcessListHasRoomForItsColumn)
{
    HMODULE module = library();
    const auto* resource = static_cast<LPCDLGTEMPLATEW>(
        LockResource(LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(151), RT_DIALOG))));
    HWND window = CreateDialogIndirectParamW(nullptr, resource, nullptr, ignore, 0);
    ASSERT_NE(window, nullptr);
    RECT room{};
    GetClientRect(GetDlgItem(window, 1020), &room);
    // No bar below, also when there is one at the side.
    EXPECT_GE(room.right, 310 + GetSystemMetrics(SM_CXVSCROLL));
    DestroyWindow(window);
}
