// Which servers and directories a fill asks.
#include "fill_fixture.h"
#include "tests/support/describe.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(FillTest, WithoutSettingAndHostTheDirectoryIsAsked)
{
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(), Contains("wcHost := WinNT://S1\n"));
    EXPECT_EQ(store.count("ADsGetObject WinNT://S1"), 2);
    EXPECT_EQ(store.count("NetUseAdd"), 0);
    expectNothingHeld();
}

TEST_F(FillTest, WithoutDomainServerTheFormatterSaysSo)
{
    store.domainServer.reset();
    directory.fails["ADsGetObject"] = E_FAIL;
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(),
                ElementsAre("wcHost := WinNT://(null)\n",
                            "\"WinNT://(null)\" is not a valid container object.\n",
                            "Unable to list contents of: WinNT://(null)\n",
                            "\"WinNT://(null)\" is not a valid container object.\n",
                            "Unable to list contents of: WinNT://(null)\n", "Total items = 2\n"));
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone, "carl|PC\\carl|User|3", "crew|PC\\crew|Group|12"));
    expectNothingHeld();
}

struct SwitchCase {
    const wchar_t* value; ///< null: absent
    bool directory;
};

class NoLdapSwitch : public FillTest, public testing::WithParamInterface<SwitchCase> {};

TEST_P(NoLdapSwitch, Decides)
{
    if (GetParam().value != nullptr) {
        registry.set(GetParam().value);
    }
    ASSERT_TRUE(fill());
    EXPECT_EQ(store.count("ADsGetObject"), GetParam().directory ? 2 : 0);
    EXPECT_EQ(store.count("ODS Domain server = S1/S2"), GetParam().directory ? 0 : 1);
    EXPECT_THAT(store.calls(), Contains("getDomainServer").Times(1));
    EXPECT_EQ(context.host, nullptr);
    expectNothingHeld();
}

const std::wstring kLongest = L"Y" + std::wstring(128, L'y');
const std::wstring kTooLong = L"Y" + std::wstring(129, L'y');

INSTANTIATE_TEST_SUITE_P(Values, NoLdapSwitch,
                         testing::Values(SwitchCase{nullptr, true}, SwitchCase{L"", true},
                                         SwitchCase{L"Y", false}, SwitchCase{L"y", true},
                                         SwitchCase{L"Yes", false}, SwitchCase{L"N", true},
                                         SwitchCase{L" Y", true}, SwitchCase{kLongest.c_str(), false},
                                         SwitchCase{kTooLong.c_str(), true}));

struct HostCase {
    const wchar_t* host;
    bool directory;
};

class SearchBase : public FillTest, public testing::WithParamInterface<HostCase> {};

TEST_P(SearchBase, Decides)
{
    registry.set(L"Y"); // does not count with a search base
    context.host = GetParam().host;
    ASSERT_TRUE(fill());
    const std::string host = describe(GetParam().host);
    EXPECT_EQ(store.count("ADsGetObject " + host), GetParam().directory ? 2 : 0);
    EXPECT_EQ(store.count("enumerateUsers " + host + (host.empty() ? "L" : " L")),
              GetParam().directory ? 0 : 1);
    EXPECT_THAT(store.calls(), Not(Contains("getDomainServer")));
    EXPECT_EQ(store.count("ODS wcHost"), 0);
    // The caller's own text stays on the way to the directory; the store's ends with none.
    EXPECT_EQ(context.host, GetParam().directory ? GetParam().host : nullptr);
    expectNothingHeld();
}

INSTANTIATE_TEST_SUITE_P(Hosts, SearchBase,
                         testing::Values(HostCase{L"WinNT://NORTH", true}, HostCase{L"LDAP://dc=north", true},
                                         HostCase{L"S1", false}, HostCase{L"\\\\S1", false},
                                         HostCase{L"winnt://NORTH", false}, HostCase{L"ldap://x", false},
                                         HostCase{L"", false}));

TEST_F(FillTest, WithoutAnyServerOnlyThisMachineIsAsked)
{
    registry.set(L"Y");
    store.domainServer.reset();
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(), ElementsAre("Domain server = /\n", "Users = 1\n", "Groups = 1\n"));
    EXPECT_EQ(store.count("NetUse"), 0);
    EXPECT_EQ(store.count("getDomainServerByName"), 0);
    EXPECT_EQ(store.count("enumerate"), 2);
    EXPECT_EQ(store.count("nameServers null, null"), 1);
    expectNothingHeld();
}

TEST_F(FillTest, ServerWithoutSecondOne)
{
    context.host = L"S9";
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(), ElementsAre("Domain server = S9/\n", "Users = 1\n", "Groups = 1\n"));
    EXPECT_EQ(store.count("NetUseAdd"), 1);
    EXPECT_EQ(store.count("NetUseDel"), 1);
    EXPECT_EQ(store.count("nameServers S9, null"), 1);
    expectNothingHeld();
}

TEST_F(FillTest, OverlongSearchBasesAreCut)
{
    const std::wstring longServer(5000, L'x');
    context.host = longServer.c_str();
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(), Contains("Domain server = " + std::string(259, 'x') + "/\n"));
    EXPECT_EQ(store.count("NetUse"), 0); // no computer has such a name
    EXPECT_EQ(store.count("enumerateUsers " + std::string(5000, 'x') + " "), 1);

    context.host = nullptr;
    store.domainServer = longServer;
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.calls(), Contains("ADsGetObject WinNT://" + std::string(2039, 'x')).Times(2));
    expectNothingHeld();
}

} // namespace
