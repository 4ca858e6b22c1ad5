// Rules made for groups, kept for accounts that join the groups later.
#include "store_test.h"

namespace {

using namespace store_test;

constexpr const wchar_t* kTracked = L"D:\\Projects";
constexpr const wchar_t* kAccount = L"S-1-5-32-545";

class TrackListTest : public StoreTest {
protected:
    std::filesystem::path file() const { return data() / "tracked-rules.txt"; }

    static void track(const Rule& rule) { addToTrackList(chainOf({rule}).get()); }

    static std::string linesOf(const std::string& rules)
    {
        return checked(
            "lornix tracked-rules 1\r\n# hard limit, soft limit, in use (bytes); account; folder\r\n" +
            rules);
    }
};

TEST_F(TrackListTest, RulesAreKeptInTheirOrder)
{
    track({kTracked, 5, 4, 3, kAccount});
    track({L"D:\\B\u00FCro", 6, -1, 0, L"S-1-5-32-544"});
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(bytesOf(file()), linesOf("5\t4\t3\tS-1-5-32-545\tD:\\Projects\r\n"
                                       "6\t-1\t0\tS-1-5-32-544\tD:\\B\xC3\xBCro\r\n"));
}

TEST_F(TrackListTest, ALaterRuleForTheSameGroupAndFolderTakesThePlace)
{
    track({kTracked, 5, 4, 3, kAccount});
    track({kTracked, 6, 5, 4, L"S-1-5-32-544"});
    track({L"d:/PROJECTS/", 7, 6, 5, kAccount});
    EXPECT_EQ(bytesOf(file()), linesOf("7\t6\t5\tS-1-5-32-545\td:/PROJECTS/\r\n"
                                       "6\t5\t4\tS-1-5-32-544\tD:\\Projects\r\n"));
}

TEST_F(TrackListTest, OnlyTheRuleItselfIsKeptOfAChain)
{
    addToTrackList(chainOf({{kTracked, 5, 4, 3, kAccount}, {kTracked, 6, 5, 4, L"S-1-5-32-544"}}).get());
    EXPECT_EQ(bytesOf(file()), linesOf("5\t4\t3\tS-1-5-32-545\tD:\\Projects\r\n"));
}

TEST_F(TrackListTest, RulesThatCannotBeKeptAreReported)
{
    track({kTracked, 5, 4, 3, kAccount});
    const std::string before = bytesOf(file());
    addToTrackList(nullptr);
    EXPECT_TRUE(reported(L"No rule was given"));
    track({kTracked, 0, 0, 0, kAccount});
    EXPECT_TRUE(reported(L"no hard limit"));
    track({kTracked, 5, 6, 0, kAccount});
    EXPECT_TRUE(reported(L"a soft limit above it"));
    track({L"", 5, 4, 3, kAccount});
    EXPECT_TRUE(reported(L"no folder"));
    std::uint8_t invalid[16] = {9};
    QuotaRule rule{};
    wchar_t folder[] = L"D:\\Projects";
    rule.path = folder;
    rule.hardLimit = 5;
    rule.sid = invalid;
    addToTrackList(&rule);
    EXPECT_TRUE(reported(L"no valid account"));
    EXPECT_EQ(bytesOf(file()), before);
}

} // namespace
