#include "tests/support/dialog_look.h"

#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

namespace {

DWORD styleOf(HWND window)
{
    return static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE));
}

std::string kindOfButton(HWND button)
{
    switch (styleOf(button) & BS_TYPEMASK) {
    case BS_GROUPBOX:
        return "group";
    case BS_AUTORADIOBUTTON:
        return "radio";
    case BS_AUTOCHECKBOX:
        return "check";
    case BS_DEFPUSHBUTTON:
        return "default button";
    case BS_PUSHBUTTON:
        return "button";
    default:
        return className(button);
    }
}

// What a control needs beside its text; -1 for one whose text may be longer than it is.
LONG neededBeside(const std::string& kind)
{
    if (kind == "label") {
        return 0;
    }
    if (kind == "radio" || kind == "check") {
        return GetSystemMetrics(SM_CXMENUCHECK) + 4; // the mark and the gap after it
    }
    return kind == "group" || kind.ends_with("button") ? 8 : -1;
}

} // namespace

std::vector<HWND> controlsOf(HWND dialog)
{
    std::vector<HWND> found;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        found.push_back(child);
    }
    return found;
}

std::string kindOf(HWND control)
{
    const std::string name = className(control);
    if (name == "Static") {
        return (styleOf(control) & SS_TYPEMASK) == SS_BITMAP ? "picture" : "label";
    }
    if (name == "Edit") {
        return (styleOf(control) & ES_PASSWORD) != 0 ? "password" : "edit";
    }
    if (name == "SysListView32") {
        return "list";
    }
    return name == "Button" ? kindOfButton(control) : name;
}

std::string inWords(HWND control)
{
    std::string words = kindOf(control);
    const bool field = words == "edit" || words == "password";
    if (words != "label" && words != "group") {
        words += ' ' + std::to_string(GetDlgCtrlID(control));
    }
    if (field) {
        words += (styleOf(control) & ES_READONLY) != 0 ? " read-only" : "";
    } else if (words.find("picture") == std::string::npos) {
        words += " \"" + windowText(control) + '"';
    }
    words += (styleOf(control) & WS_VISIBLE) == 0 ? " hidden" : "";
    words += (styleOf(control) & WS_DISABLED) != 0 ? " disabled" : "";
    return words;
}

std::vector<std::string> inWords(const std::vector<HWND>& controls)
{
    std::vector<std::string> words;
    for (const HWND control : controls) {
        words.push_back(inWords(control));
    }
    return words;
}

RECT placeOf(HWND control)
{
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

SIZE unitsAsPixels(HWND dialog, int width, int height)
{
    RECT rect = {0, 0, width, height};
    MapDialogRect(dialog, &rect);
    return {rect.right, rect.bottom};
}

SIZE textSize(HWND control, const std::wstring& text)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT area{};
    DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_EXPANDTABS);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return {area.right, area.bottom};
}

bool isWithin(const RECT& inner, const RECT& outer)
{
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

void expectNoOverlap(HWND dialog)
{
    const std::vector<HWND> controls = controlsOf(dialog);
    for (size_t i = 0; i < controls.size(); ++i) {
        for (size_t j = i + 1; j < controls.size(); ++j) {
            const RECT a = placeOf(controls[i]);
            const RECT b = placeOf(controls[j]);
            RECT both{};
            if (IntersectRect(&both, &a, &b) == FALSE) {
                continue;
            }
            const bool held = (kindOf(controls[i]) == "group" && isWithin(b, a)) ||
                              (kindOf(controls[j]) == "group" && isWithin(a, b));
            EXPECT_TRUE(held) << inWords(controls[i]) << " and " << inWords(controls[j]);
        }
    }
}

void expectNothingCutOff(HWND dialog)
{
    for (const HWND control : controlsOf(dialog)) {
        const std::wstring text = wide(windowText(control));
        const LONG beside = neededBeside(kindOf(control));
        if (text.empty() || beside < 0) {
            continue;
        }
        const SIZE needed = textSize(control, text);
        RECT room{};
        GetClientRect(control, &room);
        EXPECT_LE(needed.cx + beside, room.right) << inWords(control);
        EXPECT_LE(needed.cy, room.bottom) << inWords(control);
    }
}

Margins marginsOf(HWND dialog)
{
    RECT all{};
    RECT client{};
    GetClientRect(dialog, &client);
    for (const HWND control : controlsOf(dialog)) {
        const RECT place = placeOf(control);
        UnionRect(&all, &all, &place);
    }
    return {all.left, all.top, client.right - all.right, client.bottom - all.bottom};
}

void expectUsualFont(HWND dialog)
{
    const auto font = reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0));
    LOGFONTW look{};
    ASSERT_NE(GetObjectW(font, sizeof look, &look), 0);
    EXPECT_EQ(utf8(look.lfFaceName), "MS Sans Serif");
    const HDC screen = GetDC(nullptr);
    constexpr int kPointSize = 8;
    constexpr int kPointsPerInch = 72;
    EXPECT_EQ(look.lfHeight, -MulDiv(kPointSize, GetDeviceCaps(screen, LOGPIXELSY), kPointsPerInch));
    ReleaseDC(nullptr, screen);
    for (const HWND control : controlsOf(dialog)) {
        if (kindOf(control) != "picture") {
            EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), font)
                << inWords(control);
        }
    }
}

void expectModalFrame(HWND dialog)
{
    const DWORD style = styleOf(dialog);
    EXPECT_EQ(style & WS_CAPTION, static_cast<DWORD>(WS_CAPTION));
    EXPECT_NE(style & WS_SYSMENU, 0u);
    EXPECT_NE(style & WS_POPUP, 0u);
    EXPECT_NE(style & DS_MODALFRAME, 0u);
    EXPECT_EQ(style & (WS_CHILD | WS_THICKFRAME), 0u);
}
