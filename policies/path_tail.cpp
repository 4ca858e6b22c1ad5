#include "policies/path_tail.h"

const wchar_t* pathTail(const wchar_t* path)
{
    const wchar_t* tail = path;
    for (; *path != L'\0'; ++path) {
        if (*path == L'\\') {
            tail = path + 1;
        }
    }
    return tail;
}
