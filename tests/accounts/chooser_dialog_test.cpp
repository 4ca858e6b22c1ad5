// The chooser in both of its modes, from a person's view.
#include "tests/accounts/chooser_fixture.h"

#include "store/lornix.h"
#include "tests/support/text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
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

class ChooserTest : public ChooserFixture {
protected:
    ChooserTest()
    {
        store.answer.getSidByNameW = [this](const wchar_t* name) -> void* {
            return utf8(name) == "alice" ? sidDup(m_alice) : nullptr;
        };
    }

    /// One thing done in the dialog.
    ChooserTest& then(const char* what, std::function<void(HWND)> act)
    {
        script.onDialog(what, std::move(act));
        return *this;
    }
    void cancel()
    {
        then("cancel", [](HWND dialog) { click(dialog, IDCANCEL); });
    }
    void typeName(const wchar_t* name)
    {
        then("type a name", [name](HWND dialog) {
            click(dialog, IDC_CHOOSER_TYPE);
            type(dialog, IDC_CHOOSER_NAME, name);
            clickLater(dialog, IDOK);
        });
    }
    void pick(const char* account)
    {
        then("pick", [account](HWND dialog) {
            select(dialog, rowOf(dialog, account));
            EXPECT_TRUE(isEnabled(dialog, IDOK));
            click(dialog, IDOK);
        });
    }

    void* const m_alice = store.account("DOM\\alice");
};

} // namespace

// ---- opening ----

TEST_F(ChooserTest, ProposesTheComputerAsSearchBaseWithoutADomain)
{
    then("look", [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), computerName()); });
    cancel();
    EXPECT_EQ(choose(), nullptr);
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
    then("look", [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), "WinNT://\\\\DC1"); });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("Domain sid=" + pointerText(domain) + "\n"));
    EXPECT_THAT(store.calls(), Contains("getDomainServer"));
}

TEST_F(ChooserTest, ADomainWithoutAServerShowsWhatTheFormatterWrites)
{
    store.answer.getDomainSid = [&] {
        return sidDup(m_alice);
    };
    then("look", [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_CHOOSER_BASE), "WinNT://(null)"); });
    cancel();
    EXPECT_EQ(choose(), nullptr);
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
        const ImportPatch noTemplate(
            ImportPatch::corvane(), "FindResourceW",
            +[](HMODULE, const wchar_t*, const wchar_t*) -> HRSRC { return nullptr; });
        ASSERT_EQ(noTemplate.count(), 1);
        EXPECT_EQ(chooseSidFromUserInput(nullptr), chosen);
        EXPECT_EQ(store.lines().back(),
                  "got R1=" + pointerText(reinterpret_cast<void*>(-1)) + " " + pointerText(chosen) + "\n");
        EXPECT_EQ(chooseSidFromUserInput2(nullptr, nullptr), chosen);
    }
    std::free(chosen);
}

// ---- modes ----

TEST_F(ChooserTest, TheSearchBaseIsTypedOnlyWhenCustomized)
{
    then("toggle", [](HWND dialog) {
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE));
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_BASE));
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE));
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, TypingANameDisablesTheSearchAndBack)
{
    then("toggle", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        click(dialog, IDC_CHOOSER_TYPE);
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_SEARCH));
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_NAME));
        for (const int id : {IDC_CHOOSER_BASE, IDC_CHOOSER_LIST, IDC_CHOOSER_CUSTOM_BASE}) {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
        click(dialog, IDC_CHOOSER_SEARCH);
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_TYPE));
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_NAME));
        for (const int id : {IDC_CHOOSER_BASE, IDC_CHOOSER_LIST, IDC_CHOOSER_CUSTOM_BASE}) {
            EXPECT_TRUE(isEnabled(dialog, id)) << id;
        }
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        click(dialog, IDC_CHOOSER_TYPE);
        click(dialog, IDC_CHOOSER_SEARCH);
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_BASE)) << "the search base is not customized";
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, AModeMessageForAnUncheckedButtonDoesNothing)
{
    then("notify", [](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_CHOOSER_TYPE, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_CHOOSER_TYPE)));
        EXPECT_TRUE(isChecked(dialog, IDC_CHOOSER_SEARCH));
        EXPECT_FALSE(isEnabled(dialog, IDC_CHOOSER_NAME));
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, TheDefaultButtonReadsAddWhileANameIsTyped)
{
    then("type", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        EXPECT_EQ(controlText(dialog, IDOK), "Search...");
        type(dialog, IDC_CHOOSER_NAME, L"a");
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        type(dialog, IDC_CHOOSER_NAME, L"");
        EXPECT_EQ(controlText(dialog, IDOK), "Search");
    });
    cancel();
    choose();
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

