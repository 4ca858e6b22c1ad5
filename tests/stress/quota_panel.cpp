#include "tests/stress/quota_panel.h"

#include "tests/stress/heap_rules.h"
#include "tests/support/faulting_call.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <iterator>
#include <utility>

namespace {

constexpr UINT_PTR kMeddling = 1;
constexpr int kDeepest = 3; // dialogs over dialogs

struct EmptyTemplate {
    DLGTEMPLATE head;
    WORD menu, windowClass, title;
};

} // namespace

QuotaPanel::QuotaPanel(RecordingStore& store, std::array<const void*, 2> accounts,
                       std::function<int(int)> below, std::function<int()> raised, bool timer)
    : m_below(std::move(below))
    , m_raised(std::move(raised))
    , m_timer(timer)
    , m_group(accounts[0])
    , m_member(accounts[1])
{
    store.answer.getRealSize = [](const wchar_t*) -> int64_t {
        return 5'000'000;
    };
    store.answer.enumerateGroupUsers = [&store, this](const wchar_t*, const wchar_t*, SidList* members) {
        return store.answer.appendToSidList(members, store.answer.sidDup(m_member));
    };
    store.answer.getQuotaList = [&store, this](const wchar_t* folder) {
        QuotaRule* first = nullptr;
        for (int i = 0; i < 3; ++i) {
            void* const sid = i == 0 ? nullptr : store.answer.sidDup(i == 1 ? m_group : m_member);
            QuotaRule* const rule = heapRule(folder, sid, 4096LL << i);
            m_stored.push_back(rule);
            rule->next = first;
            first = rule;
        }
        return first;
    };
}

QuotaPanel::~QuotaPanel()
{
    for (QuotaRule* const rule : m_stored) {
        releaseRule(rule);
    }
}

void QuotaPanel::show()
{
    EmptyTemplate page{};
    page.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE | DS_MODALFRAME;
    page.head.cx = 300;
    page.head.cy = 200;
    DialogBoxIndirectParamW(nullptr, &page.head, nullptr, procedure, reinterpret_cast<LPARAM>(this));
    m_window = nullptr;
}

INT_PTR CALLBACK QuotaPanel::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<QuotaPanel*>(lParam)->m_window = window;
    }
    auto* const panel = reinterpret_cast<QuotaPanel*>(GetWindowLongPtrW(window, DWLP_USER));
    if (panel == nullptr) {
        return FALSE;
    }
    switch (message) {
    case WM_INITDIALOG:
        panel->onInit();
        return TRUE;
    case WM_COMMAND:
        return panel->onCommand(LOWORD(wParam)) ? TRUE : FALSE;
    case WM_NOTIFY:
        SetWindowLongPtrW(window, DWLP_MSGRESULT, panel->onNotify(*reinterpret_cast<NMHDR*>(lParam)));
        return TRUE;
    case WM_TIMER:
        panel->onTimer();
        return TRUE;
    default:
        return FALSE;
    }
}

void QuotaPanel::onInit()
{
    SetWindowTextW(m_window, L"Quota page");
    const auto make = [this](const wchar_t* kind, DWORD style, int id, int x, int y, int width, int height) {
        CreateWindowExW(0, kind, L"b", WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, x, y, width, height,
                        m_window, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), nullptr, nullptr);
    };
    make(WC_LISTVIEWW, LVS_REPORT | LVS_SHOWSELALWAYS | LVS_EDITLABELS, kListId, 0, 0, 400, 200);
    for (int id = kPrepare; id <= kLast; ++id) {
        make(L"BUTTON", 0, id, (id - kPrepare) * 30, 210, 30, 20);
    }
    make(L"BUTTON", BS_DEFPUSHBUTTON, IDOK, 0, 240, 50, 20);
    make(L"BUTTON", 0, IDCANCEL, 60, 240, 50, 20);
    guarded(kPrepare);
    if (m_timer) {
        SetTimer(m_window, kMeddling, 20, nullptr);
    }
}

bool QuotaPanel::onCommand(int id)
{
    if (id == IDOK || id == IDCANCEL) {
        EndDialog(m_window, id);
        return true;
    }
    if (id < kPrepare || id > kLast) {
        return false;
    }
    guarded(id);
    return true;
}

