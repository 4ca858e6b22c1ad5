#include "accounts/directory_walk.h"

#include "fill_fixture.h"
#include "store/lornix.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class DirectoryWalkTest : public FillTest {
protected:
    /// @return what the walk gave, as numbers; nothing when it gave null.
    std::optional<std::vector<unsigned>> walk(DirectoryKind kind, bool withList = true)
    {
        sink.reset(new ListSink);
        context.sink = sink.get();
        context.userImage = kUser;
        context.groupImage = kGroup;
        store.takeCalls();
        std::optional<std::vector<unsigned>> result;
        DirectoryWalk held;
        SidList* const list = DoList(kPath, kind, withList ? &context : nullptr, held);
        if (list != nullptr) {
            result = numbersOf(list);
            freeSidList(list);
        }
        return result;
    }

    static constexpr const wchar_t* kPath = L"WinNT://NORTH";
};

TEST_F(DirectoryWalkTest, KindsFilterByClass)
{
    EXPECT_EQ(walk(DirectoryKind::kUsersAndGroups), (std::vector<unsigned>{31, 41}));
    EXPECT_THAT(store.calls(), Contains("put_Filter User, Group"));
    EXPECT_EQ(walk(DirectoryKind::kUsers), (std::vector<unsigned>{31}));
    EXPECT_THAT(store.calls(), Contains("put_Filter User, null"));
    EXPECT_EQ(walk(DirectoryKind::kGroups), (std::vector<unsigned>{41}));
    EXPECT_THAT(store.calls(), Contains("put_Filter Group, null"));
    EXPECT_EQ(walk(static_cast<DirectoryKind>(9)), (std::vector<unsigned>{41}));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, WithoutListOnlyCollects)
{
    EXPECT_EQ(walk(DirectoryKind::kUsers, false), (std::vector<unsigned>{31}));
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(store.count("sidDup"), 1);
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, AnEmptyContainerGivesAnEmptyList)
{
    directory.objects.clear();
    EXPECT_EQ(walk(DirectoryKind::kUsers), std::vector<unsigned>{});
    EXPECT_THAT(store.lines(), ElementsAre("Total Number of Objects enumerated is 0\n"));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, RowsTakeTheDomainFromTheSearchBase)
{
    const struct {
        const wchar_t* host;
        std::string row;
    } cases[] = {
        {L"WinNT://NORTH", "dora|NORTH\\dora|User|31"},
        {L"LDAP://north.example/ou=a/ou=b", "dora|north.example\\dora|User|31"},
        {L"LDAP:///x", "dora|\\dora|User|31"},
        {L"WinNT:NORTH", "|dora|User|31"},
        {nullptr, "|dora|User|31"},
    };
    for (const auto& c : cases) {
        context.host = c.host;
        ASSERT_TRUE(walk(DirectoryKind::kUsers));
        EXPECT_THAT(rows(), ElementsAre(c.row));
    }
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, TextsAreCutAt256Characters)
{
    const std::wstring host = L"WinNT://" + std::wstring(300, L'h');
    context.host = host.c_str();
    ASSERT_TRUE(walk(DirectoryKind::kUsers));
    EXPECT_EQ(sink->rows[0].fullName, std::wstring(248, L'h') + L"\\dora");
    context.host = L"WinNT://N";
    directory.objects[0].name = std::wstring(300, L'n');
    ASSERT_TRUE(walk(DirectoryKind::kUsers));
    EXPECT_EQ(sink->rows[0].fullName, L"N\\" + std::wstring(254, L'n'));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, TypeAndImageFollowTheClass)
{
    directory.objects = {{.name = L"a", .className = L"User", .sid = 31},
                         {.name = L"b", .className = std::nullopt, .sid = 32},
                         {.name = L"c", .className = L"user", .sid = 33},
                         {.name = L"d", .className = L"Computer", .sid = 34},
                         {.name = L"e", .className = L"", .sid = 35}};
    context.host = L"WinNT://N";
    ASSERT_TRUE(walk(DirectoryKind::kUsers));
    EXPECT_THAT(rows(), ElementsAre("a|N\\a|User|31", "b|N\\b|User|32", "c|N\\c|user|33",
                                    "d|N\\d|Computer|34", "e|N\\e||35"));
    const int images[] = {kUser, kUser, kGroup, kGroup, kGroup};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(sink->rows[i].image, images[i]);
        EXPECT_EQ(sink->rows[i].index, static_cast<int>(i));
    }
    EXPECT_THAT(store.lines(), Contains("  b((null))\n"));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, AnObjectWhoseNameCannotBeRead)
{
    directory.fails["get_Name"] = E_FAIL;
    directory.fails["get_Class"] = E_FAIL;
    context.host = L"WinNT://N";
    EXPECT_EQ(walk(DirectoryKind::kUsers), (std::vector<unsigned>{31}));
    EXPECT_THAT(rows(), ElementsAre("(null)|N\\(null)|User|31"));
    EXPECT_THAT(store.lines(), Contains("  (null)((null))\n"));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, ObjectsWithoutReadableSid)
{
    using Form = DirectoryObject::Form;
    const Form unreadable[] = {Form::kText, Form::kLongs, Form::kEmpty, Form::kCutOff, Form::kTwoDimensions};
    directory.objects = {{.name = L"none", .className = L"User"}};
    for (const Form form : unreadable) {
        directory.objects.push_back({.name = L"odd", .className = L"User", .sid = 50, .form = form});
    }
    directory.objects.push_back({.name = L"one", .className = L"User", .sid = 51, .form = Form::kFromOne});
    EXPECT_EQ(walk(DirectoryKind::kUsers), (std::vector<unsigned>{51}));
    EXPECT_THAT(rows(), ElementsAre("|none|User|null", "|odd|User|null", "|odd|User|null", "|odd|User|null",
                                    "|odd|User|null", "|odd|User|null", "|one|User|51"));
    // With preset owners, however few, an account that nobody can compare is left out.
    context.presetOwners = makePresets({});
    EXPECT_EQ(walk(DirectoryKind::kUsers), (std::vector<unsigned>{51}));
    EXPECT_THAT(rows(), ElementsAre("|one|User|51"));
    EXPECT_THAT(store.lines(), Contains("Total Number of Objects enumerated is 7\n"));
    expectNothingHeld();
}

