// A window to open dialogs over.
#pragma once

#include "tests/support/dialog_script.h"
#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <windows.h>

class OwnerWindow {
public:
    OwnerWindow() = default;
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    ~OwnerWindow() { DestroyWindow(m_window); }

    HWND window() const { return m_window; }

private:
    HWND m_window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
};

/// Fails the test unless the dialog that a call opens stands over the window that it is given. A button ends it.
inline void expectStandsOverItsOwner(const std::function<void(HWND owner)>& open, int button = IDCANCEL)
{
    const OwnerWindow owner;
    DialogScript script;
    script.onDialog("look", [&](HWND dialog) {
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner.window());
        clickLater(dialog, button);
    });
    script.run([&] { open(owner.window()); });
}
