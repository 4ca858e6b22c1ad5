#include "policies/remote_share.h"
#include "tests/support/import_patch.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

namespace {

std::vector<std::string> asked;

std::string orNull(const wchar_t* text)
{
    return text != nullptr ? utf8(text) : "null";
}

DWORD WINAPI connect(NETRESOURCEW* resource, const wchar_t* password, const wchar_t* user, DWORD flags)
{
    EXPECT_EQ(resource->dwType, static_cast<DWORD>(RESOURCETYPE_ANY));
    asked = {orNull(resource->lpLocalName),
             orNull(resource->lpRemoteName),
             orNull(resource->lpProvider),
             orNull(password),
             orNull(user),
             std::to_string(flags)};
    return 1326;
}

} // namespace

TEST(RemoteShareTest, ConnectsToTheShareOfTheMachine)
{
    const ImportPatch patch(GetModuleHandleW(nullptr), "WNetAddConnection2W", &connect);
    ASSERT_EQ(patch.count(), 1);
    EXPECT_EQ(connectRemoteShare(L"\\\\server", L"DOMAIN\\admin", L"secret"), 1326u);
    EXPECT_THAT(asked,
                testing::ElementsAre("null", "\\\\server\\IPC$", "null", "secret", "DOMAIN\\admin", "0"));
    EXPECT_EQ(connectRemoteShare(L"\\\\server", nullptr, nullptr), 1326u);
    EXPECT_THAT(asked, testing::ElementsAre("null", "\\\\server\\IPC$", "null", "null", "null", "0"));
}

TEST(RemoteShareTest, CutsAMachineNameThatDoesNotFit)
{
    const ImportPatch patch(GetModuleHandleW(nullptr), "WNetAddConnection2W", &connect);
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