// ---- failures

struct FailureCase {
    const char* function;
    std::vector<std::string> lines; ///< of the debug channel
};

class DirectoryFailure : public DirectoryWalkTest, public testing::WithParamInterface<FailureCase> {};

TEST_P(DirectoryFailure, EndsTheWalk)
{
    directory.fails[GetParam().function] = E_ACCESSDENIED;
    EXPECT_EQ(walk(DirectoryKind::kUsers), std::nullopt);
    EXPECT_EQ(store.lines(), GetParam().lines);
    EXPECT_EQ(store.calls().back(), "freeSidList L1");
    EXPECT_THAT(rows(), IsEmpty());
    expectNothingHeld();
}

const std::string kUnable = "Unable to list contents of: WinNT://NORTH\n";

INSTANTIATE_TEST_SUITE_P(
    Calls, DirectoryFailure,
    testing::Values(FailureCase{"ADsGetObject",
                                {"\"WinNT://NORTH\" is not a valid container object.\n", kUnable}},
                    FailureCase{"ADsBuildVarArrayStr", {kUnable}}, FailureCase{"put_Filter", {kUnable}},
                    FailureCase{"ADsBuildEnumerator", {kUnable}}, FailureCase{"ADsEnumerateNext", {kUnable}},
                    FailureCase{"QueryInterface", {kUnable}}),
    [](const auto& info) { return info.param.function; });

