#include "processes/remote_share.h"
#include "tests/processes/run_time_functions.h"
#include "tests/support/import_patch.h"
#include "tests/support/pe_image.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <winnetwk.h>

namespace {

std::vector<std::string> asked;

std::string textOrNull(const wchar_t* text)
{
    return text != nullptr ? utf8(text) : "null";
}

DWORD WINAPI connect(NETRESOURCEW* resource, const wchar_t* password, const wchar_t* user, DWORD flags)
{
    EXPECT_EQ(resource->dwType, static_cast<DWORD>(RESOURCETYPE_ANY));
    asked = {textOrNull(resource->lpLocalName),
             textOrNull(resource->lpRemoteName),
             textOrNull(resource->lpProvider),
             textOrNull(password),
             textOrNull(user),
             std::to_string(flags)};
    return 1326;
}

struct RemoteShareTest : testing::Test {
    RemoteShareTest() { functions.put("WNetAddConnection2W", &connect); }

    RunTimeFunctions functions{GetModuleHandleW(nullptr)};
    HeldThings held{GetModuleHandleW(nullptr)};
};

} // namespace

TEST_F(RemoteShareTest, ConnectsToTheShareOfTheMachine)
{
    EXPECT_EQ(connectRemoteShare(L"\\\\server", L"DOMAIN\\admin", L"secret"), 1326u);
    EXPECT_THAT(asked,
                testing::ElementsAre("null", "\\\\server\\IPC$", "null", "secret", "DOMAIN\\admin", "0"));
    EXPECT_EQ(connectRemoteShare(L"\\\\server", nullptr, nullptr), 1326u);
    EXPECT_THAT(asked, testing::ElementsAre("null", "\\\\server\\IPC$", "null", "null", "null", "0"));
}

TEST_F(RemoteShareTest, TakesTheLibraryForTheTimeOfTheCall)
{
    connectRemoteShare(L"\\\\server", nullptr, nullptr);
    EXPECT_EQ(held.loaded, "mpr.dll ");
    EXPECT_EQ(held.libraries, 0);
}

TEST_F(RemoteShareTest, TellsThatTheFunctionIsMissing)
{
    functions.remove("WNetAddConnection2W");
    asked.clear();
    EXPECT_EQ(connectRemoteShare(L"\\\\server", nullptr, nullptr), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_THAT(asked, testing::IsEmpty());
    EXPECT_EQ(held.libraries, 0);
}

TEST(RemoteShareImportTest, TheLibraryLoadsWithoutTheNetworkProviders)
{
    const HMODULE library = LoadLibraryW(L"corvane.dll");
    ASSERT_NE(library, nullptr);
    for (const ImportedFunction& import : PeImage(library).imports()) {
        EXPECT_STRCASENE(import.module.c_str(), "mpr.dll") << import.name;
    }
}

TEST_F(RemoteShareTest, CutsAMachineNameThatDoesNotFit)
{
    connectRemoteShare(std::wstring(254, L'm').c_str(), nullptr, nullptr);
    EXPECT_EQ(asked[1], std::string(254, 'm') + "\\IPC$");
    connectRemoteShare(std::wstring(10000, L'm').c_str(), nullptr, nullptr);
    EXPECT_EQ(asked[1], std::string(259, 'm'));
}

TEST(RemoteShareSystemTest, TellsThePlatformsError)
{
    // This machine knows no such account.
    EXPECT_NE(connectRemoteShare(L"\\\\127.0.0.1", L"nobody-at-all", L"none"),
              static_cast<DWORD>(ERROR_SUCCESS));
}
