// Fills whose window goes while they run.
#include "fill_fixture.h"
#include "frame/registry.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

using Lines = std::vector<std::string>;

const Lines kSteps = {"getDomainServer",
                      "getDomainServerByName",
                      "getAccountBySidW",
                      "enumerateUsers",
                      "enumerateGroups",
                      "appendToSidList2",
                      "NetUseAdd",
                      "ADsGetObject",
                      "ADsBuildVarArrayStr",
                      "ADsBuildEnumerator",
                      "ADsEnumerateNext",
                      "QueryInterface",
                      "Get",
                      "removeFirstInserted",
                      "nameServers"};

bool isStep(const std::string& line)
{
    const std::string function = line.substr(0, line.find(' '));
    return std::find(kSteps.begin(), kSteps.end(), function) != kSteps.end();
}

class AbandonedFillTest : public FillTest {
protected:
    /// Fills, with the window going during the n-th call. @return what the fill did after that.
    Lines fillUntil(int call)
    {
        int made = 0;
        store.faultFor = [&](const char*) {
            sink->windowGone = sink->windowGone || ++made == call;
            return Fault::kNone;
        };
        EXPECT_TRUE(fill());
        store.faultFor = nullptr;
        EXPECT_TRUE(sink->windowGone);
        const Lines all = store.calls();
        return {all.begin() + call, all.end()};
    }

    /// The same at the first call whose line starts so. A fill without end came before.
    Lines fillUntil(const std::string& start)
    {
        const auto found = std::find_if(m_all.begin(), m_all.end(),
                                        [&](const std::string& line) { return line.starts_with(start); });
        EXPECT_NE(found, m_all.end()) << start;
        return fillUntil(static_cast<int>(found - m_all.begin()) + 1);
    }

    void fillWhole()
    {
        ASSERT_TRUE(fill());
        m_all = store.calls();
    }

    Lines m_all;
};

