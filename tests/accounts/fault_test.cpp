// Faults in each step of a fill.
#include "fill_fixture.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace {

using testing::Contains;
using testing::ElementsAre;

enum class Source : std::uint8_t { kDirectory, kStore };

struct FaultCase {
    const char* name;
    Source source;
    const char* function; ///< whose call faults
    int call;             ///< which of its calls, from 1
    const char* line;     ///< null: the step has no guard of its own
};

class FaultTest : public FillTest {
protected:
    void choose(Source source)
    {
        context.host = source == Source::kDirectory ? nullptr : L"S1";
        context.presetOwners = makePresets({2});
    }

    bool fillWithFault(const std::string& function, int call)
    {
        store.raise(function, m_kind, call);
        const bool ended = fill();
        EXPECT_EQ(store.takeRaised(), function) << "the fault was not reached";
        return ended;
    }

    /// What the fill itself owns; a list that the store had in hand during its own fault is out of reach.
    void expectNothingOfOursHeld() const
    {
        EXPECT_EQ(store.strings(), 0);
        EXPECT_EQ(directory.references, 0);
        EXPECT_EQ(directory.strings, 0);
        EXPECT_EQ(directory.arrays, 0);
        EXPECT_EQ(context.host, nullptr);
        EXPECT_THAT(numbersOf(context.presetOwners), ElementsAre(2));
    }

    std::vector<std::string> guardLines() const
    {
        std::vector<std::string> result;
        for (const std::string& line : store.lines()) {
            if (line.find("sigsegv") != std::string::npos) {
                result.push_back(line);
            }
        }
        return result;
    }

    Fault m_kind = Fault::kAccessViolation;
};

class StepFault : public FaultTest, public testing::WithParamInterface<FaultCase> {};

TEST_P(StepFault, WritesItsLineAndGoesOn)
{
    for (const bool throws : {false, true}) {
        SCOPED_TRACE(throws ? "language exception" : "processor fault");
        choose(GetParam().source);
        m_kind = throws ? Fault::kCppException : Fault::kAccessViolation;
        const bool ended = fillWithFault(GetParam().function, GetParam().call);
        EXPECT_EQ(ended, GetParam().line != nullptr);
        if (GetParam().line != nullptr) {
            EXPECT_THAT(guardLines(), ElementsAre(GetParam().line));
            EXPECT_TRUE(sink->removed);
        } else {
            EXPECT_THAT(guardLines(), ElementsAre());
        }
        context.host = ended || GetParam().source == Source::kDirectory ? context.host : nullptr;
        expectNothingOfOursHeld();
    }
}