TEST_F(DirectoryWalkTest, AFailureInTheMiddleKeepsTheRowsAndDropsTheList)
{
    directory.objects.clear();
    for (unsigned i = 0; i < 250; ++i) {
        directory.objects.push_back({.name = L"u", .className = L"User", .sid = 100 + i});
    }
    directory.failingBatch = 3; // gives an error with 50 objects in hand
    EXPECT_EQ(walk(DirectoryKind::kUsers), std::nullopt);
    EXPECT_EQ(sink->rows.size(), 200u);
    EXPECT_EQ(store.lines().back(), kUnable);
    expectNothingHeld();

    directory.failingBatch = 0;
    directory.objects[120].isDirectoryObject = false; // the rest of its batch is released untouched
    EXPECT_EQ(walk(DirectoryKind::kUsers), std::nullopt);
    EXPECT_EQ(sink->rows.size(), 120u);
    EXPECT_EQ(store.lines().back(), kUnable);
    expectNothingHeld();

    directory.objects[120].isObject = false;
    EXPECT_EQ(walk(DirectoryKind::kUsers), std::nullopt);
    EXPECT_EQ(sink->rows.size(), 120u);
    EXPECT_EQ(store.lines().back(), kUnable);
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, SuccessWithoutAnObjectFailsWithoutALine)
{
    for (const char* const function : {"ADsGetObject", "ADsBuildEnumerator", "QueryInterface"}) {
        SCOPED_TRACE(function);
        directory.giveNothing = {function};
        EXPECT_EQ(walk(DirectoryKind::kUsers), std::nullopt);
        EXPECT_THAT(store.lines(), IsEmpty());
        expectNothingHeld();
    }
}

TEST_F(DirectoryWalkTest, OnlyTheFalseResultEndsTheWalk)
{
    directory.objects.clear();
    for (unsigned i = 0; i < 150; ++i) {
        directory.objects.push_back({.name = L"u", .className = L"User", .sid = 100 + i});
    }
    ASSERT_TRUE(walk(DirectoryKind::kUsers));
    EXPECT_EQ(store.count("ADsEnumerateNext"), 2);
    EXPECT_EQ(sink->rows.size(), 150u);
    directory.fullBatchAtEnd = true;
    ASSERT_TRUE(walk(DirectoryKind::kUsers));
    EXPECT_EQ(store.count("ADsEnumerateNext"), 3);
    EXPECT_EQ(sink->rows.size(), 150u);
    EXPECT_THAT(store.lines(), Contains("Total Number of Objects enumerated is 150\n"));
    expectNothingHeld();
}

TEST_F(DirectoryWalkTest, TenThousandObjectsLeaveNothingBehind)
{
    directory.objects.clear();
    for (unsigned i = 0; i < 10000; ++i) {
        directory.objects.push_back({.name = L"u", .className = L"User", .sid = 100 + i});
    }
    const std::optional<std::vector<unsigned>> found = walk(DirectoryKind::kUsers);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 10000u);
    EXPECT_EQ(sink->rows.size(), 10000u);
    expectNothingHeld();
}

// ---- faults

TEST_F(DirectoryWalkTest, AFaultWhileReleasingKeepsNothingElse)
{
    directory.objects.push_back({.name = L"more", .className = L"User", .sid = 32});
    for (const char* const kind : {"object", "enumerator", "container"}) {
        SCOPED_TRACE(kind);
        directory.releaseFaults = {kind};
        context.host = L"WinNT://NORTH";
        context.presetOwners = nullptr;
        ASSERT_TRUE(fill());
        EXPECT_THAT(store.lines(), Contains("DoList(Users) => sigsegv\n"));
        EXPECT_THAT(store.lines(), Contains("Total items = 2\n"));
        expectNothingHeld();
    }
}

/// The platform's own functions, with a path that no provider takes.
TEST_F(DirectoryWalkTest, ThePlatformRefusesABadPath)
{
    directoryPatch.reset();
    context.host = L"no such provider, LDAP:";
    ASSERT_TRUE(fill());
    EXPECT_THAT(store.lines(),
                ElementsAre("\"no such provider, LDAP:\" is not a valid container object.\n",
                            "Unable to list contents of: no such provider, LDAP:\n",
                            "\"no such provider, LDAP:\" is not a valid container object.\n",
                            "Unable to list contents of: no such provider, LDAP:\n", "Total items = 2\n"));
    EXPECT_EQ(rows().size(), 4u);
    EXPECT_EQ(store.openSidLists(), 0);
    EXPECT_EQ(store.openSids(), 2);
}

} // namespace
