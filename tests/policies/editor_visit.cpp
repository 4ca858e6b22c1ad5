#include "tests/policies/editor_visit.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <algorithm>

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

EditorVisit& EditorVisit::rows(std::vector<std::string> expected)
{
    return list(
        [expected = std::move(expected)](HWND, const ListView& list) { EXPECT_EQ(list.rows(), expected); });
}

EditorVisit& EditorVisit::data(std::vector<LPARAM> expected)
{
    return list([expected = std::move(expected)](HWND, const ListView& list) {
        EXPECT_EQ(list.allData(), expected);
    });
}

EditorVisit& EditorVisit::calls(std::vector<std::string> expected)
{
    return list(
        [this, expected = std::move(expected)](HWND, const ListView&) { EXPECT_EQ(takeCalls(), expected); });
}

EditorVisit& EditorVisit::forget()
{
    return list([this](HWND, const ListView&) { m_store.takeCalls(); });
}

std::vector<std::string> EditorVisit::takeCalls()
{
    std::vector<std::string> calls = m_store.takeCalls();
    std::erase_if(calls, [this](const std::string& call) {
        return !heeded.empty() &&
               std::none_of(heeded.begin(), heeded.end(), [&call](const std::string& part) {
                   return call.find(part) != std::string::npos;
               });
    });
    return calls;
}

EditorVisit& EditorVisit::inDialog(std::string caption, OnEntry act)
{
    script.onDialog("in " + caption, [caption, act = std::move(act)](HWND dialog) {
        EXPECT_EQ(windowText(dialog), caption);
        EXPECT_NE(GetWindow(dialog, GW_OWNER), nullptr) << "the list could be used behind it";
        act(dialog);
    });
    return *this;
}

EditorVisit& EditorVisit::entry(OnEntry act)
{
    return inDialog(m_entry, std::move(act));
}

EditorVisit& EditorVisit::shows(std::string text)
{
    return entry(
        [text = std::move(text)](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), text); });
}

EditorVisit& EditorVisit::showsAccount(std::string text)
{
    return entry(
        [text = std::move(text)](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), text); });
}

EditorVisit& EditorVisit::enter(std::wstring text)
{
    return entry([text = std::move(text)](HWND entry) {
        type(entry, IDC_ENTRY_TEXT, text.c_str());
        clickLater(entry, IDOK);
    });
}

EditorVisit& EditorVisit::leaveEntries()
{
    const auto typeUnwanted = [](HWND entry) {
        type(entry, IDC_ENTRY_TEXT, L"unwanted");
    };
    return add().entry(typeUnwanted).press(IDCANCEL).calls({}).edit(0).entry([typeUnwanted](HWND entry) {
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
    return inDialog("Choose subject", [name = std::move(name)](HWND chooser) {
        click(chooser, IDC_CHOOSER_TYPE);
        type(chooser, IDC_CHOOSER_NAME, name.c_str());
        clickLater(chooser, IDOK);
    });
}

EditorVisit& EditorVisit::chooseNobody()
{
    return inDialog("Choose subject", [](HWND chooser) { clickLater(chooser, IDCANCEL); });
}

intptr_t EditorVisit::run()
{
    return script.run([this] { return m_open(nullptr); });
}

void EditorVisit::ok()
{
    press(IDOK);
    EXPECT_EQ(run(), 0);
}

void EditorVisit::cancel()
{
    press(IDCANCEL);
    EXPECT_EQ(run(), 0);
}
