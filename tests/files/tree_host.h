// A window with a directory tree that forwards what it is told, as the dialog does.
#pragma once

#include "files/dir_tree_ctrl.h"
#include "tests/files/tree_nodes.h"

#include <string>
#include <vector>

class TreeHost {
public:
    explicit TreeHost(DWORD moreStyles = 0);
    ~TreeHost();
    TreeHost(const TreeHost&) = delete;
    TreeHost& operator=(const TreeHost&) = delete;

    CDirTreeCtrl& tree() { return m_tree; }
    HWND window() const { return m_window; }

    HTREEITEM top(const std::wstring& text) const { return child(TVI_ROOT, text); }
    HTREEITEM child(HTREEITEM node, const std::wstring& text) const;
    /// The texts of a node's children, or of the top level for TVI_ROOT; a placeholder is "".
    std::vector<std::string> children(HTREEITEM node) const
    {
        return tree_nodes::children(m_tree.handle(), node);
    }

    /// Opens and closes a node as a click on its button does.
    void click(HTREEITEM node);

    /// "image/selected image" of a node.
    std::string images(HTREEITEM node) const;

    /// The text of the selected node; empty when there is none.
    std::string selectedText() const;

    /// What the control was sent: "redraw 0", "redraw 1", "delete all", "expand 8001".
    std::vector<std::string> takeMessages();

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                       DWORD_PTR self);
    static LRESULT CALLBACK treeProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                     DWORD_PTR self);

    HWND m_window;
    CDirTreeCtrl m_tree;
    std::vector<std::string> m_messages;
};
