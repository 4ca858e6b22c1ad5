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

void forgetControlText()
{
    SecureZeroMemory(buffer, sizeof buffer);
}
