// Rules made for groups, kept for accounts that join the groups later.
#include "store_test.h"

namespace {

using namespace store_test;

constexpr const wchar_t* kFolder = L"D:\\Projects";
constexpr const wchar_t* kUsers = L"S-1-5-32-545";

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
    track({kFolder, 5, 4, 3, kUsers});
    track({L"D:\\B\u00FCro", 6, -1, 0, L"S-1-5-32-544"});
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(bytesOf(file()), linesOf("5\t4\t3\tS-1-5-32-545\tD:\\Projects\r\n"
                                       "6\t-1\t0\tS-1-5-32-544\tD:\\B\xC3\xBCro\r\n"));
}

TEST_F(TrackListTest, ALaterRuleForTheSameGroupAndFolderTakesThePlace)
{
    track({kFolder, 5, 4, 3, kUsers});
    track({kFolder, 6, 5, 4, L"S-1-5-32-544"});
    track({L"d:/PROJECTS/", 7, 6, 5, kUsers});
    EXPECT_EQ(bytesOf(file()), linesOf("7\t6\t5\tS-1-5-32-545\td:/PROJECTS/\r\n"
                                       "6\t5\t4\tS-1-5-32-544\tD:\\Projects\r\n"));
}

TEST_F(TrackListTest, OnlyTheRuleItselfIsKeptOfAChain)
{
    addToTrackList(chainOf({{kFolder, 5, 4, 3, kUsers}, {kFolder, 6, 5, 4, L"S-1-5-32-544"}}).get());
    EXPECT_EQ(bytesOf(file()), linesOf("5\t4\t3\tS-1-5-32-545\tD:\\Projects\r\n"));
}

TEST_F(TrackListTest, RulesThatCannotBeKeptAreReported)
{
    track({kFolder, 5, 4, 3, kUsers});
    const std::string before = bytesOf(file());
    addToTrackList(nullptr);
    EXPECT_TRUE(reported(L"No rule was given"));
    track({kFolder, 0, 0, 0, kUsers});
    EXPECT_TRUE(reported(L"no hard limit"));
    track({kFolder, 5, 6, 0, kUsers});
    EXPECT_TRUE(reported(L"a soft limit above it"));
    track({L"", 5, 4, 3, kUsers});
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
