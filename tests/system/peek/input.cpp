#include "input.h"

#include "window.h"

#include <windows.h>

#include <map>
#include <stdexcept>

namespace peek {
namespace {

constexpr DWORD kPlace = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;

void sendAll(std::vector<INPUT> events)
{
    const auto count = static_cast<UINT>(events.size());
    if (SendInput(count, events.data(), sizeof(INPUT)) != count) {
        throw Missing{"room for more input"};
    }
}

INPUT keyEvent(WORD key, bool down)
{
    // The keys between the letters and the digit block, which the digit block has as well.
    const bool isExtended = (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_INSERT || key == VK_DELETE;
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki.wVk = key;
    event.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    event.ki.dwFlags = (down ? 0 : KEYEVENTF_KEYUP) | (isExtended ? KEYEVENTF_EXTENDEDKEY : 0);
    return event;
}

WORD keyCalled(const std::wstring& name)
{
    static const std::map<std::wstring, WORD> keys{
        {L"alt", VK_MENU},      {L"ctrl", VK_CONTROL},  {L"shift", VK_SHIFT}, {L"Return", VK_RETURN},
        {L"Escape", VK_ESCAPE}, {L"Tab", VK_TAB},       {L"space", VK_SPACE}, {L"Home", VK_HOME},
        {L"End", VK_END},       {L"Left", VK_LEFT},     {L"Right", VK_RIGHT}, {L"Up", VK_UP},
        {L"Down", VK_DOWN},     {L"Delete", VK_DELETE}, {L"F1", VK_F1},       {L"F2", VK_F2},
        {L"F4", VK_F4},         {L"F5", VK_F5}};
    const auto found = keys.find(name);
    if (found != keys.end()) {
        return found->second;
    }
    if (name.size() != 1) {
        throw std::invalid_argument("no key has this name");
    }
    const SHORT key = VkKeyScanW(name[0]);
    if (key < 0 || key > 0xff) {
        throw std::invalid_argument("the keyboard has no key for this letter alone");
    }
    return static_cast<WORD>(key);
}

/// The place goes with each event: whatever else moves the pointer meanwhile does not lead it astray.
INPUT mouseEvent(int x, int y, DWORD what, DWORD data = 0)
{
    constexpr int kWhole = 65536;
    const auto share = [](int place, int metric) {
        const int size = GetSystemMetrics(metric);
        return (place * kWhole + size - 1) / size;
    };
    INPUT event{};
    event.type = INPUT_MOUSE;
    event.mi.dx = share(x, SM_CXSCREEN);
    event.mi.dy = share(y, SM_CYSCREEN);
    event.mi.dwFlags = kPlace | what;
    event.mi.mouseData = data;
    return event;
}

/// Returns once the program in front has been through its message loop, and has so taken what came before.
void letInFrontRun()
{
    for (int time = 0; time < 2; ++time) {
        send(GetForegroundWindow(), WM_NULL);
    }
}

/// Holds Ctrl down. News of the focus that a program has not looked at yet make the display take back a key that its own
/// keyboard does not hold; it is pressed until it stays.
void holdCtrl()
{
    constexpr int kTimes = 100;
    constexpr int kLooks = 3;
    for (int time = 0, stayed = 0; time < kTimes; ++time) {
        if ((GetAsyncKeyState(VK_CONTROL) & 0x8000) == 0) {
            sendAll({keyEvent(VK_CONTROL, true)});
            stayed = 0;
        } else if (++stayed == kLooks) {
            return;
        }
        letInFrontRun();
    }
    throw Missing{"Ctrl that stays down"};
}

} // namespace

void pressKey(const std::wstring& chord)
{
    std::vector<INPUT> events;
    size_t from = 0;
    for (size_t plus = 0; (plus = chord.find(L'+', from)) != chord.npos; from = plus + 1) {
        events.push_back(keyEvent(keyCalled(chord.substr(from, plus - from)), true));
    }
    events.push_back(keyEvent(keyCalled(chord.substr(from)), true));
    for (size_t down = events.size(); down-- > 0;) {
        events.push_back(keyEvent(events[down].ki.wVk, false));
    }
    sendAll(events);
}

void typeText(const std::wstring& text)
{
    // Not by keys: the display takes back a Shift that its own keyboard does not hold, whenever the focus moves.
    std::vector<INPUT> events;
    for (const wchar_t letter : text) {
        INPUT event{};
        event.type = INPUT_KEYBOARD;
        event.ki.wScan = letter;
        event.ki.dwFlags = KEYEVENTF_UNICODE;
        events.push_back(event);
        event.ki.dwFlags |= KEYEVENTF_KEYUP;
        events.push_back(event);
    }
    sendAll(events);
}

void clickAt(int x, int y, int times, bool withCtrl)
{
    std::vector<INPUT> events{mouseEvent(x, y, 0)};
    for (int time = 0; time < times; ++time) {
        events.push_back(mouseEvent(x, y, MOUSEEVENTF_LEFTDOWN));
        events.push_back(mouseEvent(x, y, MOUSEEVENTF_LEFTUP));
    }
    if (withCtrl) {
        holdCtrl();
    }
    sendAll(events);
    if (withCtrl) {
        letInFrontRun();
        sendAll({keyEvent(VK_CONTROL, false)});
    }
}

void dragFrame(int x, int y, int byX, int byY)
{
    sendAll({mouseEvent(x, y, 0), mouseEvent(x, y, MOUSEEVENTF_LEFTDOWN)});
    // The window looks where the pointer is when it begins to follow it.
    const auto follows = [] {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        return GetGUIThreadInfo(0, &info) && (info.flags & GUI_INMOVESIZE) != 0;
    };
    constexpr ULONGLONG kPatience = 20000;
    const ULONGLONG deadline = GetTickCount64() + kPatience;
    while (!follows() && GetTickCount64() < deadline) {
        Sleep(1);
    }
    const bool followed = follows();
    sendAll({mouseEvent(x + byX, y + byY, 0), mouseEvent(x + byX, y + byY, MOUSEEVENTF_LEFTUP)});
    if (!followed) {
        throw Missing{"window that follows the mouse"};
    }
}

void turnWheel(int x, int y, int notches)
{
    const std::vector<INPUT> events(static_cast<size_t>(notches),
                                    mouseEvent(x, y, MOUSEEVENTF_WHEEL, static_cast<DWORD>(-WHEEL_DELTA)));
    sendAll(events);
}

} // namespace peek
