#include "policies/text_entry_dialog.h"

#include "frame/narrow_handle.h"
#include "policies/control_text.h"
#include "res/resource.h"

#include <cwchar>

bool TextEntryDialog::ask(HWND owner, const wchar_t* text)
{
    m_initial = text;
    m_endCode = run(m_templateId, owner) == -1 ? -1 : 0; // somebody else may end it with a code of his own
    return m_taken != nullptr;
}

void TextEntryDialog::setText(const wchar_t* text) const
{
    SetDlgItemTextW(window(), IDC_ENTRY_TEXT, text);
}

void TextEntryDialog::onInit()
{
    if (m_initial != nullptr) {
        setText(m_initial);
    }
    limitTyping(window(), IDC_ENTRY_TEXT);
}

void TextEntryDialog::onOk()
{
    m_taken.reset(_wcsdup(taken(controlText(window(), IDC_ENTRY_TEXT))));
    if (!m_taken) {
        return; // memory is short: what was typed stays in the dialog
    }
    // The address, as 32 bits hold it: whoever watches the dialog from outside gets this one.
    end(NarrowHandle::of(m_taken.get()).carrier());
}
