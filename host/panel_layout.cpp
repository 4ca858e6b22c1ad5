#include "host/panel_layout.h"

#include "host/resource.h"

#include <algorithm>
#include <iterator>

namespace host {
namespace {

// Dialog units, so that the page follows the font.
constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kButtonWidth = 50;
constexpr int kWideButtonWidth = 70;
constexpr int kButtonHeight = 14;
constexpr int kEditHeight = 14;
constexpr int kTextHeight = 8;
constexpr int kTextDrop = 3; // puts a label on the line of the edit beside it
constexpr int kFolderLabelWidth = 24;
constexpr int kLeastFolders = 44;
constexpr int kMostFolders = 80;
constexpr int kLeastWidth = 330;
constexpr int kLeastHeight = 210;

struct Button {
    int id;
    int width;
};
// From left to right. "Add for account..." takes the first place of the left row when accounts can be chosen.
constexpr Button kLeftButtons[] = {
    {IDC_ADD_FOR_ANYONE, kWideButtonWidth}, {IDC_EDIT, kButtonWidth}, {IDC_DROP, kButtonWidth}};
constexpr Button kRightButtons[] = {{IDC_RELOAD, kButtonWidth}, {IDC_APPLY, kButtonWidth}};

/// Places controls given in dialog units.
class Placer {
public:
    explicit Placer(HWND panel)
        : panel_(panel)
        , batch_(BeginDeferWindowPos(20))
    {
    }
    ~Placer() { EndDeferWindowPos(batch_); }
    Placer(const Placer&) = delete;
    Placer& operator=(const Placer&) = delete;

    void put(int id, int left, int top, int right, int bottom)
    {
        RECT place{left, top, right, bottom};
        MapDialogRect(panel_, &place);
        batch_ =
            DeferWindowPos(batch_, GetDlgItem(panel_, id), nullptr, place.left, place.top,
                           place.right - place.left, place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }

private:
    HWND panel_;
    HDWP batch_;
};

int heightOf(HWND window)
{
    RECT area{};
    GetWindowRect(window, &area);
    return area.bottom - area.top;
}

} // namespace

void layOutPanel(HWND panel)
{
    const HWND status = GetDlgItem(panel, IDC_STATUS);
    SendMessageW(status, WM_SIZE, 0, 0); // a status bar finds its own place

    RECT client{};
    GetClientRect(panel, &client);
    RECT unit{0, 0, 100, 100};
    MapDialogRect(panel, &unit);
    const int right = MulDiv(client.right, 100, unit.right) - kMargin;
    const int bottom = MulDiv(client.bottom - heightOf(status), 100, unit.bottom) - kMargin;

    Placer place(panel);
    int top = kMargin;

    // The line to type a folder.
    const int browse = right - kButtonWidth;
    const int add = browse - kGap - kButtonWidth;
    const int edit = kMargin + kFolderLabelWidth;
    place.put(IDC_FOLDER_LABEL, kMargin, top + kTextDrop, edit, top + kTextDrop + kTextHeight);
    place.put(IDC_FOLDER_EDIT, edit, top, add - kGap, top + kEditHeight);
    place.put(IDC_FOLDER_ADD, add, top, add + kButtonWidth, top + kButtonHeight);
    place.put(IDC_FOLDER_BROWSE, browse, top, right, top + kButtonHeight);
    top += kEditHeight + kMargin;

    // The folders shown: a fifth of the window.
    const int folders = std::clamp(bottom / 5, kLeastFolders, kMostFolders);
    place.put(IDC_FOLDERS_LABEL, kMargin, top, right, top + kTextHeight);
    top += kTextHeight + 2;
    const int remove = right - kWideButtonWidth;
    place.put(IDC_FOLDERS, kMargin, top, remove - kGap, top + folders);
    place.put(IDC_FOLDER_REMOVE, remove, top, right, top + kButtonHeight);
    top += folders + 3;
    place.put(IDC_FOLDER_HINT, kMargin, top, right, top + kTextHeight);
    top += kTextHeight + kMargin;

    // The rules: all that is left, above a row of buttons.
    place.put(IDC_RULES_LABEL, kMargin, top, right, top + kTextHeight);
    top += kTextHeight + 2;
    const int buttons = bottom - kButtonHeight;
    place.put(IDC_RULES, kMargin, top, right, buttons - kGap);

    int x = kMargin;
    for (const Button& button : kLeftButtons) {
        place.put(button.id, x, buttons, x + button.width, bottom);
        x += button.width + kGap;
    }
    x = right;
    for (auto button = std::rbegin(kRightButtons); button != std::rend(kRightButtons); ++button) {
        place.put(button->id, x - button->width, buttons, x, bottom);
        x -= button->width + kGap;
    }
}

SIZE smallestPanel(HWND panel)
{
    RECT window{0, 0, kLeastWidth, kLeastHeight};
    MapDialogRect(panel, &window);
    AdjustWindowRectEx(&window, static_cast<DWORD>(GetWindowLongPtrW(panel, GWL_STYLE)), TRUE,
                       static_cast<DWORD>(GetWindowLongPtrW(panel, GWL_EXSTYLE)));
    return {window.right - window.left, window.bottom - window.top};
}

} // namespace host
