#include "host/folder_list.h"

#include "host/folder_name.h"
#include "host/paint_pause.h"

#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
#include <functional>
#include <memory>
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

std::wstring whyNotAFolder(const std::wstring& name)
{
    if (name.empty()) {
        return L"Type the folder's path first, for example C:\\Data, or choose it with Browse.";
    }
    if (!isFullPath(name)) {
        return L"\"" + name +
               L"\" is not a full path. Start it with a drive or a server:\nC:\\Data or \\\\server\\share.";
    }
    const DWORD attributes = GetFileAttributesW(longForm(fullPath(name)).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return L"There is no folder \"" + name + L"\", or it cannot be reached.";
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return L"\"" + name + L"\" is a file. Quota rules are defined on folders.";
    }
    return {};
}

std::wstring browseForFolder(HWND owner)
{
    BROWSEINFOW request{};
    request.hwndOwner = owner;
    request.lpszTitle = L"Choose a folder whose quota rules you want to see.";
    request.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    const std::unique_ptr<ITEMIDLIST, decltype(&CoTaskMemFree)> chosen(SHBrowseForFolderW(&request),
                                                                       CoTaskMemFree);
    constexpr DWORD kLongestPath = 32768;
    std::wstring path(kLongestPath, L'\0');
    if (chosen == nullptr || !SHGetPathFromIDListEx(chosen.get(), path.data(), kLongestPath, GPFIDL_DEFAULT))
    {
        return {};
    }
    path.resize(path.find(L'\0'));
    return path;
}

} // namespace host
