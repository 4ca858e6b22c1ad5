#include "files/tree_ctrl.h"

#include <cwchar>

namespace {

HTREEITEM insertLast(const CTreeCtrl& tree, HTREEITEM parent, const TVITEMW& item)
{
    TVINSERTSTRUCTW insertion{};
    insertion.hParent = parent;
    insertion.hInsertAfter = TVI_LAST;
    insertion.item = item;
    return reinterpret_cast<HTREEITEM>(tree.send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion)));
}

} // namespace

HTREEITEM CTreeCtrl::append(HTREEITEM parent, const wchar_t* text, int image, int selectedImage) const
{
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    item.pszText = const_cast<wchar_t*>(text);
    item.iImage = image;
    item.iSelectedImage = selectedImage;
    return insertLast(*this, parent, item);
}

HTREEITEM CTreeCtrl::append(HTREEITEM parent, const wchar_t* text) const
{
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.pszText = const_cast<wchar_t*>(text);
    return insertLast(*this, parent, item);
}

void CTreeCtrl::removeChildren(HTREEITEM node) const
{
    HTREEITEM child = firstChild(node);
    while (child != nullptr && remove(child)) {
        child = firstChild(node);
    }
}

std::wstring CTreeCtrl::text(HTREEITEM node) const
{
    // The message tells no length: as long as the text fills the buffer it may go on.
    for (std::wstring buffer(264, L'\0');; buffer.assign(buffer.size() * 4, L'\0')) {
        TVITEMW item{};
        item.mask = TVIF_TEXT;
        item.hItem = node;
        item.pszText = buffer.data();
        item.cchTextMax = static_cast<int>(buffer.size());
        if (!send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) {
            return {};
        }
        const std::size_t length = wcsnlen(buffer.c_str(), buffer.size());
        if (length + 1 < buffer.size()) {
            buffer.resize(length);
            return buffer;
        }
    }
}
