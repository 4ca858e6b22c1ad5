#include "host/folder_icon.h"

#include <shellapi.h>

namespace host {

OwnIcon folderIcon()
{
    SHFILEINFOW info{};
    // For whatever has the attributes of a folder: none is looked at.
    SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, &info, sizeof info,
                   SHGFI_USEFILEATTRIBUTES | SHGFI_ICON | SHGFI_SMALLICON);
    return OwnIcon(info.hIcon);
}

} // namespace host
