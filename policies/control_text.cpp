#include "policies/control_text.h"

namespace {
wchar_t buffer[kControlTextCapacity];
}

const wchar_t* controlText(HWND dialog, int id)
{
    if (GetDlgItemTextW(dialog, id, buffer, kControlTextCapacity) == 0) {
        buffer[0] = L'\0';
    }
    return buffer;
}

void limitTyping(HWND dialog, int id)
{
    SendDlgItemMessageW(dialog, id, EM_SETLIMITTEXT, kControlTextCapacity - 1, 0);
}

void forgetControlText()
{
    SecureZeroMemory(buffer, sizeof buffer);
}
