// The picture of a folder, as the system shows it.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace host {

struct DestroyOwnIcon {
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
using OwnIcon = std::unique_ptr<std::remove_pointer_t<HICON>, DestroyOwnIcon>;

/// @return the icon in its small size; null where the system has none.
OwnIcon folderIcon();

} // namespace host
