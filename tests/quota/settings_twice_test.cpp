// Two windows of one thread, each with Quota Settings open.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"

#include <gmock/gmock.h>

using namespace quota_settings;

namespace {

struct SettingsTwiceTest : testing::Test {
    RecordingStore store;
    ListHost first;
    ListHost second;
    QuotaRule* const outer = RecordingStore::makeRule(L"C:\\outer", nullptr, 20000, 10000, 11);
    QuotaRule* const inner = RecordingStore::makeRule(L"C:\\inner", nullptr, 40000, 30000, 22);

    /// Opens the dialog on the outer rule, and on the inner one while it is open; accepts both in the end.
    void openBoth(const std::function<void(HWND outerDialog, HWND innerDialog)>& act)
    {
        DialogScript script;
        intptr_t innerResult = 0;
        script.onDialog("open another", [&](HWND outerDialog) {
            DialogScript nested;
            nested.step("work in both", [&](HWND) {
                const std::vector<HWND> open = DialogScript::dialogs();
                if (open.size() != 2) {
                    return false;
                }
                HWND const innerDialog = open[0] == outerDialog ? open[1] : open[0];
                act(outerDialog, innerDialog);
                pressOk(innerDialog);
                return true;
            });
            innerResult = nested.run([&] { return editQuotaListEntry(second.window(), inner, kAdd); });
            pressOk(outerDialog);
        });
        EXPECT_NE(script.run([&] { return editQuotaListEntry(first.window(), outer, kAdd); }), 0);
        EXPECT_NE(innerResult, 0);
    }
};

} // namespace

TEST_F(SettingsTwiceTest, EachKeepsItsOwnRecord)
{
    openBoth([](HWND outerDialog, HWND innerDialog) {
        EXPECT_EQ(controlText(outerDialog, IDC_QUOTA_APPLIED_TO), "C:\\outer");
        EXPECT_EQ(controlText(innerDialog, IDC_QUOTA_APPLIED_TO), "C:\\inner");
        typeLimits(outerDialog, L"7000", L"6000");
        typeLimits(innerDialog, L"9000", L"8000");
    });
    EXPECT_EQ(outer->hardLimit, 7000);
    EXPECT_EQ(outer->softLimit, 6000);
    EXPECT_EQ(inner->hardLimit, 9000);
    EXPECT_EQ(inner->softLimit, 8000);
}

TEST_F(SettingsTwiceTest, AChoiceInOneLeavesTheOtherAlone)
{
    openBoth([this](HWND outerDialog, HWND) {
        SendMessageW(outerDialog, WM_COMMAND, MAKEWPARAM(IDC_QUOTA_NO_FILES, BN_CLICKED), 0);
        EXPECT_EQ(inner->inUse, 22);
    });
    EXPECT_EQ(outer->inUse, 0);
}

TEST_F(SettingsTwiceTest, TheOuterOneGoesOnWhenTheInnerIsGone)
{
    openBoth([](HWND, HWND) {});
    EXPECT_EQ(outer->hardLimit, 20000);
    EXPECT_EQ(inner->hardLimit, 40000);
}
