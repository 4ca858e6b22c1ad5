#include "bench/support/opening.h"

#include "tests/support/library_template.h"

namespace {

struct Opening {
    int listId;
    const std::function<void(HWND)>& look;
    Time ready{};
};
Opening* current = nullptr;

void CALLBACK whenIdle(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dialog = GetActiveWindow();
    HWND list = dialog != nullptr ? GetDlgItem(dialog, current->listId) : nullptr;
    if (list == nullptr) {
        return;
    }
    if (current->look) {
        current->look(list);
    }
    SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

INT_PTR CALLBACK bareProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        (*reinterpret_cast<const std::function<void(HWND)>*>(lParam))(dialog);
        dialogReady();
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
        return TRUE;
    }
    return FALSE;
}

} // namespace

Time timedOpening(const std::function<void()>& open, int listId, const std::function<void(HWND list)>& look)
{
    Opening opening{listId, look};
    current = &opening;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, whenIdle);
    const Time start = now();
    open();
    KillTimer(nullptr, timer);
    current = nullptr;
    return opening.ready - start;
}

void dialogReady()
{
    if (current != nullptr) { // a dialog may also be a part of something else
        current->ready = now();
    }
}

void openBareDialog(int templateId, const std::function<void(HWND dialog)>& start)
{
    DialogBoxIndirectParamW(nullptr, libraryTemplate(templateId), nullptr, bareProcedure,
                            reinterpret_cast<LPARAM>(&start));
}
