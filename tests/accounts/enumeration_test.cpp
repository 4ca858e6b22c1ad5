#include "accounts/enumeration.h"

#include "accounts/account_resolution.h"
#include "fill_fixture.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

/// The steps of a fill with one preset owner.
Lines begunWithBob(const Lines& then)
{
    Lines lines = {"insert 0, 5, Please wait until data fetched..., , , null",
                   "insert 1, 5, Anyone, Anyone, System, ONE",
                   "createEmptySidList",
                   "getAccountBySidW 2 512",
                   "sidDup 2",
                   "insert 2, 7, bob, NORTH\\bob, File owner, 2",
                   "appendToSidList2 L1 presets"};
    lines.insert(lines.end(), then.begin(), then.end());
    return lines;
}

TEST_F(FillTest, StoreCallByCall)
{
    context.host = L"S1";
    context.presetOwners = makePresets({2});
    ASSERT_TRUE(fill());
    EXPECT_EQ(steps(), begunWithBob({
                           "getDomainServerByName S1",
                           "nameServers S1, S2",
                           "ODS Domain server = S1/S2\n",
                           "NetUseAdd \\\\S1\\IPC$",
                           "NetUseAdd \\\\S2\\IPC$",
                           "enumerateUsers S1 L1",
                           "enumerateUsers S2 L1",
                           "enumerateUsers null L1",
                           "ODS Users = 5\n",
                           "sidcmp 2 2",
                           "sidcmp 2 1",
                           "getAccountBySidW 1 512",
                           "sidDup 1",
                           "insert 3, 7, ann, NORTH\\ann, User, 1",
                           "sidcmp 2 2",
                           "sidcmp 2 1",
                           "getAccountBySidW 1 512",
                           "sidDup 1",
                           "insert 4, 7, ann, NORTH\\ann, User, 1",
                           "sidcmp 2 3",
                           "getAccountBySidW 3 512",
                           "sidDup 3",
                           "insert 5, 7, carl, PC\\carl, User, 3",
                           "freeSidList L1",
                           "enumerateGroups S1 null",
                           "enumerateGroups S2 L2",
                           "enumerateGroups null L2",
                           "NetUseDel \\\\S1\\IPC$",
                           "NetUseDel \\\\S2\\IPC$",
                           "ODS Groups = 2\n",
                           "sidcmp 2 11",
                           "getAccountBySidW 11 512",
                           "sidDup 11",
                           "insert 6, 5, staff, NORTH\\staff, Group, 11",
                           "sidcmp 2 12",
                           "getAccountBySidW 12 512",
                           "sidDup 12",
                           "insert 7, 5, crew, PC\\crew, Group, 12",
                           "removeFirstInserted",
                           "freeSidList L2",
                       }));
    EXPECT_EQ(context.host, nullptr);
    EXPECT_TRUE(sink->removed);
    expectNothingHeld();
}

TEST_F(FillTest, DirectoryCallByCall)
{
    context.presetOwners = makePresets({2});
    context.counters[0] = 3;
    context.counters[1] = 4;
    ASSERT_TRUE(fill());
    EXPECT_EQ(steps(), begunWithBob({
                           "getDomainServer",
                           "ODS wcHost := WinNT://S1\n",
                           "CoInitialize",
                           // Users of the directory.
                           "createEmptySidList",
                           "ADsGetObject WinNT://S1",
                           "ADsBuildVarArrayStr 2",
                           "put_Filter User, null",
                           "ADsBuildEnumerator",
                           "ADsEnumerateNext 100",
                           "QueryInterface",
                           "get_Name",
                           "get_Class",
                           "ODS   dora(User)\n",
                           "Get objectSid",
                           "sidDup 31",
                           "appendToSidList L2 31",
                           "sidcmp 2 31",
                           "rowCount",
                           "sidDup 31",
                           "insert 3, 7, dora, S1\\dora, User, 31",
                           "ODS Total Number of Objects enumerated is 1\n",
                           "ADsFreeEnumerator",
                           "appendToSidList2 L1 L2",
                           "freeSidList L2",
                           // Users of this machine.
                           "rowCount",
                           "enumerateUsers null null",
                           "sidcmp 2 3",
                           "getAccountBySidW 3 512",
                           "sidDup 3",
                           "insert 4, 7, carl, PC\\carl, User, 3",
                           "appendToSidList2 L1 L3",
                           "freeSidList L3",
                           // Groups of the directory.
                           "createEmptySidList",
                           "ADsGetObject WinNT://S1",
                           "ADsBuildVarArrayStr 2",
                           "put_Filter Group, null",
                           "ADsBuildEnumerator",
                           "ADsEnumerateNext 100",
                           "QueryInterface",
                           "get_Name",
                           "get_Class",
                           "ODS   team(Group)\n",
                           "Get objectSid",
                           "sidDup 41",
                           "appendToSidList L4 41",
                           "sidcmp 2 41",
                           "rowCount",
                           "sidDup 41",
                           "insert 5, 5, team, S1\\team, Group, 41",
                           "ODS Total Number of Objects enumerated is 1\n",
                           "ADsFreeEnumerator",
                           "appendToSidList2 L1 L4",
                           "freeSidList L4",
                           // Groups of this machine.
                           "rowCount",
                           "enumerateGroups null null",
                           "sidcmp 2 12",
                           "getAccountBySidW 12 512",
                           "sidDup 12",
                           "insert 6, 5, crew, PC\\crew, Group, 12",
                           "appendToSidList2 L1 L5",
                           "freeSidList L5",
                           "removeFirstInserted",
                           "ODS Total items = 5\n",
                           "freeSidList L1",
                       }));
    EXPECT_EQ(context.host, nullptr);
    EXPECT_EQ(context.counters[0], 0);
    EXPECT_EQ(context.counters[1], 0);
    expectNothingHeld();
}

