#include "host/window/panel_layout.h"

#include "host/resource.h"

#include <algorithm>

namespace host {
namespace {

// In dialog units.
constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kButtonWidth = 50;
constexpr int kWideButtonWidth = 70;
constexpr int kButtonHeight = 14;
constexpr int kCheckBoxWidth = 90;
constexpr int kCheckBoxHeight = 10;
constexpr int kEditHeight = 14;
constexpr int kTextHeight = 8;
constexpr int kTextDrop = 3; // puts a label on the line of the edit beside it
constexpr int kLabelGap = 2; // between a label and what it labels
constexpr int kFolderLabelWidth = 24;
constexpr int kLeastFolders = 44;
constexpr int kMostFolders = 80;
constexpr int kLeastWidth = 384;
constexpr int kLeastHeight = 224;

struct Button {
    int id;
    int width;
};
// From the left, and from the right.
constexpr Button kLeftButtons[] = {{IDC_ADD_FOR_ACCOUNT, kWideButtonWidth},
                                   {IDC_ADD_FOR_ANYONE, kWideButtonWidth},
                                   {IDC_EDIT, kButtonWidth},
                                   {IDC_DROP, kButtonWidth}};
constexpr Button kRightButtons[] = {{IDC_APPLY, kButtonWidth}, {IDC_RELOAD, kButtonWidth}};

/// Turns dialog units into pixels, so that the page follows the font.
class Units {
public:
    explicit Units(HWND panel)
        : m_panel(panel)
    {
    }
    int x(int units) const { return pixels(units).x; }
    int y(int units) const { return pixels(units).y; }

private:
    POINT pixels(int units) const
    {
        RECT area{0, 0, units, units};
        MapDialogRect(m_panel, &area);
        return {area.right, area.bottom};
    }
    HWND m_panel;
};

/// Moves many controls at once.
class Placer {
public:
    explicit Placer(HWND panel)
        : m_panel(panel)
        , m_batch(BeginDeferWindowPos(20))
    {
    }
    ~Placer() { EndDeferWindowPos(m_batch); }
    Placer(const Placer&) = delete;
    Placer& operator=(const Placer&) = delete;

    void put(int id, int left, int top, int width, int height)
    {
        m_batch = DeferWindowPos(m_batch, GetDlgItem(m_panel, id), nullptr, left, top, width, height,
                                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }

private:
    HWND m_panel;
    HDWP m_batch;
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
    const Units units(panel);
    const int left = units.x(kMargin);
    const int right = client.right - left;
    const int bottom = client.bottom - heightOf(status) - units.y(kMargin);
    const int width = right - left;
    const int gap = units.x(kGap);
    const int button = units.x(kButtonWidth);
    const int wideButton = units.x(kWideButtonWidth);
    const int buttonHeight = units.y(kButtonHeight);
    const int textHeight = units.y(kTextHeight);

    Placer place(panel);
    int top = units.y(kMargin);

    // The line to type a folder.
    const int browse = right - button;
    const int add = browse - gap - button;
    const int edit = left + units.x(kFolderLabelWidth);
    place.put(IDC_FOLDER_LABEL, left, top + units.y(kTextDrop), edit - left, textHeight);
    place.put(IDC_FOLDER_EDIT, edit, top, add - gap - edit, units.y(kEditHeight));
    place.put(IDC_FOLDER_ADD, add, top, button, buttonHeight);
    place.put(IDC_FOLDER_BROWSE, browse, top, button, buttonHeight);
    top += units.y(kEditHeight + kMargin);

    // The folders shown: a fifth of the window.
    const int folders =
        std::clamp(static_cast<int>(client.bottom) / 5, units.y(kLeastFolders), units.y(kMostFolders));
    place.put(IDC_FOLDERS_LABEL, left, top, width, textHeight);
    top += units.y(kTextHeight + kLabelGap);
    place.put(IDC_FOLDERS, left, top, width - gap - wideButton, folders);
    place.put(IDC_FOLDER_REMOVE, right - wideButton, top, wideButton, buttonHeight);
    top += folders + units.y(kLabelGap);
    place.put(IDC_FOLDER_HINT, left, top, width, textHeight);
    top += units.y(kTextHeight + kMargin);

    // The rules: all that is left, above a row of buttons and the choice that belongs to the first of them.
    const int choice = bottom - units.y(kCheckBoxHeight);
    const int buttons = choice - units.y(kGap) - buttonHeight;
    place.put(IDC_RULES_LABEL, left, top, width, textHeight);
    top += units.y(kTextHeight + kLabelGap);
    place.put(IDC_RULES, left, top, width, buttons - units.y(kGap) - top);

    place.put(IDC_OWNERS_FIRST, left, choice, units.x(kCheckBoxWidth), units.y(kCheckBoxHeight));
    int x = left;
    for (const Button& each : kLeftButtons) {
        place.put(each.id, x, buttons, units.x(each.width), buttonHeight);
        x += units.x(each.width) + gap;
    }
    x = right;
    for (const Button& each : kRightButtons) {
        x -= units.x(each.width);
        place.put(each.id, x, buttons, units.x(each.width), buttonHeight);
        x -= gap;
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
