// The tree of drives and their files.
#pragma once

#include "files/tree_ctrl.h"

#include <string>

/// A tree view that shows the drives of this machine, or one folder, and fills a node when it is opened.
///
/// Listed under a node are plain files only. A folder below it makes the node look like one that can be opened,
/// and is not shown. QUIRK: so a drive or a file on its top level is all that can be chosen.
/// DirTreeTest.ListsPlainFilesOnly
class CDirTreeCtrl : public CTreeCtrl {
public:
    using CTreeCtrl::CTreeCtrl;

    /// Fills the tree from scratch.
    /// @param root       folder to show as the only node of the top level; null or empty: all drives that keep
    ///                   named streams.
    /// @param showFiles  whether plain files are listed and count as contents.
    /// @return false when the platform gave no images or no drives; errorText then tells which.
    bool display(const wchar_t* root, bool showFiles);

    /// Opens the tree along a path and selects the node at its end. Letters compare by case, and a path of
    /// which any part is not shown selects nothing.
    /// @return whether a node was selected.
    bool setSelectedPath(const std::wstring& path);

    /// The path of a node, without a backslash at the end; empty for no node.
    std::wstring fullPath(HTREEITEM node) const;

    /// To be called for TVN_ITEMEXPANDED: lists an opened node, empties a closed one.
    void onItemExpanded(const NMTREEVIEWW& notification);

    /// What failed last. Nobody shows it; it is there for a debugger.
    const std::wstring& errorText() const { return m_errorText; }
    /// The folder that the tree was rooted at, with a backslash at the end; empty for drives.
    const std::wstring& rootPath() const { return m_rootPath; }

private:
    bool takeSystemImages();
    bool listDrives();
    void listFolder(HTREEITEM node, const std::wstring& path);
    void refillNode(HTREEITEM node, UINT newState);
    void expandNode(HTREEITEM node);
    bool hasChildren(const std::wstring& path) const;
    HTREEITEM insertNode(HTREEITEM parent, const std::wstring& path);
    int iconIndex(const std::wstring& path, UINT flags);
    void addPlaceholder(HTREEITEM node) const;

    bool isBelowTopLevel(const std::wstring& path) const;
    HTREEITEM openAlong(const std::wstring& path);
    HTREEITEM childNamed(HTREEITEM node, const std::wstring& name) const;
    void openAfresh(HTREEITEM node) const;

    bool m_showFiles = false;
    bool m_openingPath = false; ///< redrawing is off for the whole walk
    std::wstring m_errorText;
    HIMAGELIST m_images = nullptr; ///< the system's: attached while it shows, never destroyed
    std::wstring m_rootPath;
};