INT_PTR QuotaPanel::onNotify(const NMHDR& header)
{
    if (header.idFrom != kListId) {
        return 0;
    }
    switch (header.code) {
    case LVN_COLUMNCLICK:
        sortListCtrl(m_window, kListId, reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
        return 0;
    case LVN_ITEMCHANGED:
        checkForButtons(m_window, kListId, kEdit, kDrop, 0);
        return 0;
    case NM_DBLCLK:
        guarded(kEdit);
        return 0;
    default:
        return hookNotify(m_window, kListId, &header);
    }
}

void QuotaPanel::onTimer()
{
    guarded(kPrepare + m_below(kLast - kPrepare + 1));
}

/// The list functions have no guard of their own: what the store throws, the host sees, and nothing else.
void QuotaPanel::guarded(int id)
{
    if (m_depth >= kDeepest) {
        return;
    }
    ++m_depth;
    const int before = m_raised();
    const DWORD fault = faultOf([&] { act(id); });
    EXPECT_TRUE(fault == 0 || m_raised() > before) << "act " << id << " raised " << fault;
    --m_depth;
}

void QuotaPanel::act(int id)
{
    switch (id) {
    case kPrepare:
        initializeListCtrl(m_window, kListId, Paths{L"C:\\a", L"C:\\b"});
        break;
    case kFill:
        fillUpListCtrl(Paths{L"C:\\b", L"C:\\c"}, m_window, kListId);
        break;
    case kAdd:
        addToListCtrl(m_window, kListId, const_cast<void*>(account()),
                      Paths{L"C:\\new" + std::to_wstring(m_below(20))});
        break;
    case kAddSeveral:
        addToListCtrl(m_window, kListId, const_cast<void*>(account()),
                      Paths{L"C:\\a", L"C:\\z" + std::to_wstring(m_below(20))});
        break;
    case kDrop:
        dropFromListCtrl(m_window, kListId);
        break;
    case kEdit:
        editFromListCtrl(m_window, kListId);
        break;
    case kSort:
        sortListCtrl(m_window, kListId, m_below(6));
        break;
    case kTakeData:
        checkChain();
        break;
    case kEditCell:
        editCell();
        break;
    case kOwnDeletion:
        if (rows() > 0) {
            ListView_DeleteItem(list(), m_below(rows()));
        }
        break;
    default:
        exchange();
        break;
    }
}

const void* QuotaPanel::account() const
{
    const int which = m_below(3);
    return which == 0 ? nullptr : which == 1 ? m_group : m_member;
}

int QuotaPanel::rows() const
{
    return ListView_GetItemCount(list());
}

/// Every row has its record, and each record stands in the chain once.
void QuotaPanel::checkChain()
{
    const QuotaRule* const first = getDataModified(m_window, kListId);
    const std::vector<std::string> chain = chainTexts(first);
    EXPECT_EQ(static_cast<int>(chain.size()), rows());
    for (const std::string& rule : chain) {
        EXPECT_EQ(rule.find("wrong"), std::string::npos) << rule;
    }
}

void QuotaPanel::editCell()
{
    static const wchar_t* const kTexts[] = {L"5K", L"3G", L"100", L"77 m", nullptr};
    if (rows() == 0) {
        return;
    }
    NMLVDISPINFOW edit{};
    edit.hdr = {list(), kListId, static_cast<UINT>(LVN_BEGINLABELEDITW)};
    edit.item.iItem = m_below(rows());
    edit.item.iSubItem = m_below(6);
    if (hookNotify(m_window, kListId, &edit.hdr) == 0) {
        edit.hdr.code = static_cast<UINT>(LVN_ENDLABELEDITW);
        edit.item.pszText = const_cast<wchar_t*>(kTexts[m_below(static_cast<int>(std::size(kTexts)))]);
        hookNotify(m_window, kListId, &edit.hdr);
    }
}

void QuotaPanel::exchange()
{
    if (rows() < 2) {
        return;
    }
    LVITEMW one{};
    LVITEMW other{};
    one.mask = other.mask = LVIF_PARAM;
    one.iItem = m_below(rows());
    other.iItem = m_below(rows());
    ListView_GetItem(list(), &one);
    ListView_GetItem(list(), &other);
    std::swap(one.lParam, other.lParam);
    ListView_SetItem(list(), &one);
    ListView_SetItem(list(), &other);
}
