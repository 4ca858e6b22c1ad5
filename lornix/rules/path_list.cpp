// Lists of folders.
#include "lornix/record_list.h"

#include <cwchar>

PathList* appendToPaths(PathList* list, const wchar_t* folder)
{
    return lornix::appended(list, folder == nullptr ? nullptr : _wcsdup(folder));
}

void freePathList(PathList* list)
{
    lornix::releaseList(list);
}
