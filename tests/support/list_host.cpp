#include "tests/support/list_host.h"

#include "tests/support/describe.h"
#include "tests/support/text.h"

#include <commctrl.h>

#include <stdexcept>

namespace {

HWND makeWindow(const wchar_t* windowClass, DWORD style, HWND parent, int id)
{
    const HWND window = CreateWindowExW(0, windowClass, L"", style, 0, 0, 600, 300, parent,
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                        GetModuleHandleW(nullptr), nullptr);
    if (window == nullptr) {
        throw std::runtime_error("no window of class " + utf8(windowClass));
    }
    return window;
}

HWND makeList(DWORD moreListStyles)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    return makeWindow(WC_LISTVIEWW, WS_CHILD | LVS_REPORT | LVS_SHOWSELALWAYS | moreListStyles,
                      makeWindow(L"STATIC", WS_POPUP, nullptr, 0), ListHost::kListId);
}

} // namespace

ListHost::ListHost(DWORD moreListStyles)
    : ListView(makeList(moreListStyles))
    , m_window(GetParent(list()))
{
    m_object.window = list();
    // Never to be read by the library.
    for (auto& word : m_object.reserved) {
        word = reinterpret_cast<void*>(UINT_PTR{0xDEADDEADDEADDEAD});
    }
}

ListHost::~ListHost()
{
    DestroyWindow(m_window);
}

HWND ListHost::addControl(int id, const wchar_t* controlClass, DWORD style)
{
    return makeWindow(controlClass, WS_CHILD | style, m_window, id);
}

std::vector<std::string> chainTexts(const QuotaRule* first)
{
    constexpr size_t kLongest = 100000;
    std::vector<std::string> texts;
    const QuotaRule* before = nullptr;
    for (const QuotaRule* rule = first; rule != nullptr && texts.size() < kLongest; rule = rule->next) {
        std::string text = rule->sid == nullptr ? "Anyone" : describe(static_cast<const void*>(rule->sid));
        text += ' ' + describe(static_cast<const wchar_t*>(rule->path));
        if (rule->prev != before) {
            text += " (the link back is wrong)";
        }
        texts.push_back(std::move(text));
        before = rule;
    }
    return texts;
}
