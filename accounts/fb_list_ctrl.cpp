#include "accounts/fb_list_ctrl.h"

#include "accounts/filter_match.h"
#include "frame/redraw_off.h"

#include <algorithm>
#include <climits>
#include <iterator>

namespace {

// How long the header waits for the next key before it tells of a changed filter.
constexpr LPARAM kFilterDelayMilliseconds = 50;
// Characters of a filter, with the terminator.
constexpr int kFilterCapacity = 260;

constexpr UINT kKeptState = LVIS_SELECTED | LVIS_FOCUSED;

HDITEMW textFilter(HD_TEXTFILTERW& filter, wchar_t (&buffer)[kFilterCapacity])
{
    buffer[0] = L'\0';
    filter.pszText = buffer;
    filter.cchTextMax = kFilterCapacity;
    HDITEMW item{};
    item.mask = HDI_FILTER;
    item.type = HDFT_ISSTRING;
    item.pvFilter = &filter;
    return item;
}

} // namespace

LRESULT CFBListCtrl::call(UINT message, WPARAM wParam, LPARAM lParam) const
{
    // A list that went in the middle has no handle any more.
    return m_straight != nullptr && handle() != nullptr
               ? CallWindowProcW(m_straight, handle(), message, wParam, lParam)
               : send(message, wParam, lParam);
}