TEST_F(FillTest, NothingToFillDoesNothing)
{
    fillTree(nullptr);
    FillContext none;
    fillTree(&none);
    EXPECT_THAT(store.calls(), IsEmpty());
    fillUntilRows(0);
    EXPECT_THAT(store.calls(), ElementsAre("alive"));
}

// ---- names

TEST_F(FillTest, NamesWithoutDomainAndUnknownAccounts)
{
    context.host = L"S1";
    store.users = {{L"", {21, 99, 3}}};
    store.groups = {};
    ASSERT_TRUE(fill());
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone, "Everyone|Everyone|User|21", "carl|PC\\carl|User|3"));
    EXPECT_EQ(sink->rows.back().index, 3); // the unknown one took no place
    expectNothingHeld();
}

TEST_F(FillTest, Resolution)
{
    const wchar_t* domain = L"x";
    const wchar_t* name = L"x";
    EXPECT_STREQ(resolveAccount(testSid(1), domain, name), L"NORTH\\ann");
    EXPECT_STREQ(domain, L"NORTH");
    EXPECT_STREQ(name, L"ann");
    EXPECT_STREQ(resolveAccount(testSid(21), domain, name), L"Everyone");
    EXPECT_EQ(domain, nullptr);
    EXPECT_STREQ(name, L"Everyone");
    EXPECT_EQ(resolveAccount(testSid(99), domain, name), nullptr);
    EXPECT_EQ(domain, nullptr);
    EXPECT_EQ(name, nullptr);
    store.names[5] = std::wstring(600, L'd') + L"\\n";
    EXPECT_EQ(std::wcslen(resolveAccount(testSid(5), domain, name)), 511u);
    EXPECT_EQ(domain, nullptr);
}

// ---- null lists

TEST_F(FillTest, NullFromTheStoreReplacesTheTotal)
{
    context.host = L"S1";
    store.givesNull = {"enumerateUsers S2", "enumerateGroups null"};
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.calls(), Contains("enumerateUsers null null")); // what came from S1 is gone
    EXPECT_THAT(store.lines(), ElementsAre("Domain server = S1/S2\n", "Users = 1\n", "Groups = 0\n"));
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone, "carl|PC\\carl|User|3"));
    EXPECT_EQ(store.calls().back(), "freeSidList null");
    expectNothingHeld();
}

TEST_F(FillTest, NullPartsAreNeitherMergedNorFreed)
{
    directory.fails["ADsBuildEnumerator"] = E_FAIL;
    store.givesNull = {"enumerateUsers null", "enumerateGroups null"};
    ASSERT_TRUE(fill());
    EXPECT_EQ(store.count("appendToSidList2"), 0);
    EXPECT_EQ(store.count("freeSidList null"), 0);
    EXPECT_THAT(store.lines(),
                ElementsAre("wcHost := WinNT://S1\n", "Unable to list contents of: WinNT://S1\n",
                            "Unable to list contents of: WinNT://S1\n", "Total items = 0\n"));
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone));
    expectNothingHeld();
}

// ---- preset owners

