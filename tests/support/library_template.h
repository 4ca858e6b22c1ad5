// The dialog templates in the library.
#pragma once

#include <windows.h>

/// @return a template of the library under test; null when it has none of this number.
inline LPCDLGTEMPLATEW libraryTemplate(int number)
{
    static const HMODULE library = LoadLibraryW(L"corvane.dll"); // stays: its other users import it
    const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(number), RT_DIALOG);
    return found == nullptr ? nullptr
                            : static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(library, found)));
}
