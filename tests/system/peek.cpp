// Tells a script what stands in the windows of another program, and where: the script then clicks and types
// with the real mouse and keyboard.
//
//   peek windows                        the titles of all visible top-level windows
//   peek text TITLE ID                  the text of a control
//   peek enabled TITLE ID               yes or no
//   peek list TITLE ID                  the cells of a list view, tab-separated, a row a line
//   peek chosen TITLE ID                the selected rows of a list view, or entries of a list box, by number
//   peek entries TITLE ID               the texts of a list box
//   peek parts TITLE ID                 the parts of a status bar, a line each
//   peek focus TITLE                    id of the control that has the focus; "cell" for an edit inside a
//   list view peek window TITLE                   left, top, width and height of a window on the screen peek
//   point TITLE ID                 the middle of a control on the screen: x y peek cell TITLE ID ROW COLUMN
//   the middle of a cell of a list view peek header TITLE ID COLUMN         the middle of a column heading
//   peek entry TITLE ID NUMBER          a place on an entry of a list box
//
// TITLE is how the title of a visible top-level window begins. Ends with 1 when there is no such window,
// control or row, with 2 when the call is wrong.
#include <windows.h>

#include <commctrl.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

struct Missing {
    std::string what;
};

std::string utf8(const std::wstring& text)
{
    const int room = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string bytes(static_cast<size_t>(room), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(), room, nullptr,
                        nullptr);
    return bytes;
}

void print(const std::wstring& text)
{
    std::printf("%s\n", utf8(text).c_str());
}

LRESULT send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    // Bounded: a program that hangs must not hang the script as well.
    constexpr UINT kPatience = 5000;
    DWORD_PTR result = 0;
    if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kPatience, &result) == 0) {
        throw Missing{"an answer of the window"};
    }
    return static_cast<LRESULT>(result);
}

