// Prints the rules of a folder as the list shows them, and sets the one for anyone.
//
//   quota_report DATA_FOLDER FOLDER [HARD_LIMIT SOFT_LIMIT]    limits in bytes
#include <corvane.h>
#include <lornix_host.h>

#include <commctrl.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>

namespace {

constexpr int kList = 100;
constexpr int kColumns = 6;

struct Window {
    HWND handle =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);

    Window()
    {
        CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | LVS_REPORT, 0, 0, 0, 0, handle,
                        reinterpret_cast<HMENU>(INT_PTR{kList}), nullptr, nullptr);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { DestroyWindow(handle); }
};

int refused()
{
    std::fprintf(stderr, "%ls\n", lornixLastError());
    return 1;
}

/// The folder's rules, with the limits of the one for anyone set, stored.
bool store(const PathList& folders, std::int64_t hard, std::int64_t soft)
{
    const std::unique_ptr<QuotaRule, decltype(&lornixFreeRules)> chain(lornixLoadRules(folders.paths[0]),
                                                                       lornixFreeRules);
    QuotaRule* rule = chain.get();
    while (rule != nullptr && rule->type != QUOTA_RULE_FOR_ANYONE) {
        rule = rule->next;
    }
    QuotaRule added{
        QUOTA_RULE_FOR_ANYONE, 0,      QUOTA_IN_USE_UNKNOWN, hard, soft, nullptr, folders.paths[0],
        chain.get(),           nullptr};
    if (rule != nullptr) {
        rule->hardLimit = hard;
        rule->softLimit = soft;
    }
    return lornixStoreRules(&folders, rule != nullptr ? chain.get() : &added) != 0;
}

} // namespace

int wmain(int count, wchar_t** words)
{
    if (count != 3 && count != 5) {
        std::fprintf(stderr, "quota_report DATA_FOLDER FOLDER [HARD_LIMIT SOFT_LIMIT]\n");
        return 2;
    }
    PathList folders{1, {words[2]}};
    if (lornixSetDataFolder(words[1]) == 0 ||
        (count == 5 &&
         !store(folders, std::wcstoll(words[3], nullptr, 10), std::wcstoll(words[4], nullptr, 10))))
    {
        return refused();
    }
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    const Window window;
    HWND list = GetDlgItem(window.handle, kList);
    initializeListCtrl(window.handle, kList, &folders);
    for (int row = 0; row < countItems(window.handle, kList); ++row) {
        for (int column = 0; column < kColumns; ++column) {
            wchar_t text[512] = L"";
            LVITEMW item{};
            item.iSubItem = column;
            item.pszText = text;
            item.cchTextMax = 512;
            SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
            std::printf("%ls%s", text, column + 1 < kColumns ? " | " : "\n");
        }
    }
    // The list has lent its records to the end: this program shows them no more.
    lornixFreeRules(getDataModified(window.handle, kList));
    return 0;
}
