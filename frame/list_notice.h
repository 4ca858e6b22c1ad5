// What a list view tells its parent.
#pragma once

#include "frame/platform.h"

/// Whether LVN_ITEMCHANGED tells of a row that was selected or is no longer. The focus, the texts and the item data
/// change with the same notification, several times for each row that is inserted.
inline bool changesSelection(const NMHDR& notification)
{
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(notification);
    return (change.uChanged & LVIF_STATE) != 0 &&
           ((change.uNewState ^ change.uOldState) & LVIS_SELECTED) != 0;
}

/// The key of LVN_KEYDOWN, pressed alone; 0 when another key is held that would give it another meaning.
inline int plainKey(const NMHDR& notification)
{
    for (const int held : {VK_SHIFT, VK_CONTROL, VK_MENU}) {
        if (GetKeyState(held) < 0) {
            return 0;
        }
    }
    return reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey;
}