int CFBListCtrl::insertWholeRow(int index, int image, std::initializer_list<const wchar_t*> texts,
                                LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = index;
    item.iImage = image;
    item.lParam = data;
    int row = -1;
    for (int column = 0; const wchar_t* text : texts) {
        if (column == 0) {
            item.pszText = const_cast<wchar_t*>(text);
            row = static_cast<int>(call(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
        } else if (row != -1) {
            setCell(row, column, text);
        }
        ++column;
    }
    return row;
}

int CFBListCtrl::findRowByText(int startRow, const wchar_t* wanted, int column) const
{
    const int rows = wanted != nullptr ? rowCount() : 0;
    for (int row = startRow; row < rows; ++row) {
        if (text(row, column) == wanted) {
            return row;
        }
    }
    return -1;
}

void CFBListCtrl::setCell(int row, int column, const wchar_t* text) const
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text);
    call(LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void CFBListCtrl::addFilterBar() const
{
    HWND bar = header();
    SetWindowLongPtrW(bar, GWL_STYLE, GetWindowLongPtrW(bar, GWL_STYLE) | HDS_FILTERBAR);
    SendMessageW(bar, HDM_SETFILTERCHANGETIMEOUT, 0, kFilterDelayMilliseconds);
    wchar_t buffer[kFilterCapacity];
    HD_TEXTFILTERW filter;
    HDITEMW item = textFilter(filter, buffer);
    const int columns = columnCount();
    for (int column = 0; column < columns; ++column) {
        SendMessageW(bar, HDM_SETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    }
    SendMessageW(bar, HDM_CLEARFILTER, static_cast<WPARAM>(-1),
                 0); // an empty text is a filter, without a prompt
    // The header is higher now; the list makes room for it when its frame is worked out again.
    SetWindowPos(handle(), nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

const wchar_t* CFBListCtrl::filter(int column) const
{
    const auto index = static_cast<std::size_t>(column);
    return index < m_filters.size() ? m_filters[index].c_str() : L"";
}

/// The filter that a column has now; empty when there is none.
std::wstring CFBListCtrl::filterInHeader(int column) const
{
    wchar_t buffer[kFilterCapacity];
    HD_TEXTFILTERW filter;
    HDITEMW item = textFilter(filter, buffer);
    if (!SendMessageW(header(), HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item)) ||
        (item.type & HDFT_HASNOVALUE) != 0)
    {
        return {}; // what the field shows then is the header's prompt
    }
    buffer[std::size(buffer) - 1] = L'\0';
    return buffer;
}

void CFBListCtrl::readFilters()
{
    m_filters.assign(static_cast<std::size_t>(columnCount()), {});
    for (std::size_t column = 0; column < m_filters.size(); ++column) {
        m_filters[column] = filterInHeader(static_cast<int>(column));
    }
}

bool CFBListCtrl::onFilterButton(int column) const
{
    const bool filtered = !filterInHeader(column).empty();
    SendMessageW(header(), filtered ? HDM_CLEARFILTER : HDM_EDITFILTER, static_cast<WPARAM>(column), FALSE);
    return filtered;
}

/// Reads rows one by one. A message for the first column brings all but the other columns' texts: of a large list the
/// messages cost more than anything else.
class CFBListCtrl::RowReader {
public:
    explicit RowReader(const CFBListCtrl& list)
        : m_list(list)
    {
    }

    /// Reads a row's first text, image, data and state.
    void read(int row)
    {
        m_item = {};
        m_item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM | LVIF_STATE;
        m_item.stateMask = kKeptState;
        m_item.iItem = row;
        m_text[0] = L'\0';
        m_item.pszText = m_text;
        m_item.cchTextMax = static_cast<int>(std::size(m_text));
        m_list.call(LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&m_item));
        // A full buffer may mean a longer text, and a control may also leave its text where it is.
        if (m_item.pszText != m_text || wcsnlen(m_text, std::size(m_text)) + 1 >= std::size(m_text)) {
            m_longText = m_list.text(row, 0);
            m_item.pszText = m_longText.data();
        }
    }

    const wchar_t* firstText() const { return m_item.pszText; }

    /// Adds the whole row that was read.
    /// @param stateMask  what of its state is kept.
    void save(SavedRows& rows, UINT stateMask)
    {
        rows.add(m_item.iImage, m_item.lParam, m_item.state & stateMask);
        rows.addText(m_item.pszText);
        for (int column = 1; column < static_cast<int>(m_list.m_filters.size()); ++column) {
            addCell(rows, column);
        }
    }

private:
    static constexpr int kShortText = 260;

    void addCell(SavedRows& rows, int column)
    {
        wchar_t text[kShortText];
        LVITEMW cell{};
        cell.iSubItem = column;
        cell.pszText = text;
        cell.cchTextMax = kShortText;
        const auto length = static_cast<std::size_t>(m_list.call(
            LVM_GETITEMTEXTW, static_cast<WPARAM>(m_item.iItem), reinterpret_cast<LPARAM>(&cell)));
        if (cell.pszText == text && length + 1 < kShortText) {
            rows.addText({text, length});
        } else {
            rows.addText(m_list.text(m_item.iItem, column));
        }
    }

    const CFBListCtrl& m_list;
    LVITEMW m_item{};
    wchar_t m_text[kShortText];
    std::wstring m_longText;
};

bool CFBListCtrl::rejects(int row, const wchar_t* firstText) const
{
    for (std::size_t column = 0; column < m_filters.size(); ++column) {
        const wchar_t* const filter = m_filters[column].c_str();
        if (*filter != L'\0' &&
            !(column == 0 ? passesFilter(firstText, filter)
                          : passesFilter(text(row, static_cast<int>(column)).c_str(), filter)))
        {
            return true;
        }
    }
    return false;
}

bool CFBListCtrl::rejects(const wchar_t* text) const
{
    for (const std::wstring& filter : m_filters) {
        if (!filter.empty() && !passesFilter(text, filter.c_str())) {
            return true;
        }
        text += wcslen(text) + 1;
    }
    return false;
}

bool CFBListCtrl::putBack(const SavedRow& saved, const wchar_t* text) const
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM | (saved.state != 0 ? LVIF_STATE : 0u);
    item.iItem = INT_MAX;
    item.iImage = saved.image;
    item.lParam = saved.data;
    item.stateMask = kKeptState;
    item.state = saved.state;
    item.pszText = const_cast<wchar_t*>(text);
    const auto row = static_cast<int>(call(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    if (row == -1) {
        return false;
    }
    for (int column = 1; column < static_cast<int>(m_filters.size()); ++column) {
        text += wcslen(text) + 1;
        setCell(row, column, text);
    }
    return true;
}

bool CFBListCtrl::filterRows()
{
    readFilters();
    bool cameBack = false;
    const Straight straight(*this);
    withRedrawOff(*this, [&] {
        std::vector<int> rejected;
        SavedRows saved;
        RowReader reader(*this);
        const int rows = rowCount();
        for (int row = 0; row < rows; ++row) {
            reader.read(row);
            if (rejects(row, reader.firstText())) {
                rejected.push_back(row);
                reader.save(saved, 0); // hidden, a row loses its selection
            }
        }
        SavedRows hidden;
        // Before any row goes: what fails, fails without loss.
        hidden.reserve(m_hidden.rows().size() + saved.rows().size(),
                       m_hidden.characters() + saved.characters());
        remove(rejected);
        for (const SavedRow& row : m_hidden.rows()) {
            if (rejects(m_hidden.texts(row)) || !putBack(row, m_hidden.texts(row))) {
                hidden.add(m_hidden, row);
            } else {
                cameBack = true;
            }
        }
        hidden.add(saved);
        std::swap(m_hidden, hidden);
    });
    return cameBack;
}

/// Removes rows, given in ascending order, and leaves the others as they are.
void CFBListCtrl::remove(const std::vector<int>& rows)
{
    // Either the rows that go are touched, or those that stay.
    if (rows.size() > static_cast<std::size_t>(rowCount()) - rows.size()) {
        rebuildWithout(rows);
        return;
    }
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        deleteRow(*row); // from the end, where the fewest rows move up
    }
}

void CFBListCtrl::rebuildWithout(const std::vector<int>& rows)
{
    SavedRows staying;
    RowReader reader(*this);
    const auto marked = static_cast<int>(send(LVM_GETSELECTIONMARK));
    int newMark = -1;
    const int count = rowCount();
    auto gone = rows.begin();
    for (int row = 0; row < count; ++row) {
        if (gone != rows.end() && *gone == row) {
            ++gone;
            continue;
        }
        if (row == marked) {
            newMark = static_cast<int>(staying.rows().size());
        }
        reader.read(row);
        reader.save(staying, kKeptState);
    }
    deleteAllRows();
    for (const SavedRow& row : staying.rows()) {
        if (!putBack(row, staying.texts(row))) {
            m_hidden.add(staying, row); // it comes back with the next filter
        }
    }
    send(LVM_SETSELECTIONMARK, 0, newMark);
}