class AbandonedBySource : public AbandonedFillTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(AbandonedBySource, BeginsNoStepAnyMore)
{
    registry.set(GetParam());
    networkStatus = 0;
    context.presetOwners = makePresets({2, 12});
    directory.objects.push_back({.name = L"extra", .className = L"User", .sid = 32});
    fillWhole();
    ASSERT_GT(m_all.size(), 60u);
    for (int call = 2; call <= static_cast<int>(m_all.size()); ++call)
    { // the first asks for the window itself
        SCOPED_TRACE(std::to_string(call) + ": " + m_all[static_cast<std::size_t>(call) - 1]);
        const Lines after = fillUntil(call);
        Lines steps;
        std::copy_if(after.begin(), after.end(), std::back_inserter(steps), isStep);
        EXPECT_THAT(steps, ElementsAre());
        EXPECT_EQ(store.count("NetUseAdd"), store.count("NetUseDel")) << "a session is left open";
        EXPECT_EQ(context.host, nullptr);
        expectNothingHeld();
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, AbandonedBySource, testing::Values(L"N", L"Y"));

TEST_F(AbandonedFillTest, ClosesOnlyTheSessionsThatItHas)
{
    registry.set(L"Y");
    networkStatus = 0;
    fillWhole();
    EXPECT_THAT(fillUntil("NetUseAdd \\\\S1"), Contains("NetUseDel \\\\S1\\IPC$"));
    EXPECT_EQ(store.count("NetUse"), 2) << "the second server's is not opened";
    fillUntil("enumerateUsers S2");
    EXPECT_EQ(store.count("NetUseDel"), 2);
    fillUntil("NetUseDel \\\\S2");
    EXPECT_EQ(store.count("NetUseDel"), 2) << "none is closed twice";

    networkStatus = ERROR_SESSION_CREDENTIAL_CONFLICT; // the session there is somebody else's
    fillUntil("enumerateUsers S2");
    EXPECT_EQ(store.count("NetUseAdd"), 2);
    EXPECT_EQ(store.count("NetUseDel"), 0);
}

TEST_F(AbandonedFillTest, ClosesItsSessionsAfterAFaultOutsideOfItsSteps)
{
    registry.set(L"Y");
    networkStatus = 0;
    store.raise("ODS", Fault::kAccessViolation, 2); // the number of users
    EXPECT_FALSE(fill());
    EXPECT_EQ(store.count("NetUseDel"), 2);
}

// ---- the window goes with a row

class WindowGone : public FillTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(WindowGone, AtEachInsertion)
{
    registry.set(GetParam());
    context.presetOwners = makePresets({2, 12});
    directory.objects.push_back({.name = L"extra", .className = L"User", .sid = 32});
    ASSERT_TRUE(fill());
    const int all = static_cast<int>(sink->rows.size());
    ASSERT_GT(all, 6);
    for (int n = 1; n < all; ++n) {
        SCOPED_TRACE(n);
        fillUntilRows(n);
        EXPECT_EQ(static_cast<int>(sink->rows.size()), n);
        EXPECT_EQ(sink->insertedAfterDeath, 0);
        EXPECT_EQ(context.host, nullptr);
        expectNothingHeld();
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, WindowGone, testing::Values(L"N", L"Y"));

TEST_F(FillTest, WindowGoneAmongPresetOwnersEndsTheFillAtOnce)
{
    context.presetOwners = makePresets({1, 2});
    fillUntilRows(3);
    EXPECT_EQ(store.calls().back(), "freeSidList L1");
    EXPECT_EQ(store.count("appendToSidList2"), 0);
    EXPECT_EQ(store.count("getDomainServer"), 0);
    expectNothingHeld();
}

TEST_F(FillTest, WindowGoneAmongUsersOfTheStoreEndsTheFill)
{
    context.host = L"S1";
    fillUntilRows(3);
    EXPECT_EQ(store.calls().back(), "freeSidList L1");
    EXPECT_EQ(store.count("enumerateGroups"), 0);
    EXPECT_EQ(store.count("removeFirstInserted"), 0);
    expectNothingHeld();
}

TEST_F(FillTest, WindowGoneAmongTheObjectsOfTheDirectoryEndsTheFill)
{
    directory.objects.push_back({.name = L"extra", .className = L"User", .sid = 32});
    fillUntilRows(3);
    EXPECT_EQ(store.count("ADsGetObject"), 1);
    EXPECT_EQ(store.count("get_Name"), 1) << "the next object is left alone";
    EXPECT_EQ(store.count("enumerate"), 0);
    EXPECT_EQ(store.count("insert"), 3);
    EXPECT_THAT(store.lines(), Not(Contains(testing::StartsWith("Total"))));
    expectNothingHeld();
}

// ---- sessions and settings

// A server that this user is logged on to with a name and password takes no other session.
TEST_F(FillTest, AServerThatRefusesTheNullSessionIsAskedAllTheSame)
{
    context.host = L"S1";
    networkStatus = ERROR_SESSION_CREDENTIAL_CONFLICT;
    ASSERT_TRUE(fill());
    EXPECT_EQ(store.count("NetUseAdd"), 2);
    EXPECT_THAT(rows(), Contains("ann|NORTH\\ann|User|1"));
    EXPECT_THAT(store.lines(), Contains("Users = 4\n"));
    EXPECT_TRUE(sink->removed);
    expectNothingHeld();
}

TEST_F(FillTest, TheSettingIsReadBesideTheHostsThread)
{
    registry.set(L"Y");
    const wchar_t* const hosts = readRegistryString(HKEY_LOCAL_MACHINE, kSettingsKey, L"NoLDAP");
    ASSERT_STREQ(hosts, L"Y");
    registry.set(L"No"); // another one, as "Path" would be
    ASSERT_TRUE(fill());
    EXPECT_EQ(store.count("ADsGetObject"), 2) << "the setting was read";
    EXPECT_STREQ(hosts, L"Y") << "what the host's thread has read and not copied yet";
}

} // namespace