std::wstring textOf(HWND window)
{
    std::wstring text(static_cast<size_t>(send(window, WM_GETTEXTLENGTH)) + 1, L'\0');
    text.resize(static_cast<size_t>(
        send(window, WM_GETTEXT, static_cast<WPARAM>(text.size()), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

/// A piece of memory of the program that owns a window: messages of the common controls carry addresses
/// there.
class RemoteBlock {
public:
    explicit RemoteBlock(HWND window)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process);
        block_ = VirtualAllocEx(process_, nullptr, kSize, MEM_COMMIT, PAGE_READWRITE);
        if (block_ == nullptr) {
            throw Missing{"the memory of the program"};
        }
    }
    ~RemoteBlock()
    {
        VirtualFreeEx(process_, block_, 0, MEM_RELEASE);
        CloseHandle(process_);
    }
    RemoteBlock(const RemoteBlock&) = delete;
    RemoteBlock& operator=(const RemoteBlock&) = delete;

    template <class T>
    void put(const T& value)
    {
        WriteProcessMemory(process_, block_, &value, sizeof value, nullptr);
    }
    template <class T>
    T get() const
    {
        T value{};
        ReadProcessMemory(process_, block_, &value, sizeof value, nullptr);
        return value;
    }

    static constexpr int kTextRoom = 1024;
    wchar_t* textAddress() const { return reinterpret_cast<wchar_t*>(static_cast<char*>(block_) + kTextAt); }
    std::wstring text() const
    {
        wchar_t buffer[kTextRoom + 1] = L"";
        ReadProcessMemory(process_, textAddress(), buffer, kTextRoom * sizeof(wchar_t), nullptr);
        return buffer;
    }
    LPARAM address() const { return reinterpret_cast<LPARAM>(block_); }

private:
    static constexpr size_t kSize = 4096;
    static constexpr size_t kTextAt = 1024;
    HANDLE process_ = nullptr;
    void* block_ = nullptr;
};

BOOL CALLBACK collect(HWND window, LPARAM all)
{
    if (IsWindowVisible(window)) {
        reinterpret_cast<std::vector<HWND>*>(all)->push_back(window);
    }
    return TRUE;
}

std::vector<HWND> visibleWindows()
{
    std::vector<HWND> windows;
    EnumWindows(collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

/// Empty for a window that has just gone.
std::wstring titleOf(HWND window)
{
    try {
        return textOf(window);
    } catch (const Missing&) {
        return {};
    }
}

HWND findWindow(const std::wstring& title)
{
    for (const HWND window : visibleWindows()) {
        if (titleOf(window).starts_with(title)) {
            return window;
        }
    }
    throw Missing{"a window \"" + utf8(title) + "\""};
}

HWND findControl(const std::wstring& title, int id)
{
    const HWND control = GetDlgItem(findWindow(title), id);
    if (control == nullptr) {
        throw Missing{"control " + std::to_string(id) + " of \"" + utf8(title) + "\""};
    }
    return control;
}

bool isListView(HWND control)
{
    wchar_t name[64] = L"";
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return lstrcmpiW(name, WC_LISTVIEWW) == 0;
}

std::wstring cell(HWND list, const RemoteBlock& block, RemoteBlock& request, int row, int column)
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = block.textAddress();
    item.cchTextMax = RemoteBlock::kTextRoom;
    request.put(item);
    send(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), request.address());
    return request.text();
}

void printList(HWND list)
{
    RemoteBlock block(list);
    const auto header = reinterpret_cast<HWND>(send(list, LVM_GETHEADER));
    const auto columns = static_cast<int>(send(header, HDM_GETITEMCOUNT));
    const auto rows = static_cast<int>(send(list, LVM_GETITEMCOUNT));
    for (int row = 0; row < rows; ++row) {
        std::wstring line;
        for (int column = 0; column < columns; ++column) {
            line += column == 0 ? L"" : L"\t";
            line += cell(list, block, block, row, column);
        }
        print(line);
    }
}

void printChosen(HWND control)
{
    if (isListView(control)) {
        for (LRESULT row = -1;
             (row = send(control, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) != -1;)
        {
            std::printf("%d\n", static_cast<int>(row));
        }
        return;
    }
    const LRESULT count = send(control, LB_GETCOUNT);
    for (LRESULT entry = 0; entry < count; ++entry) {
        if (send(control, LB_GETSEL, static_cast<WPARAM>(entry)) > 0) {
            std::printf("%d\n", static_cast<int>(entry));
        }
    }
}

void printEntries(HWND box)
{
    const LRESULT count = send(box, LB_GETCOUNT);
    for (LRESULT entry = 0; entry < count; ++entry) {
        std::wstring text(static_cast<size_t>(send(box, LB_GETTEXTLEN, static_cast<WPARAM>(entry))) + 1,
                          L'\0');
        send(box, LB_GETTEXT, static_cast<WPARAM>(entry), reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        print(text);
    }
}

void printParts(HWND bar)
{
    const RemoteBlock block(bar);
    const LRESULT parts = send(bar, SB_GETPARTS);
    for (LRESULT part = 0; part < parts; ++part) {
        send(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(block.textAddress()));
        print(block.text());
    }
}

void printFocus(HWND window)
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    const HWND front = GetForegroundWindow();
    if (front != window || !GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) ||
        info.hwndFocus == nullptr)
    {
        throw Missing{"the focus in this window"};
    }
    if (isListView(GetParent(info.hwndFocus))) {
        std::printf("cell\n");
    } else {
        std::printf("%d\n", GetDlgCtrlID(info.hwndFocus));
    }
}

void printMiddle(HWND window, RECT area)
{
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    std::printf("%ld %ld\n", (area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

void printCell(HWND list, int row, int column)
{
    RemoteBlock block(list);
    RECT request{};
    request.left = column == 0 ? LVIR_LABEL : LVIR_BOUNDS;
    request.top = column;
    block.put(request);
    const UINT message = column == 0 ? LVM_GETITEMRECT : LVM_GETSUBITEMRECT;
    if (send(list, message, static_cast<WPARAM>(row), block.address()) == 0) {
        throw Missing{"row " + std::to_string(row)};
    }
    printMiddle(list, block.get<RECT>());
}

void printHeader(HWND list, int column)
{
    const auto header = reinterpret_cast<HWND>(send(list, LVM_GETHEADER));
    const RemoteBlock block(header);
    if (send(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), block.address()) == 0) {
        throw Missing{"column " + std::to_string(column)};
    }
    printMiddle(header, block.get<RECT>());
}

void printEntry(HWND box, int entry)
{
    // The system itself carries the pointers of list box messages from one program to the other.
    RECT area{};
    if (send(box, LB_GETITEMRECT, static_cast<WPARAM>(entry), reinterpret_cast<LPARAM>(&area)) == LB_ERR) {
        throw Missing{"entry " + std::to_string(entry)};
    }
    printMiddle(box, area);
}

void printExtent()
{
    RECT all{};
    for (const HWND window : visibleWindows()) {
        RECT area{};
        GetWindowRect(window, &area);
        UnionRect(&all, &all, &area);
    }
    std::printf("%ld %ld %ld %ld\n", all.left, all.top, all.right - all.left, all.bottom - all.top);
}

bool look(const std::vector<std::wstring>& words)
{
    const auto is = [&words](const wchar_t* what, size_t count) {
        return words[0] == what && words.size() == count;
    };
    const auto number = [&words](size_t at) {
        return std::stoi(words[at]);
    };
    if (is(L"windows", 1)) {
        for (const HWND window : visibleWindows()) {
            print(titleOf(window));
        }
    } else if (is(L"focus", 2)) {
        printFocus(findWindow(words[1]));
    } else if (is(L"extent", 1)) {
        printExtent();
    } else if (words.size() < 3) {
        return false;
    } else if (is(L"text", 3)) {
        print(textOf(findControl(words[1], number(2))));
    } else if (is(L"enabled", 3)) {
        std::printf("%s\n", IsWindowEnabled(findControl(words[1], number(2))) ? "yes" : "no");
    } else if (is(L"list", 3)) {
        printList(findControl(words[1], number(2)));
    } else if (is(L"chosen", 3)) {
        printChosen(findControl(words[1], number(2)));
    } else if (is(L"entries", 3)) {
        printEntries(findControl(words[1], number(2)));
    } else if (is(L"parts", 3)) {
        printParts(findControl(words[1], number(2)));
    } else if (is(L"point", 3)) {
        const HWND control = findControl(words[1], number(2));
        RECT area{};
        GetClientRect(control, &area);
        printMiddle(control, area);
    } else if (is(L"cell", 5)) {
        printCell(findControl(words[1], number(2)), number(3), number(4));
    } else if (is(L"header", 4)) {
        printHeader(findControl(words[1], number(2)), number(3));
    } else if (is(L"entry", 4)) {
        printEntry(findControl(words[1], number(2)), number(3));
    } else {
        return false;
    }
    return true;
}

} // namespace

int wmain(int count, wchar_t** words)
{
    try {
        if (count > 1 && look({words + 1, words + count})) {
            return 0;
        }
        std::fprintf(stderr, "peek: not a request; see the top of peek.cpp\n");
        return 2;
    } catch (const Missing& missing) {
        std::fprintf(stderr, "peek: there is no %s\n", missing.what.c_str());
        return 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "peek: %s\n", error.what());
        return 2;
    }
}
