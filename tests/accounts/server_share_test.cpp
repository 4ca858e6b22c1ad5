#include "accounts/server_share.h"

#include <gtest/gtest.h>

namespace {

struct ShareCase {
    const wchar_t* server;
    const wchar_t* share; ///< null: refused
};

class IpcShareName : public testing::TestWithParam<ShareCase> {};

TEST_P(IpcShareName, Is)
{
    wchar_t share[kIpcShareCapacity] = L"untouched";
    EXPECT_EQ(makeIpcShareName(GetParam().server, share), GetParam().share != nullptr);
    EXPECT_STREQ(share, GetParam().share != nullptr ? GetParam().share : L"untouched");
}

INSTANTIATE_TEST_SUITE_P(
    Servers, IpcShareName,
    testing::Values(ShareCase{nullptr, nullptr}, ShareCase{L"", nullptr},
                    ShareCase{L"NORTH", L"\\\\NORTH\\IPC$"}, ShareCase{L"\\\\NORTH", L"\\\\NORTH\\IPC$"},
                    ShareCase{L"A23456789012345", L"\\\\A23456789012345\\IPC$"},
                    ShareCase{L"A234567890123456", nullptr},
                    ShareCase{L"\\\\A23456789012345", L"\\\\A23456789012345\\IPC$"},
                    ShareCase{L"\\\\A234567890123456", nullptr},
                    // One backslash among the first two characters counts as both.
                    ShareCase{L"\\NORTH", L"\\NORTH\\IPC$"}, ShareCase{L"N\\ORTH", L"N\\ORTH\\IPC$"},
                    ShareCase{L"\\A234567890123456", L"\\A234567890123456\\IPC$"},
                    ShareCase{L"\\A2345678901234567", nullptr}, ShareCase{L"NO\\RTH", L"\\\\NO\\RTH\\IPC$"},
                    ShareCase{L"N", L"\\\\N\\IPC$"}, ShareCase{L"\\", L"\\\\IPC$"},
                    ShareCase{L"\\\\", L"\\\\\\IPC$"}));

} // namespace
