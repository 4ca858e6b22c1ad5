#include "files/dir_tree_ctrl.h"

#include "files/file_search.h"
#include "files/sort_string_array.h"
#include "frame/redraw_off.h"

#include <shellapi.h>

namespace {

std::wstring withoutBackslashes(std::wstring path)
{
    const std::size_t last = path.find_last_not_of(L'\\');
    path.resize(last == std::wstring::npos ? 0 : last + 1);
    return path;
}

// Drives without named streams, and drives without a medium, are left out: quotas are kept in streams.
bool keepsNamedStreams(const wchar_t* drive)
{
    const wchar_t root[] = {drive[0], L':', L'\\', L'\0'};
    DWORD flags = 0;
    return GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
           (flags & FILE_NAMED_STREAMS) != 0;
}

bool folderExists(const std::wstring& path)
{
    // Every folder holds the null device, and a file holds nothing.
    const FileSearch search(path + L"\\nul");
    if (search.foundDevice()) {
        // So some systems answer for any path at all.
        const DWORD attributes = GetFileAttributesW(withBackslash(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    }
    return search.started();
}

} // namespace

bool CDirTreeCtrl::display(const wchar_t* root, bool showFiles)
{
    m_openingPath = false;
    if ((style() & TVS_EDITLABELS) != 0) {
        setStyle(style() & ~static_cast<DWORD>(TVS_EDITLABELS));
    }
    removeAll();
    if (!takeSystemImages()) {
        return false;
    }
    m_showFiles = showFiles;
    if (root != nullptr && *root != L'\0') {
        m_rootPath = withBackslash(root);
        HTREEITEM node = insertNode(TVI_ROOT, root);
        withRedrawOff(*this, [&] { listFolder(node, root); });
        return true;
    }
    if (!listDrives()) {
        return false;
    }
    m_rootPath.clear();
    return true;
}

bool CDirTreeCtrl::takeSystemImages()
{
    SHFILEINFOW info{};
    auto* const images = reinterpret_cast<HIMAGELIST>(
        SHGetFileInfoW(L"C:\\", 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
    m_images = images;
    if (images == nullptr) {
        m_errorText = L"Cannot retrieve the Handle of SystemImageList!";
        return false;
    }
    setNormalImages(images);
    return true;
}

bool CDirTreeCtrl::listDrives()
{
    removeAll();
    wchar_t drives[258 + 2] = {}; // an end of its own behind the room that is offered
    if (GetLogicalDriveStringsW(258, drives) == 0) {
        m_errorText = L"Error Getting Logical DriveStrings!";
        return false;
    }
    for (const wchar_t* drive = drives; *drive != L'\0'; drive += std::wcslen(drive) + 1) {
        if (!keepsNamedStreams(drive)) {
            continue;
        }
        HTREEITEM node = insertNode(TVI_ROOT, drive);
        if (hasChildren(drive)) {
            addPlaceholder(node);
        }
    }
    return true;
}

HTREEITEM CDirTreeCtrl::insertNode(HTREEITEM parent, const std::wstring& path)
{
    // QUIRK: a file is looked up with a backslash behind it as well, and has the icon that the shell gives for that.
    // DirTreeTest.LooksAFileUpWithABackslashBehindIt
    const std::wstring iconPath = withBackslash(path);
    const int image = iconIndex(iconPath, SHGFI_ICON | SHGFI_SMALLICON);
    const int openImage = iconIndex(iconPath, SHGFI_ICON | SHGFI_OPENICON | SHGFI_SMALLICON);

    std::wstring text = path;
    if (!text.empty() && text.back() == L'\\') {
        text.pop_back();
    }
    if (parent != TVI_ROOT) {
        text.erase(0, text.rfind(L'\\') + 1);
    }
    return append(parent, text.c_str(), image, openImage);
}

int CDirTreeCtrl::iconIndex(const std::wstring& path, UINT flags)
{
    SHFILEINFOW info{};
    if (SHGetFileInfoW(path.c_str(), 0, &info, sizeof info, flags) == 0) {
        // QUIRK: spelled so, with three t. DirTreeTest.GoesOnWithoutIcons
        m_errorText = L"Error Gettting SystemFileInfo!";
        return 0;
    }
    DestroyIcon(info.hIcon);
    return info.iIcon;
}

void CDirTreeCtrl::listFolder(HTREEITEM node, const std::wstring& path)
{
    const std::wstring folder = withBackslash(path);
    CSortStringArray folders; // stays empty, see above the class: sub-folders are passed over
    CSortStringArray files;
    {
        FileSearch search(folder + L"*.*");
        for (bool found = search.started(); found; found = search.next()) {
            if (search.has(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) {
                continue;
            }
            if (m_showFiles) {
                files.add(folder + search.entry().cFileName);
            }
        }
    }
    folders.sort();
    for (const std::wstring& subfolder : folders) {
        HTREEITEM inserted = insertNode(node, subfolder);
        if (hasChildren(subfolder)) {
            addPlaceholder(inserted);
        }
    }
    if (m_showFiles) {
        files.sort();
        for (const std::wstring& file : files) {
            insertNode(node, file);
        }
    }
}

bool CDirTreeCtrl::hasChildren(const std::wstring& path) const
{
    FileSearch search(withBackslash(path) + L"*.*");
    for (bool found = search.started(); found; found = search.next()) {
        // QUIRK: hidden files do not count here, although a listing shows them; folders do, although it does not.
        // DirTreeTest.TellsWhichDrivesHaveContents
        const bool counts = search.has(FILE_ATTRIBUTE_DIRECTORY)
                                ? search.entry().cFileName[0] != L'.'
                                : m_showFiles && !search.has(FILE_ATTRIBUTE_HIDDEN);
        if (counts) {
            return true;
        }
    }
    return false;
}

void CDirTreeCtrl::addPlaceholder(HTREEITEM node) const
{
    append(node, L"");
}

std::wstring CDirTreeCtrl::fullPath(HTREEITEM node) const
{
    std::wstring path;
    for (; node != nullptr; node = parent(node)) {
        path.insert(0, text(node).append(1, L'\\'));
    }
    return withoutBackslashes(std::move(path));
}

void CDirTreeCtrl::onItemExpanded(const NMTREEVIEWW& notification)
{
    auto refill = [&] {
        refillNode(notification.itemNew.hItem, notification.itemNew.state);
    };
    // Removing nodes is drawn one by one as well, so all of it happens with redrawing off.
    if (m_openingPath) {
        refill();
    } else {
        withRedrawOff(*this, refill);
    }
}

void CDirTreeCtrl::refillNode(HTREEITEM node, UINT newState)
{
    if ((newState & TVIS_EXPANDED) == 0) {
        // What was listed is thrown away, so that the next opening reads the folder again.
        removeChildren(node);
        addPlaceholder(node);
        return;
    }
    expandNode(node);
    // QUIRK: listed a second time. A network drive that wakes up on the first listing is complete on the second.
    // DirTreeTest.ListsTwiceAndShowsOnce
    removeChildren(node);
    listFolder(node, fullPath(node));
}

void CDirTreeCtrl::expandNode(HTREEITEM node)
{
    removeChildren(node);
    listFolder(node, fullPath(node));
}

bool CDirTreeCtrl::setSelectedPath(const std::wstring& path)
{
    const std::wstring folder = withoutBackslashes(path);
    if (!isBelowTopLevel(folder) || !folderExists(folder)) {
        return false;
    }
    HTREEITEM node = nullptr;
    m_openingPath = true;
    withRedrawOff(*this, [&] {
        node = openAlong(withBackslash(path));
        if (node != nullptr) {
            select(node);
        }
    });
    m_openingPath = false;
    return node != nullptr;
}

// QUIRK: only the beginning is compared, so that "C:x" passes for C:. The walk along the path decides.
// DirTreeTest.OnlyTheBeginningOfAPathIsCheckedAgainstTheTopLevel
bool CDirTreeCtrl::isBelowTopLevel(const std::wstring& path) const
{
    for (HTREEITEM top = firstChild(TVI_ROOT); top != nullptr; top = nextSibling(top)) {
        if (path.starts_with(text(top))) {
            return true;
        }
    }
    return false;
}

// @return the node of the last segment, null when one was not found: the part of the way that was found then counts
// for nothing.
HTREEITEM CDirTreeCtrl::openAlong(const std::wstring& path)
{
    HTREEITEM node = TVI_ROOT;
    std::size_t start = 0;
    for (std::size_t end = path.find(L'\\'); end != std::wstring::npos; end = path.find(L'\\', start)) {
        node = childNamed(node, path.substr(start, end - start));
        if (node == nullptr) {
            return nullptr;
        }
        openAfresh(node);
        start = end + 1;
    }
    return node;
}

HTREEITEM CDirTreeCtrl::childNamed(HTREEITEM node, const std::wstring& name) const
{
    HTREEITEM child = firstChild(node);
    while (child != nullptr && text(child) != name) {
        child = nextSibling(child);
    }
    return child;
}

// Opens a node as a user does: the platform reports the first expansion, and the node is listed. One that was opened
// before is reset, so that it counts as never opened.
void CDirTreeCtrl::openAfresh(HTREEITEM node) const
{
    if (state(node, TVIS_EXPANDEDONCE) != 0) {
        expand(node, TVE_EXPAND);
        expand(node, TVE_COLLAPSE | TVE_COLLAPSERESET);
        addPlaceholder(node);
    }
    expand(node, TVE_EXPAND);
}
