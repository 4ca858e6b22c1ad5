// The modal dialogs of this library: opening, the procedure under its crash guard, the answers.
#pragma once

#include "frame/crash_guard.h"
#include "frame/platform.h"

/// What a handler gives back for a message.
struct Reply {
    bool handled = false;
    LRESULT value = 0; ///< the message's result, where it was handled

    static Reply with(LRESULT value) { return {true, value}; }
};

/// A modal dialog on the caller's thread. A dialog of the library derives from this, keeps its whole state in its
/// members and is made where it is opened: several may be open at once, and as the object lives outside of the guarded
/// procedure, a fault in a handler leaks nothing of it.
class Dialog {
public:
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

protected:
    /// @param site  names the dialog in the line that tells of a caught fault; null for no line.
    explicit Dialog(const CrashSite* site)
        : m_site(site)
    {
    }
    virtual ~Dialog() = default;

    /// Shows a dialog template of this library until the dialog is ended or destroyed.
    ///
    /// The template is looked up in the module that is loaded as "corvane"; under any other name none is found.
    /// @param templateId  number of the template.
    /// @param owner       owner window, may be null.
    /// @param parameter   lParam of WM_INITDIALOG, for those who watch the dialog from outside.
    /// @return the end code, -1 when the dialog could not be created. Of an end code only the low 32 bits count, and
    ///         some systems extend them by their sign: a result that is wider is read from the dialog's members.
    INT_PTR run(int templateId, HWND owner, LPARAM parameter = 0);

    /// The dialog's window, from onInit until it is gone.
    HWND window() const { return m_window; }

    /// Ends the dialog; run then returns the code.
    void end(INT_PTR code) const { EndDialog(m_window, code); }

    /// Fills the controls; the platform then gives the keyboard to the first one.
    virtual void onInit() = 0;

    virtual void onOk() = 0;
    virtual void onCancel() { end(0); }

    /// @param id  of a control other than OK and Cancel, whatever it notifies of.
    /// @return whether the command was one of the dialog's.
    virtual bool onCommand(int /*id*/) { return false; }

    virtual Reply onNotify(NMHDR& /*header*/) { return {}; }

    /// The close box. The platform presses Cancel for it, but not every one while Cancel is disabled.
    /// @return whether the dialog has answered it itself.
    virtual bool onClose() { return false; }

    virtual void onDestroy() {}

    /// Tells of a fault that a handler raised; the dialog stays open as the handler left it.
    virtual void reportCrash() const;

private:
    static INT_PTR CALLBACK MyDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    Reply command(int id);
    Reply dispatch(UINT message, WPARAM wParam, LPARAM lParam);

    const CrashSite* m_site;
    HWND m_window = nullptr;
};