// ---- searching ----

TEST_F(ChooserTest, SearchingOnACustomBaseStopsThere)
{
    gate.shut();
    startSearch();
    then("look", [this](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        for (const int id : {IDOK, IDCANCEL, IDC_CHOOSER_LIST, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH,
                             IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE})
        {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
        EXPECT_THAT(store.lines(), Not(Contains("onOk\n")));
        gate.open();
    });
    waitForFill();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.calls(), Contains("enumerateUsers SERVER []"));
}

TEST_F(ChooserTest, SearchingOnTheDefaultBaseGoesOnToThePick)
{
    then("search", [this](HWND dialog) {
        click(dialog, IDOK);
        EXPECT_THAT(store.lines(), Contains("onOk\n"));
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        for (const int id : {IDOK, IDCANCEL, IDC_CHOOSER_LIST, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH,
                             IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE})
        {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
    });
    waitForFill();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("wcHost := WinNT://(null)\n")) << "the registry decides";
}

TEST_F(ChooserTest, AfterTheFillOnlyTheListAndCancelAreEnabled)
{
    searchServer();
    then("look", [](HWND dialog) {
        for (const int id : {IDCANCEL, IDC_CHOOSER_LIST}) {
            EXPECT_TRUE(isEnabled(dialog, id)) << id;
        }
        for (const int id : {IDOK, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH, IDC_CHOOSER_TYPE,
                             IDC_CHOOSER_CUSTOM_BASE, IDC_CHOOSER_NAME})
        {
            EXPECT_FALSE(isEnabled(dialog, id)) << id;
        }
        EXPECT_EQ(focusOf(dialog), list(dialog)) << "the keyboard must not be lost";
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, TheCloseBoxActsAsCancel)
{
    typeName(L"Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    script = {};
    searchServer();
    then("close", [](HWND dialog) { SendMessageW(dialog, WM_CLOSE, 0, 0); });
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ChooserTest, ShowsAccountsInTheOrderOfTheEnumeration)
{
    giveUsers({"DOM\\bob", "carol"});
    giveGroups({"DOM\\staff"});
    SidList* const owners = RecordingStore::makeSidList({m_alice});
    searchServer();
    then("look", [](HWND dialog) {
        EXPECT_THAT(rows(dialog),
                    ElementsAre("Anyone|Anyone|System", "alice|DOM\\alice|File owner", "bob|DOM\\bob|User",
                                "carol|carol|User", "staff|DOM\\staff|Group"));
        EXPECT_EQ(data(dialog, 0), 1);
        EXPECT_EQ(RecordingStore::nameOf(reinterpret_cast<void*>(data(dialog, 2))), "DOM\\bob");
        constexpr int kGroupImage = 0;
        constexpr int kUserImage = 1;
        std::vector<int> images;
        for (int row = 0; row < 5; ++row) {
            images.push_back(image(dialog, row));
        }
        EXPECT_THAT(images, ElementsAre(kGroupImage, kUserImage, kUserImage, kUserImage, kGroupImage));
    });
    cancel();
    EXPECT_EQ(choose(owners), nullptr);
    freeSidList(owners);
}

TEST_F(ChooserTest, ASecondPressTakesTheSelectedRow)
{
    giveUsers({"DOM\\bob", "DOM\\carol"});
    searchServer();
    pick("carol");
    void* const chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\carol");
    const std::vector<std::string> lines = dialogLines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[1], "onOk\n");
    EXPECT_EQ(lines[2], "onOk: 2\n");
    EXPECT_EQ(lines[3].substr(0, 14), "\treturn sid = ");
    EXPECT_NE(lines[3], "\treturn sid = " + pointerText(chosen) + "\n")
        << "the row's own, of which a copy is given";
    EXPECT_EQ(lines[4], "\treturned sid = " + pointerText(chosen) + "\n");
    EXPECT_EQ(lines[5],
              "got R1=" + pointerText(reinterpret_cast<void*>(1)) + " " + pointerText(chosen) + "\n");
    std::free(chosen);
}

TEST_F(ChooserTest, PickingAnyoneGives1)
{
    searchServer();
    pick("Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    EXPECT_THAT(store.lines(), Contains("\treturn sid = " + pointerText(CORVANE_ANYONE) + "\n"));
}

TEST_F(ChooserTest, PickingAFileOwnerOrAGroupGivesACopy)
{
    giveGroups({"DOM\\staff"});
    SidList* const owners = RecordingStore::makeSidList({m_alice});
    searchServer();
    pick("alice");
    void* chosen = choose(owners);
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice");
    EXPECT_NE(chosen, owners->sids[0]);
    std::free(chosen);
    freeSidList(owners);

    script = {};
    searchServer();
    pick("staff");
    chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\staff");
    std::free(chosen);
}

TEST_F(ChooserTest, TheDefaultButtonWithoutASelectedRowDoesNothing)
{
    searchServer();
    then("press", [this](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(dialogLines().back(), "onOk\n");
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(threads.started(), 1) << "there is one search";
}

TEST_F(ChooserTest, SelectingDuringTheFillEnablesNothing)
{
    gate.shut();
    startSearch();
    script.step("the first rows", [](HWND dialog) { return rowCount(dialog) == 2; });
    then("select", [this](HWND dialog) {
        select(dialog, 1);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        gate.open();
    });
    waitForFill();
    then("select again", [](HWND dialog) {
        EXPECT_FALSE(isEnabled(dialog, IDOK)) << "nothing was selected since";
        ListView_SetItemState(list(dialog), 0, 0, LVIS_SELECTED);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        select(dialog, 0);
        EXPECT_TRUE(isEnabled(dialog, IDOK));
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ChooserTest, EachRowNotificationLooksAtTheSelection)
{
    searchServer();
    then("notify", [](HWND dialog) {
        select(dialog, 0);
        for (const UINT code : {LVN_ITEMCHANGED, LVN_ITEMACTIVATE, LVN_ODSTATECHANGED}) {
            EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
            NMLISTVIEW notification{};
            notification.hdr = {list(dialog), IDC_CHOOSER_LIST, code};
            SendMessageW(dialog, WM_NOTIFY, IDC_CHOOSER_LIST, reinterpret_cast<LPARAM>(&notification));
            EXPECT_TRUE(isEnabled(dialog, IDOK)) << code;
        }
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, ARowWithoutAnAccountCannotBeAdded)
{
    searchServer();
    then("select", [](HWND dialog) {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        SendMessageW(list(dialog), LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        select(dialog, 0);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
    });
    cancel();
    choose();
}

TEST_F(ChooserTest, CancelForgetsWhatWasChosenBefore)
{
    typeName(L"Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    script = {};
    cancel();
    EXPECT_EQ(choose(), nullptr);
    const ImportPatch noTemplate(
        ImportPatch::corvane(), "FindResourceW",
        +[](HMODULE, const wchar_t*, const wchar_t*) -> HRSRC { return nullptr; });
    EXPECT_EQ(chooseSidFromUserInput(nullptr), nullptr);
}

TEST_F(ChooserTest, AThreadThatCannotBeStartedCountsAsAnEmptyFill)
{
    const ImportPatch noThread(
        ImportPatch::corvane(), "_beginthread",
        +[](void(__cdecl*)(void*), unsigned, void*) -> std::uintptr_t {
            return static_cast<std::uintptr_t>(-1);
        });
    ASSERT_EQ(noThread.count(), 1);
    searchServer();
    then("look", [](HWND dialog) {
        EXPECT_EQ(rowCount(dialog), 0);
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
}
