// The dialog templates, control by control, and whether they are fit to be looked at.
#include "tests/support/bare_dialog.h"
#include "tests/support/dialog_look.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

std::vector<std::string> controlsInWords(int number)
{
    const BareDialog dialog(number);
    return inWords(controlsOf(dialog.window()));
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

constexpr int kQuotaTemplates[] = {148, 141, 140};

class QuotaLayoutTest : public testing::TestWithParam<int> {
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
    const RECT members = placeOf(dialog.control(1006));
    const RECT newMembers = placeOf(dialog.control(1040));
    EXPECT_GT(newMembers.left, members.left);
    EXPECT_GE(newMembers.top, members.bottom);
}

TEST(QuotaTemplateTest, RadioButtonsAreOneGroupAndOnlyThey)
{
    const BareDialog dialog(148);
    const HWND first = dialog.control(1016);
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

INSTANTIATE_TEST_SUITE_P(Quota, QuotaLayoutTest, testing::ValuesIn(kQuotaTemplates),
                         testing::PrintToStringParamName());

TEST_P(QuotaLayoutTest, HasTheCaption)
{
    EXPECT_EQ(windowText(dialog.window()), "Quota Settings");
}

TEST_P(QuotaLayoutTest, HasTheFontAndTheFrame)
{
    expectUsualFont(dialog.window());
    expectModalFrame(dialog.window());
}

TEST_P(QuotaLayoutTest, IsLaidOutWithCare)
{
    expectNothingCutOff(dialog.window());
    expectNoOverlap(dialog.window());
    expectMargins(dialog.window());
}

TEST_P(QuotaLayoutTest, HasRoomForTheLongestSizes)
{
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

TEST_P(QuotaLayoutTest, HasButtonsOfTheUsualSize)
{
    const SIZE usual = unitsAsPixels(dialog.window(), 50, 14);
    for (const int id : {IDOK, IDCANCEL}) {
        const RECT area = placeOf(dialog.control(id));
        EXPECT_NEAR(area.right - area.left, usual.cx, 1);
        EXPECT_NEAR(area.bottom - area.top, usual.cy, 1);
    }
}

TEST_P(QuotaLayoutTest, LinesLabelsUpWithTheirFields)
{
    const auto controls = controlsOf(dialog.window());
    for (size_t i = 0; i + 1 < controls.size(); ++i) {
        if (kindOf(controls[i]) != "label") {
            continue;
        }
        const RECT label = placeOf(controls[i]);
        const RECT field = placeOf(controls[i + 1]);
        ASSERT_TRUE(kindOf(controls[i + 1]) == "edit")
            << "a label stands before its field: " << inWords(controls[i]);
        EXPECT_LE(label.right, field.left) << inWords(controls[i]);
        EXPECT_NEAR((label.top + label.bottom) / 2, (field.top + field.bottom) / 2, 2)
            << inWords(controls[i]);
    }
}

TEST_P(QuotaLayoutTest, GivesNoNumberTwice)
{
    std::set<int> seen;
    for (const HWND control : controlsOf(dialog.window())) {
        const int id = GetDlgCtrlID(control);
        if (kindOf(control) != "label" && kindOf(control) != "group") {
            EXPECT_TRUE(seen.insert(id).second) << inWords(control);
        }
    }
}
