#include "host/window/status_line.h"

#include <commctrl.h>

#include <algorithm>

namespace host {
namespace {

// The parts, from left to right.
constexpr size_t kRules = 0;
constexpr size_t kModified = 1;
constexpr size_t kRights = 2;
constexpr size_t kError = 3;
constexpr size_t kDataFolder = 4;

constexpr int kTextMargin = 6; // pixels on both sides of a text

std::wstring counted(size_t number, const wchar_t* one, const wchar_t* many)
{
    return std::to_wstring(number) + L" " + (number == 1 ? one : many);
}

/// The bar's own device context with its font.
class BarPen {
public:
    explicit BarPen(HWND bar)
        : m_bar(bar)
        , m_dc(GetDC(bar))
        , m_before(SelectObject(m_dc, reinterpret_cast<HFONT>(SendMessageW(bar, WM_GETFONT, 0, 0))))
    {
    }
    ~BarPen()
    {
        SelectObject(m_dc, m_before);
        ReleaseDC(m_bar, m_dc);
    }
    BarPen(const BarPen&) = delete;
    BarPen& operator=(const BarPen&) = delete;

    int widthOf(const std::wstring& text) const
    {
        SIZE size{};
        GetTextExtentPoint32W(m_dc, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx + 2 * kTextMargin;
    }

    /// The text as it fits: a path loses its middle, any other text its end.
    std::wstring fitted(const std::wstring& text, int width, UINT how) const
    {
        constexpr size_t kRoomForDots = 4;
        std::wstring shown = text;
        shown.resize(text.size() + kRoomForDots);
        RECT area{0, 0, width - 2 * kTextMargin, 0};
        DrawTextW(m_dc, shown.data(), static_cast<int>(text.size()), &area,
                  DT_CALCRECT | DT_MODIFYSTRING | DT_SINGLELINE | DT_NOPREFIX | how);
        shown.resize(shown.find(L'\0'));
        return shown;
    }

private:
    HWND m_bar;
    HDC m_dc;
    HGDIOBJ m_before;
};

} // namespace

void StatusLine::resize()
{
    const BarPen pen(m_bar);
    RECT area{};
    GetClientRect(m_bar, &area);
    const int grip = GetSystemMetrics(SM_CXVSCROLL);

    // The short texts get what they need, error and folder share the rest; without an error the folder gets more.
    const int rules = pen.widthOf(m_texts[kRules]);
    const int modified = pen.widthOf(m_texts[kModified]);
    const int rights = pen.widthOf(m_texts[kRights]);
    const int rest = std::max<int>(area.right - rules - modified - rights - grip, 0);
    const int error = std::min(pen.widthOf(m_texts[kError]), rest * 3 / 5);
    const int folder = rest - error;

    const std::array<int, kParts> edges{rules, rules + modified, rules + modified + rights,
                                        rules + modified + rights + error, -1};
    SendMessageW(m_bar, SB_SETPARTS, kParts, reinterpret_cast<LPARAM>(edges.data()));
    const std::array<std::wstring, kParts> shown{m_texts[kRules], m_texts[kModified], m_texts[kRights],
                                                 pen.fitted(m_texts[kError], error, DT_END_ELLIPSIS),
                                                 pen.fitted(m_texts[kDataFolder], folder, DT_PATH_ELLIPSIS)};
    for (size_t part = 0; part < kParts; ++part) {
        SendMessageW(m_bar, SB_SETTEXTW, part, reinterpret_cast<LPARAM>(shown[part].c_str()));
    }
    InvalidateRect(m_bar, nullptr, TRUE); // the grip of the former size would stay
}

void StatusLine::show(size_t part, const std::wstring& text)
{
    if (m_texts[part] != text) {
        m_texts[part] = text;
        resize();
    }
}

void StatusLine::showRules(int rules, size_t folders)
{
    show(kRules, counted(static_cast<size_t>(rules), L"rule", L"rules") + L" in " +
                     counted(folders, L"folder", L"folders"));
}

void StatusLine::showModified(bool modified)
{
    show(kModified, modified ? L"Unsaved changes" : L"All changes stored");
}

void StatusLine::showRights(bool administrator)
{
    show(kRights, administrator ? L"Administrator" : L"Not an administrator: view only");
}

void StatusLine::showError(const std::wstring& error)
{
    // One line is all there is room for; the message box had the whole text.
    show(kError,
         error.empty() ? L"No store error" : L"Store: " + error.substr(0, error.find_first_of(L"\r\n")));
}

void StatusLine::showDataFolder(const std::wstring& folder)
{
    show(kDataFolder, L"Data: " + folder);
}

} // namespace host
