// What every template keeps to, and what stands in the table of each.
#include "tests/support/bare_dialog.h"
#include "tests/support/window_text.h"
#include "tests/templates/template_table.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

using testing::ElementsAreArray;

namespace {

bool isField(HWND control)
{
    return kindOf(control) == "edit" || kindOf(control) == "password";
}

bool hasStyle(HWND control, DWORD style)
{
    return (static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE)) & style) != 0;
}

/// Whether the tab key is to stop at a control.
bool takesInput(HWND control)
{
    const std::string kind = kindOf(control);
    const bool kindDoes = kind != "label" && kind != "picture" && kind != "group";
    const bool inGroup = kind == "radio" && !hasStyle(control, WS_GROUP);
    const bool readOnly = isField(control) && hasStyle(control, ES_READONLY);
    return kindDoes && !inGroup && !readOnly && IsWindowEnabled(control);
}

struct LayoutTest : testing::TestWithParam<TemplateCase> {
    void SetUp() override { ASSERT_NE(dialog.window(), nullptr) << "no template " << tested.number; }

    /// From the first control in the order of the template through all stops and back to the first. A group of radio
    /// buttons is one stop for a person, whichever of them has it.
    std::vector<HWND> stops() const
    {
        std::vector<HWND> stops;
        const HWND first = GetNextDlgTabItem(dialog.window(), nullptr, FALSE);
        HWND stop = first;
        do {
            stops.push_back(stop);
            stop = GetNextDlgTabItem(dialog.window(), stop, FALSE);
        } while (stop != first && stops.size() < 50);
        std::erase_if(stops, [](HWND each) { return kindOf(each) == "radio" && !hasStyle(each, WS_GROUP); });
        return stops;
    }

    const TemplateCase& tested = GetParam();
    const BareDialog dialog{tested.number};
    const std::vector<HWND> controls = controlsOf(dialog.window());
};

INSTANTIATE_TEST_SUITE_P(Templates, LayoutTest, testing::ValuesIn(kTemplates),
                         testing::PrintToStringParamName());

} // namespace

TEST_P(LayoutTest, HasItsCaption)
{
    EXPECT_EQ(windowText(dialog.window()), tested.caption);
}

TEST_P(LayoutTest, HasItsSize)
{
    RECT client;
    GetClientRect(dialog.window(), &client);
    const SIZE wanted = unitsAsPixels(dialog.window(), tested.width, tested.height);
    EXPECT_EQ(client.right, wanted.cx);
    EXPECT_EQ(client.bottom, wanted.cy);
}

TEST_P(LayoutTest, HasItsControlsInTheirOrder)
{
    EXPECT_THAT(inWords(controls), ElementsAreArray(tested.controls));
}

TEST_P(LayoutTest, GivesNoNumberTwice)
{
    std::set<int> seen;
    for (const HWND control : controls) {
        if (kindOf(control) != "label" && kindOf(control) != "group") {
            EXPECT_TRUE(seen.insert(GetDlgCtrlID(control)).second) << inWords(control);
        }
    }
}

TEST_P(LayoutTest, HasTheFontAndTheFrame)
{
    expectUsualFont(dialog.window());
    expectModalFrame(dialog.window());
}

TEST_P(LayoutTest, KeepsItsMargins)
{
    constexpr int kRounding = 1;
    const Margins& units = tested.margins;
    const SIZE before = unitsAsPixels(dialog.window(), units.left, units.top);
    const SIZE behind = unitsAsPixels(dialog.window(), units.right, units.bottom);
    const Margins margins = marginsOf(dialog.window());
    EXPECT_NEAR(margins.left, before.cx, kRounding);
    EXPECT_NEAR(margins.top, before.cy, kRounding);
    EXPECT_NEAR(margins.right, behind.cx, kRounding);
    EXPECT_NEAR(margins.bottom, behind.cy, kRounding);
}

TEST_P(LayoutTest, NothingOverlapsAndNothingIsCutOff)
{
    expectNoOverlap(dialog.window());
    expectNothingCutOff(dialog.window());
}

TEST_P(LayoutTest, TheTabKeyGoesDownColumnByColumn)
{
    const std::vector<HWND> found = stops();
    std::vector<int> ids;
    std::transform(found.begin(), found.end(), std::back_inserter(ids), GetDlgCtrlID);
    EXPECT_EQ(ids, tested.stops);
    // Each stop is right of or below the one before, or starts another column.
    for (size_t i = 1; i < found.size(); ++i) {
        const RECT before = placeOf(found[i - 1]);
        const RECT after = placeOf(found[i]);
        EXPECT_TRUE(after.left >= before.left || after.top >= before.top ||
                    kindOf(found[i]) == "SysTreeView32")
            << inWords(found[i - 1]) << " goes back to " << inWords(found[i]);
    }
}

TEST_P(LayoutTest, TheTabKeyReachesAllThatTakesInput)
{
    std::vector<HWND> wanted;
    std::copy_if(controls.begin(), controls.end(), std::back_inserter(wanted), takesInput);
    EXPECT_EQ(stops(), wanted);
}

TEST_P(LayoutTest, HasButtonsOfTheUsualSizeAndOkIsTheDefault)
{
    const SIZE usual = unitsAsPixels(dialog.window(), 50, 14);
    for (const HWND control : controls) {
        const std::string kind = kindOf(control);
        const int id = GetDlgCtrlID(control);
        EXPECT_EQ(kind == "default button", id == IDOK) << inWords(control);
        if (!kind.ends_with("button")) {
            continue;
        }
        const RECT place = placeOf(control);
        const bool wide =
            std::find(tested.wideButtons.begin(), tested.wideButtons.end(), id) != tested.wideButtons.end();
        EXPECT_NEAR(place.bottom - place.top, usual.cy, 1) << inWords(control);
        if (wide) {
            EXPECT_GT(place.right - place.left, usual.cx + 1) << inWords(control);
        } else {
            EXPECT_NEAR(place.right - place.left, usual.cx, 1) << inWords(control);
        }
        EXPECT_TRUE(hasStyle(control, WS_TABSTOP)) << inWords(control);
        if (id == IDCANCEL) {
            EXPECT_EQ(place.top, placeOf(dialog.control(IDOK)).top);
        }
    }
}

TEST_P(LayoutTest, LinesLabelsUpWithTheirFields)
{
    for (size_t i = 0; i + 1 < controls.size(); ++i) {
        const std::string text = windowText(controls[i]);
        const bool followed = isField(controls[i + 1]);
        if (kindOf(controls[i]) != "label" || (!followed && !text.ends_with(':'))) {
            continue;
        }
        ASSERT_TRUE(followed) << "a label stands before its field: " << text;
        const RECT label = placeOf(controls[i]);
        const RECT field = placeOf(controls[i + 1]);
        EXPECT_LE(label.right, field.left) << text;
        EXPECT_NEAR((label.top + label.bottom) / 2, (field.top + field.bottom) / 2, 2) << text;
    }
}
