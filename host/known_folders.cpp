#include "host/known_folders.h"

#include "host/owned.h"

#include "lornix_host.h"

namespace host {

std::vector<std::wstring> knownFolders()
{
    const Owned<PathList, lornixFreeFolders> known(lornixKnownFolders());
    if (known == nullptr) {
        return {};
    }
    wchar_t* const* paths = known->paths;
    return {paths, paths + known->count};
}

} // namespace host
