// The nodes of a tree view.
#pragma once

#include "tests/support/text.h"

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

namespace tree_nodes {

inline HTREEITEM next(HWND tree, UINT which, HTREEITEM node = nullptr)
{
    return reinterpret_cast<HTREEITEM>(
        SendMessageW(tree, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(node)));
}

inline std::string textOf(HWND tree, HTREEITEM node)
{
    std::wstring text(33000, L'\0');
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = node;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return utf8(text.substr(0, text.find(L'\0')));
}

inline std::vector<std::string> children(HWND tree, HTREEITEM node)
{
    std::vector<std::string> texts;
    for (HTREEITEM child = next(tree, TVGN_CHILD, node); child != nullptr;
         child = next(tree, TVGN_NEXT, child))
    {
        texts.push_back(textOf(tree, child));
    }
    return texts;
}

inline void expand(HWND tree, HTREEITEM node)
{
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(node));
}

inline void select(HWND tree, HTREEITEM node)
{
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node));
}

} // namespace tree_nodes
