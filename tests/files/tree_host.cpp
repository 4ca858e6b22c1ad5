#include "tests/files/tree_host.h"

#include "res/resource.h"

#include <cstdio>
#include <utility>

TreeHost::TreeHost(DWORD moreStyles)
{
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    m_window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 300, 300, nullptr, nullptr,
                               nullptr, nullptr);
    SetWindowSubclass(m_window, windowProc, 1, reinterpret_cast<DWORD_PTR>(this));
    m_tree.attach(CreateWindowExW(
        0, WC_TREEVIEWW, L"",
        WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | moreStyles, 0, 0, 300, 300,
        m_window, reinterpret_cast<HMENU>(UINT_PTR{IDC_CHOOSE_FILE_TREE}), nullptr, nullptr));
    SetWindowSubclass(m_tree.handle(), treeProc, 1, reinterpret_cast<DWORD_PTR>(this));
}

TreeHost::~TreeHost()
{
    DestroyWindow(m_window);
}

LRESULT CALLBACK TreeHost::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR /*id*/, DWORD_PTR self)
{
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (message == WM_NOTIFY && header->code == TVN_ITEMEXPANDEDW) {
        reinterpret_cast<TreeHost*>(self)->m_tree.onItemExpanded(
            *reinterpret_cast<const NMTREEVIEWW*>(header));
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

LRESULT CALLBACK TreeHost::treeProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR /*id*/,
                                    DWORD_PTR self)
{
    auto& messages = reinterpret_cast<TreeHost*>(self)->m_messages;
    if (message == WM_SETREDRAW) {
        messages.push_back("redraw " + std::to_string(wParam));
    } else if (message == TVM_DELETEITEM && reinterpret_cast<HTREEITEM>(lParam) == TVI_ROOT) {
        messages.emplace_back("delete all");
    } else if (message == TVM_EXPAND) {
        char line[32];
        std::snprintf(line, sizeof line, "expand %x", static_cast<unsigned>(wParam));
        messages.emplace_back(line);
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

HTREEITEM TreeHost::child(HTREEITEM node, const std::wstring& text) const
{
    for (HTREEITEM found = m_tree.firstChild(node); found != nullptr; found = m_tree.nextSibling(found)) {
        if (m_tree.text(found) == text) {
            return found;
        }
    }
    return nullptr;
}

void TreeHost::click(HTREEITEM node)
{
    // What the platform does for a click on the button; the message itself does not tell an opened node again.
    RECT box{};
    *reinterpret_cast<HTREEITEM*>(&box) = node;
    SendMessageW(m_tree.handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(node));
    SendMessageW(m_tree.handle(), TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&box));
    // The button stands left of the icon and the text.
    const LONG y = (box.top + box.bottom) / 2;
    for (LONG x = box.left; x >= 0; --x) {
        TVHITTESTINFO hit{};
        hit.pt = {x, y};
        SendMessageW(m_tree.handle(), TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        if ((hit.flags & TVHT_ONITEMBUTTON) != 0) {
            const LPARAM place = MAKELPARAM(x, y);
            PostMessageW(m_tree.handle(), WM_LBUTTONUP, 0, place); // the control waits for it
            SendMessageW(m_tree.handle(), WM_LBUTTONDOWN, MK_LBUTTON, place);
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
            }
            return;
        }
    }
}

std::string TreeHost::images(HTREEITEM node) const
{
    TVITEMW item{};
    item.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    item.hItem = node;
    m_tree.send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return std::to_string(item.iImage) + "/" + std::to_string(item.iSelectedImage);
}

std::string TreeHost::selectedText() const
{
    const HTREEITEM node = m_tree.selected();
    return node != nullptr ? tree_nodes::textOf(m_tree.handle(), node) : std::string();
}

std::vector<std::string> TreeHost::takeMessages()
{
    return std::exchange(m_messages, {});
}
