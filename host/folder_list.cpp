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
    return byKey_.contains(folderKey(name));
}

std::vector<std::wstring> FolderList::add(const std::vector<std::wstring>& names)
{
    std::vector<std::wstring> added;
    const PaintPause pause(box_);
    for (const std::wstring& name : names) {
        std::wstring folder = tidyFolder(name);
        if (folder.empty() || !byKey_.try_emplace(folderKey(folder), names_.size()).second) {
            continue;
        }
        SendMessageW(box_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(folder.c_str()));
        names_.push_back(folder);
        added.push_back(std::move(folder));
    }
    fitScrollBar(added);
    return added;
}

void FolderList::selectOnly(const std::wstring& name)
{
    const auto found = byKey_.find(folderKey(name));
    if (found == byKey_.end()) {
        return;
    }
    SendMessageW(box_, LB_SETSEL, FALSE, -1);
    SendMessageW(box_, LB_SETSEL, TRUE, static_cast<LPARAM>(found->second));
    SendMessageW(box_, LB_SETCARETINDEX, found->second, FALSE);
}

std::vector<std::wstring> FolderList::selected() const
{
    std::vector<std::wstring> chosen;
    for (size_t i = 0; i < names_.size(); ++i) {
        if (SendMessageW(box_, LB_GETSEL, i, 0) > 0) {
            chosen.push_back(names_[i]);
        }
    }
    return chosen;
}

void FolderList::remove(const std::vector<std::wstring>& names)
{
    std::set<size_t, std::greater<>> leaving; // the last one first, so that no number changes before its turn
    for (const std::wstring& name : names) {
        if (const auto found = byKey_.find(folderKey(name)); found != byKey_.end()) {
            leaving.insert(found->second);
        }
    }
    const PaintPause pause(box_);
    for (const size_t index : leaving) {
        SendMessageW(box_, LB_DELETESTRING, index, 0);
    }
    std::vector<std::wstring> staying;
    byKey_.clear();
    for (size_t i = 0; i < names_.size(); ++i) {
        if (!leaving.contains(i)) {
            byKey_.emplace(folderKey(names_[i]), staying.size());
            staying.push_back(std::move(names_[i]));
        }
    }
    names_ = std::move(staying);
    widest_ = 0;
    fitScrollBar(names_);
}

void FolderList::fitScrollBar(const std::vector<std::wstring>& newNames)
{
    // A list box does not measure its own texts: without this the end of a long path cannot be reached.
    const HDC dc = GetDC(box_);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(box_, WM_GETFONT, 0, 0)));
    for (const std::wstring& name : newNames) {
        SIZE size{};
        GetTextExtentPoint32W(dc, name.c_str(), static_cast<int>(name.size()), &size);
        widest_ = std::max(widest_, size.cx);
    }
    SelectObject(dc, before);
    ReleaseDC(box_, dc);
    constexpr WPARAM kMargin = 8;
    SendMessageW(box_, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest_) + kMargin, 0);
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
