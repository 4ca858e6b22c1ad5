// A thin wrapper of a tree view.
#pragma once

#include "frame/wnd.h"

#include <string>

/// A tree view. Nodes are the platform's handles; TVI_ROOT is the parent of the top level.
class CTreeCtrl : public CWnd {
public:
    using CWnd::CWnd;

    DWORD style() const { return static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_STYLE)); }
    void setStyle(DWORD style) const
    {
        SetWindowLongPtrW(handle(), GWL_STYLE, static_cast<LONG_PTR>(static_cast<LONG>(style)));
    }

    /// Shows an image list; it stays its owner's.
    void setNormalImages(HIMAGELIST images) const
    {
        send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
    }

    /// Inserts a node as the last child of its parent.
    /// @param image          index in the image list.
    /// @param selectedImage  index while the node is selected.
    /// @return the node, null on failure.
    HTREEITEM append(HTREEITEM parent, const wchar_t* text, int image, int selectedImage) const;
    /// The same without images of its own.
    HTREEITEM append(HTREEITEM parent, const wchar_t* text) const;

    /// Removes a node with all that is under it. @return whether it was there to be removed.
    bool remove(HTREEITEM node) const { return send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(node)) != 0; }
    void removeAll() const { remove(TVI_ROOT); }
    void removeChildren(HTREEITEM node) const;

    /// The first child of a node, or of the top level; null when there is none.
    HTREEITEM firstChild(HTREEITEM node) const
    {
        return node == TVI_ROOT ? neighbour(TVGN_ROOT, nullptr) : neighbour(TVGN_CHILD, node);
    }
    HTREEITEM nextSibling(HTREEITEM node) const { return neighbour(TVGN_NEXT, node); }
    /// Null for a node of the top level.
    HTREEITEM parent(HTREEITEM node) const { return neighbour(TVGN_PARENT, node); }
    /// The selected node, or null.
    HTREEITEM selected() const { return neighbour(TVGN_CARET, nullptr); }
    void select(HTREEITEM node) const { send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node)); }

    /// @param action  TVE_...
    void expand(HTREEITEM node, UINT action) const
    {
        send(TVM_EXPAND, action, reinterpret_cast<LPARAM>(node));
    }

    /// Those state bits of a node that are asked for, TVIS_...
    UINT state(HTREEITEM node, UINT mask) const
    {
        return static_cast<UINT>(send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(node), mask)) & mask;
    }

    /// The whole text of a node, however long.
    std::wstring text(HTREEITEM node) const;

private:
    HTREEITEM neighbour(UINT which, HTREEITEM node) const
    {
        return reinterpret_cast<HTREEITEM>(send(TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(node)));
    }
};