TEST_F(FillTest, PresetOwnersComeFirstAndOnce)
{
    registry.set(L"Y");
    SidList* const presets = makePresets({11, 99, 3, 1});
    context.presetOwners = presets;
    ASSERT_TRUE(fill());
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone, "staff|NORTH\\staff|File owner|11",
                                    "carl|PC\\carl|File owner|3", "ann|NORTH\\ann|File owner|1",
                                    "bob|NORTH\\bob|User|2", "crew|PC\\crew|Group|12"));
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(sink->rows[i].image, i < 2 ? kGroup : kUser);
        EXPECT_EQ(sink->rows[i].index, static_cast<int>(i));
    }
    EXPECT_EQ(numbersOf(presets), (std::vector<unsigned>{11, 99, 3, 1}));
    expectNothingHeld();
}

TEST_F(FillTest, PresetOwnersComeOnceFromTheDirectoryToo)
{
    directory.objects.push_back({.name = L"ann", .className = L"User", .sid = 1});
    context.presetOwners = makePresets({1, 12});
    ASSERT_TRUE(fill());
    EXPECT_THAT(rows(),
                ElementsAre(kWait, kAnyone, "ann|NORTH\\ann|File owner|1", "crew|PC\\crew|File owner|12",
                            "dora|S1\\dora|User|31", "carl|PC\\carl|User|3", "team|S1\\team|Group|41"));
    expectNothingHeld();
}

TEST_F(FillTest, AnEmptyPresetListExcludesNobodyWithASid)
{
    context.presetOwners = makePresets({});
    directory.objects.push_back({.name = L"ghost", .className = L"User"});
    ASSERT_TRUE(fill());
    EXPECT_THAT(rows(), ElementsAre(kWait, kAnyone, "dora|S1\\dora|User|31", "carl|PC\\carl|User|3",
                                    "team|S1\\team|Group|41", "crew|PC\\crew|Group|12"));
    expectNothingHeld();
}

TEST_F(FillTest, PresetListThatTheStoreGivesBackStaysTheCallers)
{
    for (const wchar_t* setting : {L"N", L"Y"}) {
        SCOPED_TRACE(setting);
        registry.set(setting);
        SidList* const presets = makePresets({2, 0, 1});
        context.presetOwners = presets;
        store.givenBack = "presets";
        ASSERT_TRUE(fill());
        EXPECT_EQ(numbersOf(presets), (std::vector<unsigned>{2, 0, 1}));
        EXPECT_THAT(store.calls(), Contains(testing::EndsWith(" presets")));
        EXPECT_THAT(store.lines(), Contains(setting[0] == L'Y' ? "Users = 6\n" : "Total items = 6\n"));
        expectNothingHeld();
    }
}

// ---- the merge

TEST_F(FillTest, APartThatBecomesTheTotalIsNotFreed)
{
    store.givenBack = "L2"; // the users of the directory, against a total that is empty so far
    ASSERT_TRUE(fill());
    EXPECT_EQ(store.count("appendToSidList2 L1 L2"), 1);
    EXPECT_EQ(store.count("appendToSidList2 L2 L3"), 1); // the total from here on
    EXPECT_EQ(store.count("freeSidList L2"), 1);
    EXPECT_EQ(store.calls().back(), "freeSidList L2");
    EXPECT_THAT(store.lines(), Contains("Total items = 4\n"));
    expectNothingHeld();
}

// ---- scale

TEST_F(FillTest, ManyAccountsAgainstManyPresetOwners)
{
    constexpr unsigned kAccounts = 100000;
    constexpr unsigned kPresets = 5000;
    context.host = L"S1";
    store.secondServers.clear();
    store.groups.clear();
    std::vector<unsigned> all;
    std::vector<unsigned> presets;
    for (unsigned i = 1; i <= kAccounts; ++i) {
        all.push_back(100 + i);
        store.names[100 + i] = L"NORTH\\u" + std::to_wstring(i);
        if (i % (kAccounts / kPresets) == 0) {
            presets.push_back(100 + i);
        }
    }
    store.users = {{L"S1", all}};
    context.presetOwners = makePresets(presets);
    store.writing = false;
    int compared = 0;
    store.answer.sidcmp = [&compared, compare = store.answer.sidcmp](const void* a, const void* b) {
        ++compared;
        return compare(a, b);
    };
    ASSERT_TRUE(fill());
    EXPECT_EQ(sink->rows.size(), 2 + kAccounts);
    for (unsigned i = 0; i < kAccounts; ++i) {
        const ListSink::Row& row = sink->rows[2 + i];
        ASSERT_EQ(row.type, i < kPresets ? L"File owner" : L"User");
    }
    // Once for each preset owner found among the users, beside its copy in the total.
    EXPECT_EQ(compared, static_cast<int>(2 * kPresets));
    expectNothingHeld();
}

} // namespace
