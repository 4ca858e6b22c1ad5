#include "policies/list_editor.h"

#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/list_notice.h"
#include "frame/list_sort.h"
#include "frame/redraw_off.h"
#include "res/resource.h"

#include <algorithm>
#include <vector>

namespace {

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

class ListEditorDialog : public Dialog {
public:
    explicit ListEditorDialog(const ListEditor& editor)
        : Dialog(&editor.site)
        , m_editor(editor)
    {
    }

    INT_PTR show(HWND owner)
    {
        const INT_PTR code = run(m_editor.templateId, owner);
        // Destroyed from outside, by neither OK nor Cancel, it still has the store's list.
        if (m_holdsList && !runGuarded([this] { m_editor.free(); })) {
            reportCrash();
        }
        return code;
    }

private:
    void onInit() override
    {
        loadHostIcons();
        m_list.attach(GetDlgItem(window(), m_editor.listId));
        for (int index = 0; const ListColumn& column : m_editor.columns) {
            m_list.insertColumn(index++, column);
        }
        m_list.addExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP |
                                LVS_EX_LABELTIP);
        m_holdsList = true;
        m_editor.load();
        sortsByItself() ? fillSorted() : fill();
        for (const int id : kSelectionButtons) {
            enableItem(window(), id, false);
        }
    }

    // A command that somebody sends past an open entry dialog, or after the end, would take the store's list away from
    // under it, or change one that is gone.
    bool takesCommands() const { return m_holdsList && IsWindowEnabled(window()); }

    void onOk() override
    {
        if (takesCommands()) {
            m_editor.store();
            close();
        }
    }

    void onCancel() override
    {
        if (takesCommands()) {
            close();
        }
    }

    bool onCommand(int id) override
    {
        if (!takesCommands()) {
            return true;
        }
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
        default:
            break;
        }
        return true;
    }

    // Nothing but the list sends these. Filling it sends a notification for each row: those of no interest cost nothing.
    Reply onNotify(NMHDR& notification) override
    {
        switch (notification.code) {
        case LVN_ITEMCHANGED:
            if (changesSelection(notification)) {
                enableBySelection(window(), m_list, kSelectionButtons);
            }
            break;
        case LVN_COLUMNCLICK:
            if (const int column = reinterpret_cast<const NMLISTVIEW&>(notification).iSubItem; column >= 0) {
                sortRows(m_list, column);
            }
            break;
        case NM_DBLCLK:
            onCommand(IDC_POLICY_EDIT);
            break;
        case LVN_KEYDOWN:
            onKey(plainKey(notification));
            break;
        default:
            return {};
        }
        return Reply::with(0);
    }

    void onKey(int key)
    {
        switch (key) {
        case VK_INSERT:
            onCommand(IDC_POLICY_ADD);
            break;
        case VK_F2:
            onCommand(IDC_POLICY_EDIT);
            break;
        case VK_DELETE:
            onCommand(IDC_POLICY_REMOVE);
            break;
        default:
            break;
        }
    }

    static constexpr int kSelectionButtons[] = {IDC_POLICY_EDIT, IDC_POLICY_REMOVE};

    // QUIRK: the panel's icons are asked for and not used; a host without them sees no difference.
    // ListEditorTest.AsksTheHostForIconsBeforeItLoads
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

    // @return where the row stands.
    int insert(int row, std::uint32_t index, const wchar_t* text) const
    {
        const int inserted = m_list.insertRow(row, text, static_cast<LPARAM>(index));
        if (m_editor.render != nullptr) {
            m_editor.render(m_list, inserted, index);
        }
        return inserted;
    }

    // An entry that was added or changed, ready for the next command.
    void present(int row, std::uint32_t index, const std::wstring& text) const
    {
        unwinding([&] { m_list.selectOnly(insert(row, index, text.c_str())); });
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
            throw Interrupted{};
        }
    }

    std::uint32_t indexOf(int row) const { return static_cast<std::uint32_t>(m_list.data(row)); }

    void add() const
    {
        if (const std::optional<ListEntry> added = m_editor.add(window())) {
            present(0, added->index, added->text);
        }
    }

    void edit() const
    {
        const int row = m_list.nextSelected();
        if (row < 0) {
            return;
        }
        const std::uint32_t index = indexOf(row);
        if (const std::optional<std::wstring> text = m_editor.edit(window(), index)) {
            m_list.deleteRow(row);
            present(row, index, *text);
            rescueKeyboard(window(), m_list.handle());
        }
    }

    // QUIRK: the other rows keep their indexes; the store does not renumber what it has in memory.
    // ListEditorTest.RemovesTheFirstSelectedRowAndLeavesTheOthersTheirIndexes
    void remove() const
    {
        const int row = m_list.nextSelected();
        if (row < 0) {
            return;
        }
        const std::uint32_t index = indexOf(row);
        m_list.deleteRow(row);
        m_editor.remove(index);
        rescueKeyboard(window(), m_list.handle()); // the button is disabled with the selection
    }

    void close()
    {
        m_editor.free();
        m_holdsList = false;
        end(0);
    }

    const ListEditor& m_editor;
    CListCtrl m_list;
    bool m_holdsList = false; ///< whether the store's list was loaded and not freed again
};

} // namespace

INT_PTR openListEditor(const ListEditor& editor, HWND owner)
{
    return ListEditorDialog(editor).show(owner);
}
