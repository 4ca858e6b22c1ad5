#include "files/select_file.h"

#include "corvane.h"
#include "frame/system_version.h"
#include "store/owned.h"

#include <commdlg.h>
#include <cwchar>
#include <iterator>

namespace {

// One for all callers, which copy what they get.
wchar_t fileName[260];

// QUIRK: servers of version 6 get the tree of drives, and all other systems the common dialog.
// SelectFileTest.ShowsTheOwnChooserOnlyOnServersOfVersionSix
bool wantsOwnChooser()
{
    const OSVERSIONINFOEXW version = systemVersion();
    return version.dwMajorVersion == 6 && version.wProductType != VER_NT_WORKSTATION;
}

const wchar_t* chooseOwn(HWND owner)
{
    const CBlock<wchar_t> chosen(chooseFileImpl(owner, 0));
    if (!chosen) {
        return nullptr;
    }
    lstrcpynW(fileName, chosen.get(), static_cast<int>(std::size(fileName)));
    return fileName;
}

} // namespace

const wchar_t* selectFile(HWND owner, unsigned mode)
{
    if (wantsOwnChooser()) {
        return chooseOwn(owner);
    }
    std::wmemset(fileName, L'\0', std::size(fileName));

    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = owner;
    request.lpstrFilter = mode == select_file_mode::kExecutable
                              ? L"Executable Files\0*.exe;*.vbs\0All files\0*.*\0"
                              : L"All files\0*.*\0";
    request.nFilterIndex = 1;
    request.lpstrFile = fileName;
    request.nMaxFile = static_cast<DWORD>(std::size(fileName));
    request.lpstrTitle = L"Select file";
    request.Flags =
        OFN_HIDEREADONLY | OFN_NOREADONLYRETURN | OFN_EXPLORER | OFN_ENABLESIZING | OFN_DONTADDTORECENT;
    request.lpstrDefExt = mode == select_file_mode::kExecutable ? L"exe" : L"*";
    if (mode == select_file_mode::kAnyName) {
        return GetSaveFileNameW(&request) ? fileName : nullptr;
    }
    // QUIRK: an open dialog has no use for this one, and who watches the request sees it.
    // SelectFileTest.AsksForAnyFileOtherwise
    request.Flags |= OFN_OVERWRITEPROMPT;
    return GetOpenFileNameW(&request) ? fileName : nullptr;
}
