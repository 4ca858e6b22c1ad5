#include "host/command_line.h"

#include <gmock/gmock.h>

using host::readCommandLine;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CommandLine, WithoutWordsLeavesAllToTheStore)
{
    const host::CommandLine line = readCommandLine({});
    EXPECT_EQ(line.problem, L"");
    EXPECT_EQ(line.dataFolder, L"");
    EXPECT_THAT(line.folders, IsEmpty());
    EXPECT_FALSE(line.dump);
    EXPECT_FALSE(line.listObject);
}

TEST(CommandLine, ChoosesTheListFunctionsByObject)
{
    const host::CommandLine line = readCommandLine({L"--list-object", L"--folder", L"C:\\a"});
    EXPECT_EQ(line.problem, L"");
    EXPECT_TRUE(line.listObject);
    EXPECT_THAT(line.folders, ElementsAre(L"C:\\a"));
}

TEST(CommandLine, TakesFoldersInTheirOrder)
{
    const host::CommandLine line =
        readCommandLine({L"--folder", L"C:\\b", L"--data", L"D:\\store", L"--dump", L"--folder", L"C:\\a"});
    EXPECT_EQ(line.problem, L"");
    EXPECT_EQ(line.dataFolder, L"D:\\store");
    EXPECT_THAT(line.folders, ElementsAre(L"C:\\b", L"C:\\a"));
    EXPECT_TRUE(line.dump);
}

TEST(CommandLine, NamesAnUnknownWord)
{
    EXPECT_EQ(readCommandLine({L"--dmup"}).problem, L"\"--dmup\" is not an option of this program.");
    EXPECT_EQ(readCommandLine({L"C:\\Data"}).problem, L"\"C:\\Data\" is not an option of this program.");
}

TEST(CommandLine, MissesAFolder)
{
    EXPECT_EQ(readCommandLine({L"--folder"}).problem, L"--folder needs a folder after it.");
    EXPECT_EQ(readCommandLine({L"--data", L""}).problem, L"--data needs a folder after it.");
}

TEST(CommandLine, DoesNotTakeAnOptionForAFolder)
{
    const host::CommandLine line = readCommandLine({L"--data", L"--dump"});
    EXPECT_EQ(line.problem, L"--data needs a folder after it.");
    EXPECT_TRUE(line.dump);
}

TEST(CommandLine, TellsTheFirstOfSeveralProblems)
{
    EXPECT_EQ(readCommandLine({L"one", L"two", L"--data"}).problem,
              L"\"one\" is not an option of this program.");
}

TEST(CommandLine, RefusesASecondDataFolder)
{
    const host::CommandLine line = readCommandLine({L"--data", L"C:\\a", L"--data", L"C:\\b"});
    EXPECT_EQ(line.problem, L"--data may be given once only.");
    EXPECT_EQ(line.dataFolder, L"C:\\a");
}