constexpr FaultCase kFaults[] = {
    // From the directory. Calls of enumerateUsers and the like are counted over the whole fill.
    {"DirectoryUsers", Source::kDirectory, "ADsGetObject", 1, "DoList(Users) => sigsegv\n"},
    {"DirectoryUserSid", Source::kDirectory, "Get", 1, "DoList(Users) => sigsegv\n"},
    {"DirectoryUserRow", Source::kDirectory, "insert", 4, "DoList(Users) => sigsegv\n"},
    {"DirectoryUserMembership", Source::kDirectory, "sidcmp", 1, "DoList(Users) => sigsegv\n"},
    {"DirectoryUserAppend", Source::kDirectory, "appendToSidList", 1, "DoList(Users) => sigsegv\n"},
    {"DirectoryUsersMerge", Source::kDirectory, "appendToSidList2", 2,
     "DoList(Users) made list with => sigsegv at freeSidList\n"},
    {"DirectoryUsersFree", Source::kDirectory, "freeSidList", 1,
     "DoList(Users) made list with => sigsegv at freeSidList\n"},
    {"LocalUsers", Source::kDirectory, "enumerateUsers", 1, "enumerateUsers => sigsegv\n"},
    {"LocalUsersName", Source::kDirectory, "getAccountBySidW", 2,
     "enumerateUsers made list with => sigsegv at insertion in tree\n"},
    {"LocalUsersMembership", Source::kDirectory, "sidcmp", 2,
     "enumerateUsers made list with => sigsegv at insertion in tree\n"},
    {"LocalUsersRow", Source::kDirectory, "insert", 5,
     "enumerateUsers made list with => sigsegv at insertion in tree\n"},
    {"LocalUsersMerge", Source::kDirectory, "appendToSidList2", 3,
     "enumerateUsers made list with => sigsegv at freeSidList\n"},
    {"LocalUsersFree", Source::kDirectory, "freeSidList", 2,
     "enumerateUsers made list with => sigsegv at freeSidList\n"},
    {"DirectoryGroups", Source::kDirectory, "ADsEnumerateNext", 2, "DoList(Groups) => sigsegv\n"},
    {"DirectoryGroupsMerge", Source::kDirectory, "appendToSidList2", 4,
     "DoList(Groups) made list with => sigsegv at freeSidList\n"},
    {"DirectoryGroupsFree", Source::kDirectory, "freeSidList", 3,
     "DoList(Groups) made list with => sigsegv at freeSidList\n"},
    {"LocalGroups", Source::kDirectory, "enumerateGroups", 1, "enumerateGroups => sigsegv\n"},
    {"LocalGroupsRow", Source::kDirectory, "insert", 7,
     "enumerateGroups made list with => sigsegv at insertion in tree\n"},
    {"LocalGroupsMerge", Source::kDirectory, "appendToSidList2", 5,
     "enumerateGroups made list with => sigsegv at freeSidList\n"},
    {"LocalGroupsFree", Source::kDirectory, "freeSidList", 4,
     "enumerateGroups made list with => sigsegv at freeSidList\n"},
    {"DirectoryTotalFree", Source::kDirectory, "freeSidList", 5, "Total list => sigsegv at freeSidList\n"},
    // From the store.
    {"FirstSession", Source::kStore, "NetUseAdd", 1, "EstablishNullSession => sigsegv\n"},
    {"SecondSession", Source::kStore, "NetUseAdd", 2, "EstablishNullSession => sigsegv\n"},
    {"DomainUsers", Source::kStore, "enumerateUsers", 1, "enumerateUsers(domain) => sigsegv\n"},
    {"DomainUsers2", Source::kStore, "enumerateUsers", 2, "enumerateUsers(domain) => sigsegv\n"},
    {"StoreLocalUsers", Source::kStore, "enumerateUsers", 3, "enumerateUsers(local) => sigsegv\n"},
    {"UsersName", Source::kStore, "getAccountBySidW", 2, "Adding users => sigsegv in tree insertion\n"},
    {"UsersRow", Source::kStore, "insert", 5, "Adding users => sigsegv in tree insertion\n"},
    {"UsersFree", Source::kStore, "freeSidList", 1, "enumerateUsers => sigsegv at freeSidList\n"},
    {"DomainGroups", Source::kStore, "enumerateGroups", 1, "enumerateGroups(domain) => sigsegv\n"},
    {"DomainGroups2", Source::kStore, "enumerateGroups", 2, "enumerateGroups(domain) => sigsegv\n"},
    {"StoreLocalGroups", Source::kStore, "enumerateGroups", 3, "enumerateGroups(local) => sigsegv\n"},
    {"FirstDisconnect", Source::kStore, "NetUseDel", 1, "EstablishNullSession (disconnect) => sigsegv\n"},
    {"SecondDisconnect", Source::kStore, "NetUseDel", 2, "EstablishNullSession (disconnect) => sigsegv\n"},
    {"GroupsRow", Source::kStore, "insert", 7, "enumerateGroups => sigsegv at insertion in tree\n"},
    {"GroupsFree", Source::kStore, "freeSidList", 2, "enumerateGroups => sigsegv at freeSidList\n"},
    // Steps that only the guard around the whole fill sees.
    {"FirstRow", Source::kDirectory, "insert", 1, nullptr},
    {"PresetName", Source::kStore, "getAccountBySidW", 1, nullptr},
    {"PresetCopy", Source::kStore, "sidDup", 1, nullptr},
    {"PresetMerge", Source::kStore, "appendToSidList2", 1, nullptr},
    {"EmptyList", Source::kStore, "createEmptySidList", 1, nullptr},
    {"DomainServer", Source::kDirectory, "getDomainServer", 1, nullptr},
    {"HostLine", Source::kDirectory, "ODS", 1, nullptr},
    {"Com", Source::kDirectory, "CoInitialize", 1, nullptr},
    {"Counting", Source::kDirectory, "rowCount", 2, nullptr},
    {"Removal", Source::kDirectory, "removeFirstInserted", 1, nullptr},
    {"SecondServer", Source::kStore, "getDomainServerByName", 1, nullptr},
    {"ServersLine", Source::kStore, "ODS", 1, nullptr},
    {"UsersLine", Source::kStore, "ODS", 2, nullptr},
    {"GroupsLine", Source::kStore, "ODS", 3, nullptr},
    {"StoreRemoval", Source::kStore, "removeFirstInserted", 1, nullptr},
};

