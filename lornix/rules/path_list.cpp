// Lists of folders.
#include "lornix/record_list.h"
#include "store/lornix.h"

#include <cwchar>

PathList* appendToPaths(PathList* list, const wchar_t* folder)
{
    if (folder == nullptr) {
        return list;
    }
    PathList* grown = lornix::withRoomFor(list, offsetof(PathList, paths), 1);
    wchar_t* copy = grown == nullptr ? nullptr : _wcsdup(folder);
    if (copy == nullptr) {
        return grown == nullptr ? list : grown;
    }
    wchar_t** paths = grown->paths;
    paths[grown->count] = copy;
    ++grown->count;
    return grown;
}

void freePathList(PathList* list)
{
    if (list == nullptr) {
        return;
    }
    wchar_t** paths = list->paths;
    for (std::int32_t i = 0; i < list->count; ++i) {
        std::free(paths[i]);
    }
    std::free(list);
}
