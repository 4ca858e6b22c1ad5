// What the dialog looks like before anything is done in it.
#include "tests/chooser/chooser_fixture.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <functional>

using testing::ElementsAre;

namespace {

struct Control {
    int id;
    std::string kind;
    std::string text;
    friend bool operator==(const Control&, const Control&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Control& control)
    {
        return out << control.id << " " << control.kind << " \"" << control.text << "\"";
    }
};

std::vector<HWND> children(HWND dialog)
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
    if (name != "Button") {
        return name;
    }
    switch (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) {
    case BS_AUTORADIOBUTTON:
        return "radio";
    case BS_AUTOCHECKBOX:
        return "check";
    case BS_DEFPUSHBUTTON:
        return "default";
    case BS_PUSHBUTTON:
        return "push";
    default:
        return "button";
    }
}

RECT placeOf(HWND control, HWND dialog)
{
    RECT place;
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

SIZE sizeOfText(HWND control)
{
    const HDC dc = GetDC(control);
    const auto font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(dc, font);
    wchar_t text[128];
    const int length = GetWindowTextW(control, text, 128);
    SIZE size;
    GetTextExtentPoint32W(dc, text, length, &size);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return size;
}

class ChooserTemplateTest : public ChooserFixture {
protected:
    void look(const std::function<void(HWND)>& at)
    {
        script.onDialog("look", [&](HWND dialog) {
            at(dialog);
            click(dialog, IDCANCEL);
        });
        EXPECT_EQ(choose(), nullptr);
    }
};

} // namespace

TEST_F(ChooserTemplateTest, HasItsCaptionAndControlsInTabOrder)
{
    look([](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "Choose subject");
        std::vector<Control> controls;
        for (const HWND child : children(dialog)) {
            controls.push_back({static_cast<short>(GetDlgCtrlID(child)), kindOf(child), windowText(child)});
        }
        EXPECT_THAT(controls, ElementsAre(Control{1013, "radio", "Search account"},
                                          Control{1014, "radio", "Type exact account name"},
                                          Control{1006, "check", "Customize search base"},
                                          Control{-1, "Static", "Search base:"},
                                          Control{1007, "Edit", controlText(dialog, 1007)},
                                          Control{1008, "SysListView32", "SidList"},
                                          Control{-1, "Static", "User/Group:"}, Control{1009, "Edit", ""},
                                          Control{1, "default", "Search..."}, Control{2, "push", "Cancel"}));
    });
}

TEST_F(ChooserTemplateTest, StartsInTheListModeWithNothingChecked)
{
    look([](HWND dialog) {
        EXPECT_TRUE(isChecked(dialog, 1013));
        EXPECT_FALSE(isChecked(dialog, 1014));
        EXPECT_FALSE(isChecked(dialog, 1006));
        for (const int id : {1013, 1006, 1008, 1014, 1, 2}) {
            EXPECT_TRUE(isEnabled(dialog, id)) << id;
        }
        for (const int id : {1007, 1009}) {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
        EXPECT_EQ(GetDlgCtrlID(focusOf(dialog)), 1013);
        EXPECT_EQ(rowCount(dialog), 0);
    });
}

TEST_F(ChooserTemplateTest, TabReachesEveryControlThatTakesInput)
{
    look([](HWND dialog) {
        for (const int id : {1007, 1009}) {
            EnableWindow(GetDlgItem(dialog, id), TRUE);
        }
        std::vector<int> stops;
        HWND at = GetDlgItem(dialog, 1013);
        do {
            stops.push_back(GetDlgCtrlID(at));
            at = GetNextDlgTabItem(dialog, at, FALSE);
        } while (at != nullptr && GetDlgCtrlID(at) != 1013 && stops.size() < 20);
        EXPECT_THAT(stops, ElementsAre(1013, 1006, 1007, 1008, 1009, 1, 2));
        const HWND first = GetDlgItem(dialog, 1013);
        const HWND second = GetDlgItem(dialog, 1014);
        EXPECT_EQ(GetNextDlgGroupItem(dialog, first, FALSE), second) << "the arrow keys";
        EXPECT_EQ(GetNextDlgGroupItem(dialog, second, FALSE), first);
    });
}

TEST_F(ChooserTemplateTest, NothingIsCutAndNothingOverlaps)
{
    look([](HWND dialog) {
        RECT client;
        GetClientRect(dialog, &client);
        RECT margin{7, 7, 7, 7};
        MapDialogRect(dialog, &margin);
        const std::vector<HWND> controls = children(dialog);
        for (const HWND control : controls) {
            const RECT place = placeOf(control, dialog);
            const std::string text = windowText(control);
            EXPECT_GE(place.left, margin.left) << text;
            EXPECT_GE(place.top, margin.top) << text;
            EXPECT_LE(place.right, client.right - margin.left + 1) << text;
            EXPECT_LE(place.bottom, client.bottom - margin.top + 1) << text;
            if (className(control) == "Button" || className(control) == "Static") {
                const SIZE size = sizeOfText(control);
                const int mark = kindOf(control) == "radio" || kindOf(control) == "check" ? 18 : 0;
                EXPECT_LE(size.cx + mark, place.right - place.left) << text;
                EXPECT_LE(size.cy, place.bottom - place.top) << text;
            }
            for (const HWND other : controls) {
                RECT both;
                const RECT otherPlace = placeOf(other, dialog);
                EXPECT_FALSE(other != control && IntersectRect(&both, &place, &otherPlace))
                    << text << " and " << windowText(other);
            }
        }
    });
}

TEST_F(ChooserTemplateTest, ControlsStandInLine)
{
    look([](HWND dialog) {
        const auto place = [&](int id) {
            return placeOf(GetDlgItem(dialog, id), dialog);
        };
        EXPECT_EQ(place(1013).left, place(1014).left);
        EXPECT_EQ(place(1006).left, place(1008).left);
        EXPECT_EQ(place(1007).left, place(1009).left);
        EXPECT_EQ(place(1007).right, place(1009).right);
        EXPECT_EQ(place(1007).right, place(1008).right);
        EXPECT_EQ(place(2).right, place(1008).right);
        EXPECT_EQ(place(1).top, place(2).top);
    });
}

TEST_F(ChooserTemplateTest, TheListHoldsItsColumnsWithoutScrollingSideways)
{
    giveUsers({"DOM\\ann"});
    searchServer();
    look([](HWND dialog) {
        RECT client;
        GetClientRect(list(dialog), &client);
        EXPECT_GE(client.right, 200 + 200 + 50);
    });
}