INSTANTIATE_TEST_SUITE_P(Steps, StepFault, testing::ValuesIn(kFaults),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(FaultTest, OneFaultCostsOneStep)
{
    choose(Source::kDirectory);
    fillWithFault("ADsGetObject", 1);
    EXPECT_EQ(rows().size(), 6u); // all but the directory's user
    EXPECT_EQ(store.count("appendToSidList2 L1 null"), 0);

    choose(Source::kStore);
    fillWithFault("NetUseAdd", 1);
    EXPECT_EQ(store.count("NetUseAdd"), 1); // the second server is passed over
    EXPECT_EQ(rows().size(), 8u);

    choose(Source::kStore);
    fillWithFault("enumerateUsers", 2);
    EXPECT_THAT(store.lines(), Contains("Users = 4\n")); // the first server's stay in the total
}

TEST_F(FaultTest, TheListOfABrokenWalkIsFreedUnlessTheStoreHadIt)
{
    choose(Source::kDirectory);
    fillWithFault("Get", 1);
    EXPECT_EQ(store.count("freeSidList L2"), 1);

    choose(Source::kDirectory);
    store.tellListsByNumber();
    fillWithFault("appendToSidList", 1);
    EXPECT_EQ(store.count("appendToSidList L2 31"), 1);
    EXPECT_EQ(store.count("freeSidList L2"), 0);
}

TEST_F(FaultTest, AFaultInTheRowsOfUsersGoesOnWithGroups)
{
    choose(Source::kStore);
    fillWithFault("insert", 5);
    EXPECT_THAT(rows(), ElementsAre("Please wait until data fetched...|||null", "Anyone|Anyone|System|ONE",
                                    "bob|NORTH\\bob|File owner|2", "ann|NORTH\\ann|User|1",
                                    "staff|NORTH\\staff|Group|11", "crew|PC\\crew|Group|12"));
    EXPECT_EQ(sink->rows[4].index, 4); // counted on from the rows that were inserted
}

TEST_F(FaultTest, TheDebugChannelItselfMayBeBroken)
{
    choose(Source::kDirectory);
    context.host = L"WinNT://NORTH";
    // The first fault is a line inside the walk; the guard then writes its own, to the same channel.
    EXPECT_TRUE(fillWithFault("ODS", 1));
    EXPECT_THAT(guardLines(), ElementsAre("DoList(Users) => sigsegv\n"));
}

class EveryCall : public FaultTest, public testing::WithParamInterface<Source> {};

/// Whatever call faults: the fill ends, or its caller's guard sees it, and nothing of it is left.
TEST_P(EveryCall, MayFault)
{
    choose(GetParam());
    ASSERT_TRUE(fill());
    const int all = static_cast<int>(store.calls().size());
    ASSERT_GT(all, 40);
    for (int call = 2; call <= all; ++call) { // the first asks whether there is a window at all
        choose(GetParam());
        store.raise("", m_kind, call);
        const bool ended = fill();
        const std::string raised = store.takeRaised();
        SCOPED_TRACE(std::to_string(call) + ": " + raised);
        EXPECT_NE(raised, "");
        EXPECT_EQ(guardLines().size(), ended ? 1u : 0u);
        EXPECT_TRUE(sink->removed || !ended);
        if (!ended) {
            context.host = GetParam() == Source::kStore ? nullptr : context.host;
        }
        expectNothingOfOursHeld();
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, EveryCall, testing::Values(Source::kDirectory, Source::kStore));

} // namespace
