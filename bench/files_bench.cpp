// Opening a folder of many files in the directory tree, beside the bare control that is given the same work: the same
// search, the same look-ups of icons, the same nodes inserted and removed, sorted by the runtime's sort.
//
// The shell's look-ups of icons cost most by far, and the same on both sides. So that they hide nothing, the large
// folder is opened with a fixed answer in their place, and a small one with the shell's own.
//   files_bench FOLDER SMALL_FOLDER RUNS      the smallest of the runs counts; bench/files makes the folders
#include "files/dir_tree_ctrl.h"
#include "tests/support/import_patch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <shellapi.h>
#include <string>
#include <vector>

namespace {

double seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

HWND makeTree()
{
    HWND parent = CreateWindowExW(0, L"STATIC", L"bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 500,
                                  nullptr, nullptr, nullptr, nullptr);
    return CreateWindowExW(0, WC_TREEVIEWW, L"",
                           WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT, 0, 0, 380,
                           460, parent, nullptr, nullptr, nullptr);
}

/// The bare control, and what the same work costs with nothing around it.
class BareTree {
public:
    BareTree(HWND tree, std::wstring folder)
        : m_tree(tree)
        , m_folder(std::move(folder))
    {
    }

    HTREEITEM insertRoot() { return insert(TVI_ROOT, m_folder); }

    void list(HTREEITEM node)
    {
        std::vector<std::wstring> files;
        WIN32_FIND_DATAW entry;
        HANDLE search = FindFirstFileW((m_folder + L"\\*.*").c_str(), &entry);
        do {
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                files.push_back(m_folder + L"\\" + entry.cFileName);
            }
        } while (FindNextFileW(search, &entry));
        FindClose(search);
        std::sort(files.begin(), files.end(), [](const std::wstring& a, const std::wstring& b) {
            return _wcsicmp(a.c_str(), b.c_str()) < 0;
        });
        for (const std::wstring& file : files) {
            insert(node, file);
        }
    }

    void clear(HTREEITEM node)
    {
        while (const LRESULT child =
                   SendMessageW(m_tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(node)))
        {
            SendMessageW(m_tree, TVM_DELETEITEM, 0, child);
        }
    }

private:
    HTREEITEM insert(HTREEITEM parent, const std::wstring& path)
    {
        SHFILEINFOW info{};
        SHFILEINFOW open{};
        SHGetFileInfoW((path + L"\\").c_str(), 0, &info, sizeof info, SHGFI_ICON | SHGFI_SMALLICON);
        DestroyIcon(info.hIcon);
        SHGetFileInfoW((path + L"\\").c_str(), 0, &open, sizeof open,
                       SHGFI_ICON | SHGFI_OPENICON | SHGFI_SMALLICON);
        DestroyIcon(open.hIcon);
        TVINSERTSTRUCTW insertion{};
        insertion.hParent = parent;
        insertion.hInsertAfter = TVI_LAST;
        insertion.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        insertion.item.pszText = const_cast<wchar_t*>(path.c_str()) + path.rfind(L'\\') + 1;
        insertion.item.iImage = info.iIcon;
        insertion.item.iSelectedImage = open.iIcon;
        return reinterpret_cast<HTREEITEM>(
            SendMessageW(m_tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion)));
    }

    HWND m_tree;
    std::wstring m_folder;
};

struct Measured {
    double list;  ///< one listing
    double open;  ///< opened by the user: emptied, listed, emptied, listed
    double close; ///< emptied
};

Measured measureBare(const std::wstring& folder)
{
    HWND tree = makeTree();
    BareTree bare(tree, folder);
    Measured result{};
    HTREEITEM root = bare.insertRoot();
    result.list = seconds([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        bare.list(root);
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    });
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(root));
    result.open = seconds([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        for (int i = 0; i < 2; ++i) {
            bare.clear(root);
            bare.list(root);
        }
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    });
    result.close = seconds([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        bare.clear(root);
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    });
    DestroyWindow(GetParent(tree));
    return result;
}

Measured measureOurs(const std::wstring& folder)
{
    CDirTreeCtrl tree(makeTree());
    Measured result{};
    result.list = seconds([&] { tree.display(folder.c_str(), true); });
    NMTREEVIEWW notification{};
    notification.itemNew.hItem = tree.firstChild(TVI_ROOT);
    tree.expand(notification.itemNew.hItem, TVE_EXPAND);
    notification.itemNew.state = TVIS_EXPANDED;
    result.open = seconds([&] { tree.onItemExpanded(notification); });
    notification.itemNew.state = 0;
    result.close = seconds([&] { tree.onItemExpanded(notification); });
    DestroyWindow(GetParent(tree.handle()));
    return result;
}

void keepSmallest(Measured& best, const Measured& run, bool first)
{
    best.list = first ? run.list : std::min(best.list, run.list);
    best.open = first ? run.open : std::min(best.open, run.open);
    best.close = first ? run.close : std::min(best.close, run.close);
}

void print(const char* what, double ours, double bare)
{
    std::printf("%-24s %9.3f s %9.3f s %7.2f\n", what, ours, bare, ours / bare);
}

DWORD_PTR WINAPI fixedInfo(const wchar_t* path, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags)
{
    if ((flags & SHGFI_ICON) == 0) {
        const auto real = reinterpret_cast<decltype(&SHGetFileInfoW)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"shell32.dll"), "SHGetFileInfoW")));
        return real(path, attributes, info, size, flags);
    }
    info->hIcon = nullptr;
    info->iIcon = 0;
    return 1;
}

void compare(const char* title, const std::wstring& folder, int runs)
{
    Measured bare{};
    Measured ours{};
    for (int run = 0; run < runs; ++run) {
        keepSmallest(bare, measureBare(folder), run == 0);
        keepSmallest(ours, measureOurs(folder), run == 0);
    }
    std::printf("%-24s %11s %11s %7s\n", title, "tree", "bare", "ratio");
    print("list", ours.list, bare.list);
    print("open (lists twice)", ours.open, bare.open);
    print("close", ours.close, bare.close);
    std::fflush(stdout);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 4) {
        std::fputs("usage: files_bench FOLDER SMALL_FOLDER RUNS\n", stderr);
        return 2;
    }
    const int runs = std::max(_wtoi(argv[3]), 1);
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    {
        const ImportPatch icons(GetModuleHandleW(nullptr), "SHGetFileInfoW", &fixedInfo);
        compare("icons by a fixed answer", argv[1], runs);
    }
    compare("icons by the shell", argv[2], runs);
    return 0;
}
