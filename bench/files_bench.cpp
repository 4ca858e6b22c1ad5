// Opening a folder of many files in the directory tree, beside the bare control that is given the same work: the same
// search, the same look-ups of icons, the same nodes inserted and removed, sorted by the runtime's sort.
//
// The shell's look-ups of icons cost most by far, and the same on both sides. So that they hide nothing, the large
// folder is opened with a fixed answer in their place, and a small one with the shell's own.
//   files_bench FOLDER [--sizes=1000,10000,100000] [--rounds=N] [--times]
// FOLDER holds a folder of so many files for each size, under the number as name, and one more named "shell".
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench/support/time.h"
#include "files/dir_tree_ctrl.h"
#include "tests/support/import_patch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <shellapi.h>
#include <string>
#include <vector>

namespace {

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
        std::vector<const std::wstring*> order; // not the texts themselves: moving them costs
        for (const std::wstring& file : files) {
            order.push_back(&file);
        }
        std::sort(order.begin(), order.end(), [](const std::wstring* a, const std::wstring* b) {
            return _wcsicmp(a->c_str(), b->c_str()) < 0;
        });
        for (const std::wstring* file : order) {
            insert(node, *file);
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
    Tally list;  ///< one listing
    Tally open;  ///< opened by the user: emptied, listed, emptied, listed
    Tally close; ///< emptied
};

void measureBare(const std::wstring& folder, Measured& result)
{
    HWND tree = makeTree();
    BareTree bare(tree, folder);
    HTREEITEM root = bare.insertRoot();
    result.list.add(timed([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        bare.list(root);
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    }));
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(root));
    result.open.add(timed([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        for (int i = 0; i < 2; ++i) {
            bare.clear(root);
            bare.list(root);
        }
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    }));
    result.close.add(timed([&] {
        SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
        bare.clear(root);
        SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    }));
    DestroyWindow(GetParent(tree));
}

void measureCorvane(const std::wstring& folder, Measured& result)
{
    CDirTreeCtrl tree(makeTree());
    result.list.add(timed([&] { tree.display(folder.c_str(), true); }));
    NMTREEVIEWW notification{};
    notification.itemNew.hItem = tree.firstChild(TVI_ROOT);
    tree.expand(notification.itemNew.hItem, TVE_EXPAND);
    notification.itemNew.state = TVIS_EXPANDED;
    result.open.add(timed([&] { tree.onItemExpanded(notification); }));
    notification.itemNew.state = 0;
    result.close.add(timed([&] { tree.onItemExpanded(notification); }));
    DestroyWindow(GetParent(tree.handle()));
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

/// @param files  how many the folder holds.
/// @param how    behind the names of the measures.
void compare(const std::wstring& folder, int files, int rounds, const std::string& how,
             std::vector<Comparison>& comparisons)
{
    std::fprintf(stderr, "%d files%s\n", files, how.c_str());
    Measured corvane;
    Measured bare;
    Measured first; // not counted: it finds the shell and the folder cold
    measureCorvane(folder, first);
    measureBare(folder, first);
    for (int round = 0; round < rounds; ++round) {
        // Each goes first as often as the other.
        for (const int turn : {round, round + 1}) {
            turn % 2 == 0 ? measureCorvane(folder, corvane) : measureBare(folder, bare);
        }
    }
    const auto add = [&](const char* measure, const Tally& ours, const Tally& control) {
        comparisons.push_back({measure + how, files, ours, control});
    };
    add("list a folder", corvane.list, bare.list);
    add("open a folder, which lists it twice", corvane.open, bare.open);
    add("close a folder", corvane.close, bare.close);
}

} // namespace

int main(int count, char** arguments)
{
    Options options{.sizes = {1000, 10000, 100000}};
    if (count < 2) {
        std::fputs("usage: files_bench FOLDER [OPTION ...]\n", stderr);
        return 2;
    }
    if (!readOptions(count - 1, arguments + 1, 1, 1000000, options)) {
        return 2;
    }
    const std::wstring folder = std::filesystem::path(arguments[1]).wstring() + L'\\';
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);

    std::vector<Comparison> comparisons;
    {
        const ImportPatch icons(GetModuleHandleW(nullptr), "SHGetFileInfoW", &fixedInfo);
        for (const int size : options.sizes) {
            compare(folder + std::to_wstring(size), size, options.roundsOf(size), "", comparisons);
        }
    }
    constexpr int kShellFiles = 300;
    compare(folder + L"shell", kShellFiles, options.roundsOf(100000), " *", comparisons);
    printComparisons("files", comparisons, options.times);
    std::printf("* with the icons of the shell; else with a fixed answer in their place\n");
    return 0;
}
