// The help file.
#include "corvane.h"
#include "frame/com_apartment.h"
#include "frame/registry.h"

#include <cwchar>
#include <iterator>
#include <shellapi.h>

void showHelp(HWND owner)
{
    const wchar_t* folder = readRegistryString(HKEY_LOCAL_MACHINE, kSettingsKey, L"Path");
    wchar_t file[260] = {};
    // QUIRK: without a folder the runtime writes its own text for a null string, and the shell finds no such file: a
    // host that was never installed shows no message. HelpTest.WithoutAFolderTheFormatterHasItsOwnText
    _snwprintf(file, std::size(file) - 1, L"%ls\\doc\\vantrel40.chm", folder);
    const ComApartment forTheShell;
    ShellExecuteW(owner, L"open", file, nullptr, L".", SW_SHOW);
}
