// The templates of the file chooser, the process chooser and the About box, control by control.
#include "tests/support/bare_dialog.h"
#include "tests/support/dialog_look.h"
#include "tests/support/window_text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

DWORD styleOf(HWND control)
{
    return static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
}

struct LayoutTest : testing::TestWithParam<int> {
    const BareDialog dialog{GetParam()};
    void SetUp() override { ASSERT_NE(dialog.window(), nullptr) << "no template " << GetParam(); }
};

LONG widthOf(const RECT& area)
{
    return area.right - area.left;
}

LONG heightOf(const RECT& area)
{
    return area.bottom - area.top;
}

} // namespace

TEST(TemplatesTest, ChooseFile)
{
    const BareDialog dialog(155);
    EXPECT_EQ(windowText(dialog.window()), "Choose file...");
    // The tree comes last: the first control gets the focus, and a tree selects a node when it does.
    EXPECT_THAT(inWords(controlsOf(dialog.window())),
                ElementsAre("default button 1 \"OK\"", "button 2 \"Cancel\"", "SysTreeView32 1038 \"\""));
    EXPECT_EQ(styleOf(dialog.control(1038)) &
                  (TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_EDITLABELS),
              static_cast<DWORD>(TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT));
}

TEST(TemplatesTest, Processes)
{
    const BareDialog dialog(151);
    EXPECT_EQ(windowText(dialog.window()), "Select program from list of running processes");
    EXPECT_THAT(inWords(controlsOf(dialog.window())),
                ElementsAre("list 1020 \"ProcList\"", "default button 1 \"OK\"", "button 2 \"Cancel\""));
    const HWND list = dialog.control(1020);
    EXPECT_EQ(styleOf(list) & 0xFFFF & ~static_cast<DWORD>(LVS_SHAREIMAGELISTS),
              static_cast<DWORD>(LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SORTASCENDING));
    RECT room{};
    GetClientRect(list, &room);
    // No bar below its column, also when there is one at the side.
    EXPECT_GE(room.right, 310 + GetSystemMetrics(SM_CXVSCROLL));
}

TEST(TemplatesTest, About)
{
    const BareDialog dialog(144);
    EXPECT_EQ(windowText(dialog.window()), "About Vantrel");
    RECT client{};
    GetClientRect(dialog.window(), &client);
    const SIZE size = unitsAsPixels(dialog.window(), 229, 245);
    EXPECT_EQ(client.right, size.cx);
    EXPECT_EQ(client.bottom, size.cy);
    const std::vector<HWND> controls = controlsOf(dialog.window());
    ASSERT_EQ(controls.size(), 5u);
    const RECT logo = placeOf(dialog.control(1018));
    const RECT picture = placeOf(dialog.control(7019));
    const SIZE logoSize = unitsAsPixels(dialog.window(), 66, 14);
    const SIZE pictureSize = unitsAsPixels(dialog.window(), 188, 157);
    EXPECT_NEAR(widthOf(logo), logoSize.cx, 1);
    EXPECT_NEAR(heightOf(logo), logoSize.cy, 1);
    EXPECT_NEAR(widthOf(picture), pictureSize.cx, 1);
    EXPECT_NEAR(heightOf(picture), pictureSize.cy, 1);
    for (const int id : {1018, 7019}) {
        EXPECT_EQ(styleOf(dialog.control(id)) & SS_TYPEMASK, static_cast<DWORD>(SS_BITMAP));
        EXPECT_NE(styleOf(dialog.control(id)) & WS_VISIBLE, 0u);
    }
    // At the top right, in line with the picture below.
    EXPECT_GT(logo.left, size.cx / 2);
    EXPECT_LT(logo.bottom, picture.top);
    EXPECT_EQ(logo.right, picture.right);
    int lines = 0;
    for (const HWND control : controls) {
        const int id = GetDlgCtrlID(control);
        if (kindOf(control) == "label" && id != 1018 && id != 7019) {
            ++lines;
            const RECT place = placeOf(control);
            EXPECT_GE(place.top, picture.bottom);
            EXPECT_EQ(place.left, picture.left);
            EXPECT_NE(windowText(control), "");
        }
    }
    EXPECT_EQ(lines, 2);
    EXPECT_EQ(controlText(dialog.window(), IDOK), "OK");
}

INSTANTIATE_TEST_SUITE_P(All, LayoutTest, testing::Values(144, 151, 155), testing::PrintToStringParamName());

TEST_P(LayoutTest, HasTheFontAndTheFrame)
{
    expectUsualFont(dialog.window());
    expectModalFrame(dialog.window());
}

TEST_P(LayoutTest, IsLaidOutWithCare)
{
    // The About box stands its picture in the middle, and so leaves more at its sides.
    const SIZE least = unitsAsPixels(dialog.window(), 7, 7);
    const Margins margins = marginsOf(dialog.window());
    EXPECT_GE(margins.left + 1, least.cx);
    EXPECT_GE(margins.right + 1, least.cx);
    EXPECT_GE(margins.top + 1, least.cy);
    EXPECT_NEAR(margins.bottom, least.cy, 1);
    expectNoOverlap(dialog.window());
    expectNothingCutOff(dialog.window());
}

TEST_P(LayoutTest, HasButtonsInARowOneOfThemTheDefault)
{
    const SIZE usual = unitsAsPixels(dialog.window(), 50, 14);
    int defaults = 0;
    for (const HWND control : controlsOf(dialog.window())) {
        defaults += kindOf(control) == "default button" ? 1 : 0;
        if (kindOf(control).ends_with("button")) {
            const RECT place = placeOf(control);
            EXPECT_NEAR(widthOf(place), usual.cx, 1);
            EXPECT_NEAR(heightOf(place), usual.cy, 1);
            EXPECT_EQ(place.top, placeOf(dialog.control(IDOK)).top);
            EXPECT_NE(styleOf(control) & WS_TABSTOP, 0u);
        }
    }
    EXPECT_EQ(defaults, 1);
    EXPECT_EQ(kindOf(dialog.control(IDOK)), "default button");
}
