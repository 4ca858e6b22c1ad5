#include "tests/policies/editor_visit.h"

#include <gtest/gtest.h>

EditorVisit& EditorVisit::add()
{
    return list([this](HWND dialog, const ListInDialog&) {
        m_store.recording.takeCalls();
        clickLater(dialog, ids::kAdd);
    });
}

EditorVisit& EditorVisit::edit(int row)
{
    return list([this, row](HWND dialog, const ListInDialog& rows) {
        rows.selectOnly(row);
        m_store.recording.takeCalls();
        // Not by the button: one of the editors has none.
        PostMessageW(dialog, WM_COMMAND, ids::kEdit, 0);
    });
}

EditorVisit& EditorVisit::remove(int row)
{
    return list([this, row](HWND dialog, const ListInDialog& rows) {
        rows.selectOnly(row);
        m_store.recording.takeCalls();
        click(dialog, ids::kRemove);
    });
}

EditorVisit& EditorVisit::list(OnList act)
{
    script.onDialog("on the list", [this, act = std::move(act)](HWND dialog) {
        ASSERT_NE(GetDlgItem(dialog, m_listId), nullptr) << "\"" << windowText(dialog) << "\" is in front";
        act(dialog, ListInDialog(dialog, m_listId));
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
        type(dialog, ids::kText, text.c_str());
        clickLater(dialog, IDOK);
    });
}

EditorVisit& EditorVisit::press(int id)
{
    script.onDialog("press " + std::to_string(id), [id](HWND dialog) { clickLater(dialog, id); });
    return *this;
}

EditorVisit& EditorVisit::chooseByName(std::wstring name)
{
    constexpr int kExactName = 1014;
    constexpr int kName = 1009;
    return entry("Choose subject", [name = std::move(name)](HWND chooser) {
        click(chooser, kExactName);
        type(chooser, kName, name.c_str());
        clickLater(chooser, IDOK);
    });
}

intptr_t EditorVisit::run(intptr_t (*open)(HWND))
{
    return script.run([open] { return open(nullptr); });
}
