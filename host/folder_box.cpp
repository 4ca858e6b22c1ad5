#include "host/folder_box.h"

#include "host/folder_name.h"
#include "host/resource.h"
#include "host/window/message.h"
#include "host/window/window_text.h"

#include "corvane.h"

#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

namespace host {
namespace {

/// The picture of a folder, as the system shows it; null where it has none.
HICON folderIcon()
{
    SHFILEINFOW info{};
    // For whatever has the attributes of a folder: none is looked at.
    SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, &info, sizeof info,
                   SHGFI_USEFILEATTRIBUTES | SHGFI_ICON | SHGFI_SMALLICON);
    return info.hIcon;
}

} // namespace

FolderBox::FolderBox(HWND panel)
    : m_panel(panel)
    , m_field(GetDlgItem(panel, IDC_FOLDER_EDIT))
    , m_icon(folderIcon())
    , m_shown(GetDlgItem(panel, IDC_FOLDERS))
{
    if (m_icon != nullptr) {
        setButtonIcon(panel, IDC_FOLDER_BROWSE, m_icon.get());
    }
}

void FolderBox::remove(const std::vector<std::wstring>& names)
{
    m_shown.remove(names);
    SetFocus(GetDlgItem(m_panel, IDC_FOLDERS));
}

std::wstring FolderBox::typed() const
{
    return windowText(m_field);
}

std::wstring FolderBox::browse() const
{
    BROWSEINFOW request{};
    request.hwndOwner = m_panel;
    request.lpszTitle = L"Choose a folder whose quota rules you want to see.";
    request.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    const Owned<ITEMIDLIST, CoTaskMemFree> chosen(SHBrowseForFolderW(&request));
    constexpr DWORD kLongestPath = 32768;
    std::wstring path(kLongestPath, L'\0');
    if (chosen == nullptr || !SHGetPathFromIDListEx(chosen.get(), path.data(), kLongestPath, GPFIDL_DEFAULT))
    {
        return {};
    }
    path.resize(path.find(L'\0'));
    return path;
}

std::wstring FolderBox::accepted(const std::wstring& name)
{
    std::wstring folder = tidyFolder(name);
    const std::wstring problem =
        m_shown.has(folder) ? L"The folder \"" + folder + L"\" is already shown." : whyNotAFolder(folder);
    if (!problem.empty()) {
        say(m_panel, MB_ICONINFORMATION, L"Add Folder", problem);
        SetFocus(m_field);
        SendMessageW(m_field, EM_SETSEL, 0, -1);
        return {};
    }
    SetWindowTextW(m_field, L"");
    return folder;
}

void FolderBox::showHint(bool mayEdit)
{
    const std::vector<std::wstring> chosen = m_shown.selected();
    std::wstring hint = L"Select the folders that new rules are for.";
    if (!mayEdit) {
        hint = L"Only an administrator can change rules and policies.";
    } else if (chosen.size() == 1) {
        hint = L"New rules are for " + chosen.front() + L".";
    } else if (chosen.size() > 1) {
        hint = L"New rules are for each of the " + std::to_wstring(chosen.size()) + L" selected folders.";
    }
    SetWindowTextW(GetDlgItem(m_panel, IDC_FOLDER_HINT), hint.c_str());
}

} // namespace host
