#include "host/folder_list.h"

#include "host/folder_name.h"

#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
#include <memory>

namespace host {

int FolderList::indexOf(const std::wstring& name) const
{
    const std::wstring key = folderKey(name);
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [&](const auto& shown) { return folderKey(shown) == key; });
    return found == names_.end() ? -1 : static_cast<int>(found - names_.begin());
}

bool FolderList::has(const std::wstring& name) const
{
    return indexOf(name) >= 0;
}

void FolderList::add(const std::wstring& name)
{
    names_.push_back(name);
    SendMessageW(box_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    fitScrollBar();
}

void FolderList::selectOnly(const std::wstring& name)
{
    const int index = indexOf(name);
    SendMessageW(box_, LB_SETSEL, FALSE, -1);
    SendMessageW(box_, LB_SETSEL, TRUE, index);
    SendMessageW(box_, LB_SETCARETINDEX, static_cast<WPARAM>(index), FALSE);
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
    for (const std::wstring& name : names) {
        if (const int index = indexOf(name); index >= 0) {
            names_.erase(names_.begin() + index);
            SendMessageW(box_, LB_DELETESTRING, static_cast<WPARAM>(index), 0);
        }
    }
    fitScrollBar();
}

void FolderList::fitScrollBar()
{
    // A list box does not measure its own texts: without this the end of a long path cannot be reached.
    const HDC dc = GetDC(box_);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(box_, WM_GETFONT, 0, 0)));
    LONG widest = 0;
    for (const std::wstring& name : names_) {
        SIZE size{};
        GetTextExtentPoint32W(dc, name.c_str(), static_cast<int>(name.size()), &size);
        widest = std::max(widest, size.cx);
    }
    SelectObject(dc, before);
    ReleaseDC(box_, dc);
    constexpr WPARAM kMargin = 8;
    SendMessageW(box_, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest) + kMargin, 0);
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
    const DWORD attributes = GetFileAttributesW(name.c_str());
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
    wchar_t path[MAX_PATH] = L"";
    if (chosen == nullptr || !SHGetPathFromIDListW(chosen.get(), path)) {
        return {};
    }
    return path;
}

} // namespace host
