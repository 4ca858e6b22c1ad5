// The chooser as it opens, and with a typed name, from a person's view.
#include "tests/accounts/chooser_test.h"
#include "tests/support/hidden_dialog.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

constexpr char kWarningText[] = "The user/group name you typed is unavaliable. Pleaase check your spelling "
                                "or clean name you typed and try "
                                "search it from Active Directory tree.";

std::string computerName()
{
    wchar_t name[256] = L"";
    DWORD capacity = 256;
    GetComputerNameW(name, &capacity);
    return utf8(name);
}

} // namespace

// ---- opening ----

TEST_F(ChooserTest, ProposesTheComputerAsSearchBaseWithoutADomain)
{
    lookAndCancel([](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), computerName()); });
    EXPECT_THAT(store.calls(),
                ElementsAre("getDomainSid", "ODS Domain sid=" + pointerText(nullptr) + "\n",
                            "ODS got R1=" + pointerText(nullptr) + " " + pointerText(nullptr) + "\n"));
}

TEST_F(ChooserTest, ProposesTheDomainServerInADomain)
{
    void* domain = nullptr;
    store.answer.getDomainSid = [&] {
        return domain = sidDup(m_alice);
    };
    store.answer.getDomainServer = [] {
        return _wcsdup(L"\\\\DC1");
    };
    lookAndCancel([](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), "WinNT://\\\\DC1"); });
    EXPECT_THAT(store.lines(), Contains("Domain sid=" + pointerText(domain) + "\n"));
    EXPECT_THAT(store.calls(), Contains("getDomainServer"));
}

TEST_F(ChooserTest, ADomainWithoutAServerShowsWhatTheFormatterWrites)
{
    store.answer.getDomainSid = [&] {
        return sidDup(m_alice);
    };
    lookAndCancel([](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), "WinNT://(null)"); });
}

TEST_F(ChooserTest, TheSecondExportSaysSo)
{
    SidList* const owners = RecordingStore::makeSidList({m_alice});
    cancel();
    EXPECT_EQ(choose(owners), nullptr);
    EXPECT_EQ(store.lines().back(), "got R2=" + pointerText(nullptr) + " " + pointerText(nullptr) + "\n");
    EXPECT_EQ(owners->count, 1);
    freeSidList(owners);
}

TEST_F(ChooserTest, ADialogThatCannotBeShownGivesTheLastResultAgain)
{
    typeName(L"alice");
    void* const chosen = choose();
    ASSERT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice");
    {
        const HiddenDialog all;
        EXPECT_EQ(chooseSidFromUserInput(nullptr), chosen);
        EXPECT_EQ(store.lines().back(),
                  "got R1=" + pointerText(reinterpret_cast<void*>(-1)) + " " + pointerText(chosen) + "\n");
        EXPECT_EQ(chooseSidFromUserInput2(nullptr, nullptr), chosen);
    }
    std::free(chosen);
}

TEST_F(ChooserTest, StartsInTheListModeWithNothingChecked)
{
    lookAndCancel([](HWND dialog) {
        EXPECT_TRUE(isChecked(dialog, IDC_CHOOSER_SEARCH));
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_TYPE));
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_CUSTOM_BASE));
        expectEnabled(dialog, {IDC_CHOOSER_SEARCH, IDC_CHOOSER_CUSTOM_BASE, IDC_CHOOSER_LIST,
                               IDC_CHOOSER_TYPE, IDOK, IDCANCEL});
        expectEnabled(dialog, {IDC_CHOOSER_BASE, IDC_CHOOSER_NAME}, false);
        EXPECT_EQ(GetDlgCtrlID(focusOf(dialog)), IDC_CHOOSER_SEARCH);
        EXPECT_EQ(list(dialog).rowCount(), 0);
        EXPECT_EQ(windowText(dialog), "Choose subject");
        EXPECT_EQ(controlText(dialog, IDOK), "Search...");
        EXPECT_EQ(controlText(dialog, IDCANCEL), "Cancel");
    });
}

TEST_F(ChooserTest, TheListHoldsItsColumnsWithoutScrollingSideways)
{
    giveUsers({"DOM\\ann"});
    searchServer();
    lookAndCancel([](HWND dialog) {
        RECT client;
        GetClientRect(list(dialog), &client);
        EXPECT_GE(client.right, 200 + 200 + 50);
    });
}

