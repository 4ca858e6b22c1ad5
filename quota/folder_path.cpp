#include "quota/folder_path.h"

#include "frame/ignore_case.h"

#include <algorithm>
#include <cwchar>

void useForwardSlashes(wchar_t* path)
{
    std::replace(path, path + std::wcslen(path), L'\\', L'/');
}

bool sameFolder(wchar_t* a, wchar_t* b)
{
    useForwardSlashes(a);
    useForwardSlashes(b);
    return sameFileName(a, b);
}
