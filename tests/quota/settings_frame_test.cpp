// How the Quota Settings dialog is opened and closed.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/library_template.h"
#include "tests/support/list_host.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::IsEmpty;

namespace {

struct SettingsFrameTest : testing::Test {
    RecordingStore store;
};

/// What the platform was asked to open.
struct Opened {
    HINSTANCE instance;
    const void* dialogTemplate;
    HWND owner;
    LPARAM parameter;
} opened;

INT_PTR WINAPI openNothing(HINSTANCE instance, LPCDLGTEMPLATEW dialogTemplate, HWND owner,
                           DLGPROC /*procedure*/, LPARAM parameter)
{
    opened = {instance, dialogTemplate, owner, parameter};
    return 4711;
}

INT_PTR WINAPI failToOpen(HINSTANCE, LPCDLGTEMPLATEW, HWND, DLGPROC, LPARAM)
{
    return -1;
}

HMODULE WINAPI knowNoModule(LPCWSTR)
{
    return nullptr;
}

} // namespace

TEST_F(SettingsFrameTest, OpensTheTemplateOfTheMode)
{
    const ListHost host;
    QuotaRule* const rule = newRule();
    const ImportPatch open(ImportPatch::corvane(), "DialogBoxIndirectParamW", openNothing);
    ASSERT_EQ(open.count(), 1);
    for (const auto& [mode, number] :
         {std::pair(1, IDD_QUOTA_SETTINGS_ADD), std::pair(0, IDD_QUOTA_SETTINGS_EDIT),
          std::pair(-1, IDD_QUOTA_SETTINGS_ADD)})
    {
        opened = {};
        EXPECT_EQ(editQuotaListEntry(host.window(), rule, mode), 4711) << "the end code is passed through";
        EXPECT_EQ(opened.instance, nullptr);
        EXPECT_NE(opened.dialogTemplate, nullptr);
        EXPECT_EQ(opened.dialogTemplate, libraryTemplate(number));
        EXPECT_EQ(opened.owner, host.window());
        EXPECT_EQ(opened.parameter, reinterpret_cast<LPARAM>(rule));
    }
}

TEST_F(SettingsFrameTest, BelongsToTheOwnerGiven)
{
    const ListHost host;
    HWND owner = nullptr;
    whileOpen(
        newRule(), kAdd,
        [&](HWND dialog) {
            owner = GetWindow(dialog, GW_OWNER);
            EXPECT_FALSE(IsWindowEnabled(host.window()));
        },
        host.window());
    EXPECT_EQ(owner, host.window());
    EXPECT_TRUE(IsWindowEnabled(host.window()));
}

TEST_F(SettingsFrameTest, NeedsNoOwner)
{
    whileOpen(newRule(), kAdd, [](HWND dialog) { EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr); });
}

TEST_F(SettingsFrameTest, GivesMinusOneWithoutATemplate)
{
    const HiddenDialog all;
    EXPECT_EQ(editQuotaListEntry(nullptr, newRule(), kAdd), -1);
    EXPECT_EQ(editQuotaListEntry(nullptr, newRule(), kEdit), -1);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(SettingsFrameTest, GivesMinusOneUnderAnotherModuleName)
{
    const ImportPatch module(ImportPatch::corvane(), "GetModuleHandleW", knowNoModule);
    ASSERT_EQ(module.count(), 1);
    EXPECT_EQ(editQuotaListEntry(nullptr, newRule(), kAdd), -1);
}

TEST_F(SettingsFrameTest, GivesMinusOneWhenThePlatformFails)
{
    const ImportPatch open(ImportPatch::corvane(), "DialogBoxIndirectParamW", failToOpen);
    EXPECT_EQ(editQuotaListEntry(nullptr, newRule(), kAdd), -1);
}

TEST_F(SettingsFrameTest, CloseBoxCancels)
{
    for (const int mode : {kAdd, kEdit}) {
        const auto close = [](HWND dialog) {
            PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
        };
        EXPECT_EQ(Visit().act(close).open(newRule(), mode), 0);
    }
}

TEST_F(SettingsFrameTest, EnterPressesOkAndEscapeCancel)
{
    QuotaRule* const rule = newRule();
    for (const auto& [key, result] : {std::pair(VK_RETURN, reinterpret_cast<intptr_t>(rule)),
                                      std::pair(VK_ESCAPE, static_cast<intptr_t>(0))})
    {
        const auto press = [pressed = key](HWND dialog) {
            PostMessageW(GetDlgItem(dialog, IDC_QUOTA_SOFT_LIMIT), WM_KEYDOWN, static_cast<WPARAM>(pressed),
                         0);
        };
        EXPECT_EQ(Visit().act(press).open(rule, kAdd), result);
    }
}

TEST_F(SettingsFrameTest, LeavesOtherMessagesToTheDialog)
{
    whileOpen(newRule(), kAdd, [](HWND dialog) {
        EXPECT_EQ(SendMessageW(dialog, WM_USER + 77, 1, 2), 0);
        EXPECT_EQ(SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_QUOTA_OBJECT_SIZE, EN_CHANGE), 0), 0);
        // The answer to this one comes from the dialog's own handling alone.
        EXPECT_EQ(SendMessageW(dialog, DM_GETDEFID, 0, 0), MAKELRESULT(IDOK, DC_HASDEFID));
    });
}

TEST_F(SettingsFrameTest, ShowsTheWaitCursorWhileMeasuring)
{
    int measured = 0;
    const auto measure = [&measured] {
        EXPECT_TRUE(showsWaitCursor());
        ++measured;
        return int64_t{0};
    };
    store.answer.getRealSize = [=](const wchar_t*) {
        return measure();
    };
    store.answer.getRealSizeByOwner = [=](const wchar_t*, const SidList*) {
        return measure();
    };
    SetCursor(nullptr);
    whileOpen(newRule(store.account("alice")), kAdd, [](HWND) { EXPECT_FALSE(showsWaitCursor()); });
    EXPECT_EQ(measured, 2);
}

TEST_F(SettingsFrameTest, TakesTheWaitCursorAwayAfterAFault)
{
    for (const Fault fault : kEveryFault) {
        SetCursor(nullptr);
        store.raise("getRealSize", fault);
        whileOpen(newRule(), kAdd, [=](HWND) { EXPECT_FALSE(showsWaitCursor()) << fault; });
    }
}

TEST_F(SettingsFrameTest, OpensAgainAfterItWasClosed)
{
    for (int round = 0; round < 3; ++round) {
        QuotaRule* const rule = newRule();
        rule->hardLimit = 5000 + round;
        rule->softLimit = 1;
        EXPECT_EQ(untilOk(rule, kAdd,
                          [=](HWND dialog) {
                              EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT),
                                        std::to_string(5000 + round) + " ");
                          }),
                  reinterpret_cast<intptr_t>(rule));
    }
}
