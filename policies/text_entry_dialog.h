// The entry dialog of a list whose entries are typed as one text.
#pragma once

#include "frame/dialog.h"
#include "store/owned.h"

/// Base of these dialogs; all of them have the edit IDC_ENTRY_TEXT.
class TextEntryDialog : public Dialog {
public:
    /// Shows the dialog modally.
    /// @param text  text to start with, null for none.
    /// @return whether OK ended it: then takeText gives what was typed.
    bool ask(HWND owner, const wchar_t* text);

    /// The text that OK took, empty when nothing was typed; null without OK. The next call has nothing more.
    CBlock<wchar_t> takeText() { return std::move(m_taken); }

    /// What showing the dialog came to: 0 after Cancel, -1 when it could not be shown.
    INT_PTR endCode() const { return m_endCode; }

protected:
    TextEntryDialog(int templateId, const CrashSite& site)
        : Dialog(&site)
        , m_templateId(templateId)
    {
    }

    void setText(const wchar_t* text) const;

    void onInit() override;
    void onOk() override;
    bool onCommand(int id) override
    {
        onButton(id);
        return true;
    }

    /// A button beside OK and Cancel, or any other command.
    virtual void onButton(int id) = 0;

    /// The part of the typed text that OK takes.
    virtual const wchar_t* taken(const wchar_t* typed) const { return typed; }

private:
    int m_templateId;
    const wchar_t* m_initial = nullptr;
    CBlock<wchar_t> m_taken;
    INT_PTR m_endCode = 0;
};
