#include "tests/policies/editor_visit.h"
#include "res/resource.h"

#include <gtest/gtest.h>

EditorVisit& EditorVisit::add()
{
    return list([this](HWND dialog, const ListView&) {
        m_store.takeCalls();
        clickLater(dialog, IDC_POLICY_ADD);
    });
}

EditorVisit& EditorVisit::edit(int row)
{
    return list([this, row](HWND dialog, const ListView& rows) {
        rows.selectOnly({row});
        m_store.takeCalls();
        // Not by the button: one of the editors has none.
        PostMessageW(dialog, WM_COMMAND, IDC_POLICY_EDIT, 0);
    });
}

EditorVisit& EditorVisit::remove(int row)
{
    return list([this, row](HWND dialog, const ListView& rows) {
        rows.selectOnly({row});
        m_store.takeCalls();
        click(dialog, IDC_POLICY_REMOVE);
    });
}

EditorVisit& EditorVisit::list(OnList act)
{
    script.onDialog("on the list", [this, act = std::move(act)](HWND dialog) {
        ASSERT_NE(GetDlgItem(dialog, m_listId), nullptr) << "\"" << windowText(dialog) << "\" is in front";
        act(dialog, ListView(dialog, m_listId));
    });
    return *this;
}

EditorVisit& EditorVisit::entry(std::string caption, OnEntry act)
{
    script.onDialog("in " + caption, [caption, act = std::move(act)](HWND dialog) {
        EXPECT_EQ(windowText(dialog), caption);
        EXPECT_NE(GetWindow(dialog, GW_OWNER), nullptr) << "the list could be used behind it";
        act(dialog);
    });
    return *this;
}

EditorVisit& EditorVisit::enter(std::string caption, std::wstring text)
{
    return entry(std::move(caption), [text = std::move(text)](HWND dialog) {
        type(dialog, IDC_ENTRY_TEXT, text.c_str());
        clickLater(dialog, IDOK);
    });
}

EditorVisit& EditorVisit::leaveEntries(std::string caption)
{
    const auto typeUnwanted = [](HWND entry) {
        type(entry, IDC_ENTRY_TEXT, L"unwanted");
    };
    return add()
        .entry(caption, typeUnwanted)
        .press(IDCANCEL)
        .list([this](HWND, const ListView&) { EXPECT_TRUE(m_store.takeCalls().empty()); })
        .edit(0)
        .entry(caption, [typeUnwanted](HWND entry) {
            typeUnwanted(entry);
            PostMessageW(entry, WM_CLOSE, 0, 0);
        });
}

EditorVisit& EditorVisit::press(int id)
{
    script.onDialog("press " + std::to_string(id), [id](HWND dialog) { clickLater(dialog, id); });
    return *this;
}

EditorVisit& EditorVisit::chooseByName(std::wstring name)
{
    return entry("Choose subject", [name = std::move(name)](HWND chooser) {
        click(chooser, IDC_CHOOSER_TYPE);
        type(chooser, IDC_CHOOSER_NAME, name.c_str());
        clickLater(chooser, IDOK);
    });
}

intptr_t EditorVisit::run(intptr_t (*open)(HWND))
{
    return script.run([open] { return open(nullptr); });
}