// ---- modes ----

TEST_F(ChooserTest, TheSearchBaseIsTypedOnlyWhenCustomized)
{
    lookAndCancel([](HWND dialog) {
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE));
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_BASE));
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE));
    });
}

TEST_F(ChooserTest, TypingANameDisablesTheSearchAndBack)
{
    lookAndCancel([](HWND dialog) {
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        click(dialog, IDC_CHOOSER_TYPE);
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_SEARCH));
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_NAME));
        expectEnabled(dialog, {IDC_CHOOSER_BASE, IDC_CHOOSER_LIST, IDC_CHOOSER_CUSTOM_BASE}, false);
        click(dialog, IDC_CHOOSER_SEARCH);
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_TYPE));
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_NAME));
        expectEnabled(dialog, {IDC_CHOOSER_BASE, IDC_CHOOSER_LIST, IDC_CHOOSER_CUSTOM_BASE});
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        click(dialog, IDC_CHOOSER_TYPE);
        click(dialog, IDC_CHOOSER_SEARCH);
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE)) << "the search base is not customized";
    });
}

TEST_F(ChooserTest, AModeMessageForAnUncheckedButtonDoesNothing)
{
    lookAndCancel([](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_CHOOSER_TYPE, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_CHOOSER_TYPE)));
        EXPECT_TRUE(isChecked(dialog, IDC_CHOOSER_SEARCH));
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_NAME));
    });
}

TEST_F(ChooserTest, TheDefaultButtonReadsAddWhileANameIsTyped)
{
    lookAndCancel([](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        EXPECT_EQ(controlText(dialog, IDOK), "Search...");
        type(dialog, IDC_CHOOSER_NAME, L"a");
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        type(dialog, IDC_CHOOSER_NAME, L"");
        EXPECT_EQ(controlText(dialog, IDOK), "Search");
    });
}

// ---- a typed name ----

TEST_F(ChooserTest, ATypedAccountComesBackAsACopy)
{
    typeName(L"alice");
    void* const chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice");
    EXPECT_NE(chosen, m_alice);
    EXPECT_EQ(store.lines().back(),
              "got R1=" + pointerText(reinterpret_cast<void*>(1)) + " " + pointerText(chosen) + "\n");
    std::free(chosen);
}

TEST_F(ChooserTest, AnyoneIsTakenWithoutTheStore)
{
    typeName(L"Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    EXPECT_THAT(store.calls(), Not(Contains(testing::StartsWith("getSidByNameW"))));
    EXPECT_THAT(store.calls(), Not(Contains(testing::StartsWith("sidDup"))));
}

TEST_F(ChooserTest, AnyoneInLowerCaseIsANameLikeOthers)
{
    typeName(L"anyone");
    script.answerBox(kWarningText, "Warning");
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.calls(), Contains("getSidByNameW anyone"));
}

TEST_F(ChooserTest, AnUnknownNameWarnsAndTheDialogStays)
{
    HWND shown = nullptr;
    then("remember", [&](HWND dialog) { shown = dialog; });
    typeName(L"nobody");
    script.answerBox(kWarningText, "Warning");
    then("correct it", [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_CHOOSER_NAME), "nobody");
        type(dialog, IDC_CHOOSER_NAME, L"alice");
        click(dialog, IDOK);
    });
    void* const chosen = choose();
    EXPECT_EQ(script.boxOwner(), shown);
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice");
    std::free(chosen);
}

TEST_F(ChooserTest, ATypedNameIsCutTo255Characters)
{
    static const std::wstring longName(300, L'x');
    typeName(longName.c_str());
    script.answerBox(kWarningText, "Warning");
    cancel();
    choose();
    EXPECT_THAT(store.calls(), Contains("getSidByNameW " + std::string(255, 'x')));
}

TEST_F(ChooserTest, WithoutATypedNameTheDefaultButtonSearches)
{
    then("search in the typing mode", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        click(dialog, IDOK);
        EXPECT_FALSE(isEnabled(dialog, IDCANCEL));
    });
    waitForFill();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(threads.started(), 1);
}
