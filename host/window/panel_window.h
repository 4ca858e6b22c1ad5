// The panel's window, without what the panel is for: its template, icons, layout and status line, and the messages of
// the system, of which it tells the panel that derives from it.
#pragma once

#include "host/window/status_line.h"

#include <windows.h>

#include <memory>

namespace host {

class PanelWindow {
public:
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;

    /// Runs until the window is closed.
    void run();

protected:
    PanelWindow() = default;
    ~PanelWindow() = default;

    /// Makes the window, set up and not shown yet. @return true when it could be made.
    bool create(HINSTANCE instance);

    void show();

    /// The controls are there, and nothing is told of them yet.
    virtual void setUp() = 0;

    /// The controls are about to go.
    virtual void tearDown() = 0;

    /// A control or a menu entry tells of something. @param code  of the control; 0 for a menu entry, 1 for a key.
    virtual void command(int id, int code) = 0;

    virtual void notified(const NMHDR& header) = 0;

    /// A message of a number from WM_APP on has arrived. @return whether it is the panel's own.
    virtual bool posted(UINT message) = 0;

    /// The controls stand at new places.
    virtual void resized() = 0;

    /// A menu opens: which of its entries are possible?
    virtual void updateMenu(HMENU menu) = 0;

    /// The person wants to close the window. May ask.
    virtual bool mayClose() = 0;

    /// Whether something would be lost by the end of the session. Asks nothing.
    virtual bool hasUnsavedWork() const = 0;

    HWND window() const { return m_window; }
    HWND control(int id) const { return GetDlgItem(m_window, id); }
    StatusLine& status() { return *m_status; }

    /// A control that is disabled gives the focus away, since a disabled window gets no keys.
    void enable(int id, bool enabled);

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR handle(UINT message, WPARAM wParam, LPARAM lParam);
    void initialize();
    void layOut();
    bool hasOpenDialog();
    bool mayEndSession();

    HINSTANCE m_instance = nullptr;
    HWND m_window = nullptr;
    std::unique_ptr<StatusLine> m_status;
};

} // namespace host
