#include "host/folder_list.h"

#include "host/folder_name.h"
#include "host/window/paint_pause.h"

#include <algorithm>
#include <functional>
#include <set>

namespace host {

bool FolderList::has(const std::wstring& name) const
{
    return m_byKey.contains(folderKey(name));
}

std::vector<std::wstring> FolderList::add(const std::vector<std::wstring>& names)
{
    std::vector<std::wstring> added;
    const PaintPause pause(m_box);
    for (const std::wstring& name : names) {
        std::wstring folder = tidyFolder(name);
        if (folder.empty() || !m_byKey.try_emplace(folderKey(folder), m_names.size()).second) {
            continue;
        }
        SendMessageW(m_box, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(folder.c_str()));
        m_names.push_back(folder);
        added.push_back(std::move(folder));
    }
    fitScrollBar(added);
    return added;
}

void FolderList::selectOnly(const std::wstring& name)
{
    const auto found = m_byKey.find(folderKey(name));
    if (found == m_byKey.end()) {
        return;
    }
    SendMessageW(m_box, LB_SETSEL, FALSE, -1);
    SendMessageW(m_box, LB_SETSEL, TRUE, static_cast<LPARAM>(found->second));
    SendMessageW(m_box, LB_SETCARETINDEX, found->second, FALSE);
}

std::vector<std::wstring> FolderList::selected() const
{
    std::vector<std::wstring> chosen;
    for (size_t i = 0; i < m_names.size(); ++i) {
        if (SendMessageW(m_box, LB_GETSEL, i, 0) > 0) {
            chosen.push_back(m_names[i]);
        }
    }
    return chosen;
}

void FolderList::remove(const std::vector<std::wstring>& names)
{
    std::set<size_t, std::greater<>> leaving; // the last one first, so that no number changes before its turn
    for (const std::wstring& name : names) {
        if (const auto found = m_byKey.find(folderKey(name)); found != m_byKey.end()) {
            leaving.insert(found->second);
        }
    }
    const PaintPause pause(m_box);
    for (const size_t index : leaving) {
        SendMessageW(m_box, LB_DELETESTRING, index, 0);
    }
    std::vector<std::wstring> staying;
    m_byKey.clear();
    for (size_t i = 0; i < m_names.size(); ++i) {
        if (!leaving.contains(i)) {
            m_byKey.emplace(folderKey(m_names[i]), staying.size());
            staying.push_back(std::move(m_names[i]));
        }
    }
    m_names = std::move(staying);
    m_widest = 0;
    fitScrollBar(m_names);
}

void FolderList::fitScrollBar(const std::vector<std::wstring>& newNames)
{
    // A list box does not measure its own texts: without this the end of a long path cannot be reached.
    const HDC dc = GetDC(m_box);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(m_box, WM_GETFONT, 0, 0)));
    for (const std::wstring& name : newNames) {
        SIZE size{};
        GetTextExtentPoint32W(dc, name.c_str(), static_cast<int>(name.size()), &size);
        m_widest = std::max(m_widest, size.cx);
    }
    SelectObject(dc, before);
    ReleaseDC(m_box, dc);
    constexpr WPARAM kMargin = 8;
    SendMessageW(m_box, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(m_widest) + kMargin, 0);
}

} // namespace host
