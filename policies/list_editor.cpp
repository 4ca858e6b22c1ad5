#include "policies/list_editor.h"

#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/list_sort.h"
#include "frame/redraw_off.h"
#include "frame/selection_buttons.h"
#include "res/resource.h"

#include <algorithm>
#include <vector>

namespace {

/// Raised again after the rows read before a fault were shown.
struct FillInterrupted {};

// The bytes of a text by which the platform's texts are compared without regard to case.
std::string lexicalKey(const wchar_t* text)
{
    constexpr DWORD kFlags = LCMAP_SORTKEY | NORM_IGNORECASE;
    char start[256];
    // The key is made of bytes, and its size is counted in bytes.
    int size =
        LCMapStringW(LOCALE_USER_DEFAULT, kFlags, text, -1, reinterpret_cast<wchar_t*>(start), sizeof start);
    if (size > 0) {
        return {start, static_cast<std::size_t>(size)};
    }
    size = LCMapStringW(LOCALE_USER_DEFAULT, kFlags, text, -1, nullptr, 0);
    std::string key(static_cast<std::size_t>(size), '\0');
    LCMapStringW(LOCALE_USER_DEFAULT, kFlags, text, -1, reinterpret_cast<wchar_t*>(key.data()), size);
    return key;
}

struct SortableEntry : ListEntry {
    std::string key;
};

class Dialog {
public:
    Dialog(HWND window, const ListEditor& editor)
        : m_window(window)
        , m_editor(editor)
        , m_list(window, editor.listId)
    {
    }

    void onInit() const
    {
        loadHostIcons();
        for (int index = 0; const ListColumn& column : m_editor.columns) {
            m_list.insertColumn(index++, column);
        }
        m_list.addExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP |
                                LVS_EX_LABELTIP);
        m_editor.load();
        sortsByItself() ? fillSorted() : fill();
        for (const int id : kSelectionButtons) {
            enableItem(m_window, id, false);
        }
    }

    void onCommand(int id) const
    {
        switch (id) {
        case IDC_POLICY_ADD:
            add();
            break;
        case IDC_POLICY_EDIT:
            edit();
            break;
        case IDC_POLICY_REMOVE:
            remove();
            break;
        case IDOK:
            m_editor.store();
            close();
            break;
        case IDCANCEL:
            close();
            break;
        default:
            break;
        }
    }

    // Nothing but the list sends these.
    void onNotify(const NMHDR& notification) const
    {
        switch (notification.code) {
        case LVN_ITEMCHANGED:
            enableBySelection(m_window, m_list, kSelectionButtons);
            break;
        case LVN_COLUMNCLICK:
            if (const int column = reinterpret_cast<const NMLISTVIEW&>(notification).iSubItem; column >= 0) {
                sortRows(m_list, column);
            }
            break;
        case NM_DBLCLK:
            edit();
            break;
        default:
            break;
        }
    }

private:
    static constexpr int kSelectionButtons[] = {IDC_POLICY_EDIT, IDC_POLICY_REMOVE};

    // The panel's icons are asked for and not used. Kept, it is harmless: a host without them sees no difference.
    static void loadHostIcons()
    {
        const HMODULE host = GetModuleHandleW(L"quota");
        for (const int icon : {138, 139, 140}) {
            LoadIconW(host, MAKEINTRESOURCEW(icon));
        }
    }

    bool sortsByItself() const
    {
        return (GetWindowLongPtrW(m_list.handle(), GWL_STYLE) & LVS_SORTASCENDING) != 0;
    }

    void insert(int row, std::uint32_t index, const wchar_t* text) const
    {
        const int inserted = m_list.insertRow(row, text, static_cast<LPARAM>(index));
        if (m_editor.render != nullptr) {
            m_editor.render(m_list, inserted, index);
        }
    }

    // Each row goes on top: the last entry of the store is shown first.
    void fill() const
    {
        withRedrawOff(m_list, [&] {
            std::uint32_t index = 0;
            for (const wchar_t* text = m_editor.entry(0); text != nullptr; text = m_editor.entry(++index)) {
                insert(0, index, text);
            }
        });
    }

    // A list that sorts by itself may search for each row's place from its top. With the last text first, every
    // place is the top; the list still decides, and rows of the same text stand as if they had come in the
    // order of the store.
    void fillSorted() const
    {
        std::vector<SortableEntry> entries;
        const bool complete = runGuarded([&] {
            std::uint32_t index = 0;
            for (const wchar_t* text = m_editor.entry(0); text != nullptr; text = m_editor.entry(++index)) {
                entries.push_back({{index, text}, lexicalKey(text)});
            }
        });
        std::vector<const SortableEntry*> rows;
        rows.reserve(entries.size());
        for (const SortableEntry& entry : entries) {
            rows.push_back(&entry);
        }
        std::sort(rows.begin(), rows.end(), [](const SortableEntry* a, const SortableEntry* b) {
            const int order = a->key.compare(b->key);
            return order != 0 ? order > 0 : a->index < b->index;
        });
        withRedrawOff(m_list, [&] {
            for (const SortableEntry* row : rows) {
                insert(0, row->index, row->text.c_str());
            }
        });
        if (!complete) {
            throw FillInterrupted{};
        }
    }

    std::uint32_t indexOf(int row) const { return static_cast<std::uint32_t>(m_list.data(row)); }

    void add() const
    {
        if (const std::optional<ListEntry> added = m_editor.add(m_window)) {
            insert(0, added->index, added->text.c_str());
        }
    }

    void edit() const
    {
        const int row = m_list.nextSelected();
        if (row < 0) {
            return;
        }
        const std::uint32_t index = indexOf(row);
        if (const std::optional<std::wstring> text = m_editor.edit(m_window, index)) {
            m_list.deleteRow(row);
            insert(row, index, text->c_str());
            rescueKeyboard(m_window, m_list.handle());
        }
    }

    // The other rows keep their indexes. Kept: the store does not renumber what it has in memory.
    void remove() const
    {
        const int row = m_list.nextSelected();
        if (row < 0) {
            return;
        }
        const std::uint32_t index = indexOf(row);
        m_list.deleteRow(row);
        m_editor.remove(index);
        rescueKeyboard(m_window, m_list.handle()); // the button is disabled with the selection
    }

    void close() const
    {
        m_editor.free();
        EndDialog(m_window, 0);
    }

    HWND m_window;
    const ListEditor& m_editor;
    DialogList m_list;
};

INT_PTR answer(HWND window, const ListEditor& editor, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Dialog(window, editor).onInit();
        return TRUE;
    case WM_COMMAND:
        Dialog(window, editor).onCommand(LOWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        // Filling a list sends a notification for each row: those of no interest must cost nothing.
        if (const auto& notification = *reinterpret_cast<const NMHDR*>(lParam);
            notification.code == LVN_ITEMCHANGED || notification.code == LVN_COLUMNCLICK ||
            notification.code == static_cast<UINT>(NM_DBLCLK))
        {
            Dialog(window, editor).onNotify(notification);
            return TRUE;
        }
        return FALSE;
    case WM_DESTROY:
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK MyDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, GWLP_USERDATA, lParam);
    }
    const auto* editor = reinterpret_cast<const ListEditor*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (editor == nullptr) {
        return FALSE; // what comes before WM_INITDIALOG
    }
    return guardProcedure(editor->site, [&] { return answer(window, *editor, message, wParam, lParam); });
}

} // namespace

INT_PTR openListEditor(const ListEditor& editor, HWND owner)
{
    return openDialog(editor.templateId, owner, MyDlgProc, reinterpret_cast<LPARAM>(&editor));
}
