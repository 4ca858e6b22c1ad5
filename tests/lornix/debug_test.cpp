// The debug channel.
#include "child.h"
#include "store_test.h"

#include "tests/support/faulting_call.h"
#include "tests/support/import_patch.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace {

using namespace store_test;

std::string shown;

void WINAPI takeShown(const char* text)
{
    shown += text;
}

class DebugTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        m_log = root() / L"log \u4E2D.txt";
        shown.clear();
        SetEnvironmentVariableW(L"LORNIX_LOG", m_log.c_str());
    }
    void TearDown() override
    {
        SetEnvironmentVariableW(L"LORNIX_LOG", nullptr);
        StoreTest::TearDown();
    }

    std::filesystem::path m_log;

private:
    ImportPatch m_debugger{storeModule(), "OutputDebugStringA", &takeShown};
};

TEST_F(DebugTest, LinesGoToTheDebuggerAndToTheLog)
{
    ODS("first %d\n", 1);
    ODS("second\n");
    ODS("no line end");
    ODS("%s", "");
    EXPECT_EQ(bytesOf(m_log), "first 1\nsecond\nno line end");
    EXPECT_EQ(shown, "first 1\nsecond\nno line end");
}

TEST_F(DebugTest, WithoutTheVariableThereIsNoLog)
{
    SetEnvironmentVariableW(L"LORNIX_LOG", nullptr);
    ODS("line\n");
    SetEnvironmentVariableW(L"LORNIX_LOG", L"");
    ODS("line\n");
    EXPECT_FALSE(std::filesystem::exists(m_log));
    EXPECT_EQ(shown, "line\nline\n");
}

TEST_F(DebugTest, TheLogIsAppendedToAndMayBeMovedAway)
{
    writeBytes(m_log, "before\n");
    ODS("one\n");
    std::filesystem::rename(m_log, root() / "moved");
    ODS("two\n");
    EXPECT_EQ(bytesOf(root() / "moved"), "before\none\n");
    EXPECT_EQ(bytesOf(m_log), "two\n");
}

TEST_F(DebugTest, ALogThatCannotBeWrittenIsDoneWithout)
{
    SetEnvironmentVariableW(L"LORNIX_LOG", (root() / "missing" / "log").c_str());
    ODS("line\n");
    SetEnvironmentVariableW(L"LORNIX_LOG", root().c_str());
    ODS("line\n");
    EXPECT_EQ(shown, "line\nline\n");
}

TEST_F(DebugTest, ConversionsAreThoseOfTheRuntime)
{
    struct Case {
        std::string expected;
        std::string got;
    };
    const auto line = [this](auto... arguments) {
        std::filesystem::remove(m_log);
        ODS(arguments...);
        const std::string text = bytesOf(m_log);
        char expected[500];
        _snprintf(expected, sizeof expected, arguments..., nullptr); // one more, so that there is always one
        EXPECT_EQ(text, expected);
        return text;
    };
    EXPECT_EQ(line("%d %i %u|", -5, 6, 7u), "-5 6 7|");
    EXPECT_EQ(line("%lu %ld %lx|", 4000000000ul, -3l, 255ul), "4000000000 -3 ff|");
    EXPECT_EQ(line("%I64d %I64u %I64x|", INT64_MIN, UINT64_MAX, std::int64_t{255}),
              "-9223372036854775808 18446744073709551615 ff|");
    EXPECT_EQ(line("%p|", reinterpret_cast<void*>(0x1234)), "0000000000001234|");
    EXPECT_EQ(line("%X %#x %08X %x|", 0xABu, 0xABu, 0xABu, 0xABu), "AB 0xab 000000AB ab|");
    EXPECT_EQ(line("%s|%10s|%-10s|%.2s|%*s|", "abc", "abc", "abc", "abc", 5, "abc"),
              "abc|       abc|abc       |ab|  abc|");
    EXPECT_EQ(line("%c%c|%5c|", 'a', 'b', 'c'), "ab|    c|");
    EXPECT_EQ(line("%.3f %g %e|", 3.14159, 0.5, 1e10), "3.142 0.5 1.000000e+010|");
    EXPECT_EQ(line("%% 100%%|"), "% 100%|");
    EXPECT_EQ(line("%+d % d %05d %-5d|", 5, 5, 5, 5), "+5  5 00005 5    |");
    EXPECT_EQ(line("%ls|%10ls|%-10ls|%.2ls|%*.*ls|", L"abc", L"abc", L"abc", L"abc", 5, 1, L"abc"),
              "abc|       abc|abc       |ab|    a|");
    EXPECT_EQ(line("%S|%lc|%C|", L"wide", L'x', L'y'), "wide|x|y|");
    EXPECT_EQ(line("%hs|%-*d|", "narrow", 6, 42), "narrow|42    |");
    EXPECT_EQ(
        line("%d %ls %I64d %s %p %f %ls %d|", 1, L"two", std::int64_t{3}, "four", nullptr, 5.5, L"six", 7),
        "1 two 3 four 0000000000000000 5.500000 six 7|");
    EXPECT_EQ(line("\"%S\" is not a valid container object.\n", L"WinNT://x"),
              "\"WinNT://x\" is not a valid container object.\n");
}

TEST_F(DebugTest, NullStringsAreSpelledOut)
{
    ODS("%ls %S %s\n", nullptr, nullptr, nullptr);
    EXPECT_EQ(bytesOf(m_log), "(null) (null) (null)\n");
}

TEST_F(DebugTest, WideTextComesThroughWhole)
{
    ODS("path %ls: %d\n", L"D:\\B\u00FCro\\\u4E2D\u6587 \xD83D\xDCBE", 5);
    EXPECT_EQ(bytesOf(m_log), "path D:\\B\xC3\xBCro\\\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x92\xBE: 5\n");
    EXPECT_TRUE(shown.starts_with("path D:\\B")) << shown;
    EXPECT_TRUE(shown.ends_with(": 5\n")) << "what does not fit the code page takes nothing else with it";

    std::filesystem::remove(m_log);
    ODS("%S|%lc|%.1ls|%ls\n", L"\u4E2D", L'\u6587', L"\u4E2D\u6587", L"\xD800");
    EXPECT_EQ(bytesOf(m_log), "\xE4\xB8\xAD|\xE6\x96\x87|\xE4\xB8\xAD|\xEF\xBF\xBD\n");
}

TEST_F(DebugTest, NarrowTextIsOfTheCodePage)
{
    const char text[] = "caf\xE9";
    wchar_t wide[10] = L"";
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide, 10);
    ODS("%s\n", text);
    EXPECT_EQ(shown, std::string(text) + "\n");
    std::string expected;
    expected.resize(40);
    expected.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide, -1, expected.data(), 40, nullptr, nullptr) - 1));
    EXPECT_EQ(bytesOf(m_log), expected + "\n");
}

TEST_F(DebugTest, LongLines)
{
    const std::wstring wide(100000, L'w');
    const std::string narrow(100000, 'n');
    ODS("%ls%s\n", wide.c_str(), narrow.c_str());
    EXPECT_EQ(bytesOf(m_log), std::string(100000, 'w') + narrow + "\n");
}

TEST_F(DebugTest, ALineHasAnEnd)
{
    constexpr std::size_t kLongest = 1 << 20;
    ODS("%*d\n", 50000000, 5);
    EXPECT_EQ(shown.size(), kLongest);
    shown.clear();
    ODS("%s\n", std::string(kLongest - 1, 'n').c_str());
    EXPECT_EQ(shown.size(), kLongest) << "just as long as can be";
    shown.clear();
    ODS("%d %s %99999999999ls|\n", 7, std::string(kLongest, 'n').c_str(), L"w");
    EXPECT_TRUE(shown.starts_with("7 nnn"));
    EXPECT_EQ(shown.size(), kLongest);
}

TEST_F(DebugTest, BadFormats)
{
    ODS(nullptr);
    const char* volatile odd = "%";
    ODS(odd);
    odd = "50% of\n";
    ODS(odd, 7);
    EXPECT_TRUE(shown.starts_with("%50"));
}

TEST_F(DebugTest, StandardErrorIsALogToo)
{
    const std::filesystem::path file = root() / "stderr";
    const HANDLE before = GetStdHandle(STD_ERROR_HANDLE);
    const HANDLE out =
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
    SetStdHandle(STD_ERROR_HANDLE, out);
    SetEnvironmentVariableW(L"LORNIX_LOG", L"-");
    ODS("to %ls\n", L"stderr \u4E2D");
    ODS("again\n");
    SetStdHandle(STD_ERROR_HANDLE, before);
    CloseHandle(out);
    EXPECT_EQ(bytesOf(file), "to stderr \xE4\xB8\xAD\nagain\n");
}

DWORD WINAPI speakOnce(void*)
{
    ODS("after the fault\n");
    return 0;
}

TEST_F(DebugTest, AFaultInADamagedChainLeavesTheChannelOpen)
{
    QuotaRule rule{};
    rule.next = reinterpret_cast<QuotaRule*>(16);
    EXPECT_EQ(faultOf([&] { debug(&rule); }), EXCEPTION_ACCESS_VIOLATION);
    HANDLE thread = CreateThread(nullptr, 0, speakOnce, nullptr, 0, nullptr);
    constexpr DWORD kLongest = 10000; // milliseconds
    EXPECT_EQ(WaitForSingleObject(thread, kLongest), WAIT_OBJECT_0) << "it waits for who has faulted";
    CloseHandle(thread);
    EXPECT_NE(bytesOf(m_log).find("after the fault"), std::string::npos);
}

DWORD WINAPI speakOften(void*)
{
    for (int i = 0; i < 200; ++i) {
        ODS("%lu line %d\n", GetCurrentThreadId(), i);
    }
    return 0;
}

TEST_F(DebugTest, LinesOfThreadsDoNotMix)
{
    std::vector<HANDLE> threads;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(CreateThread(nullptr, 0, speakOften, nullptr, 0, nullptr));
    }
    WaitForMultipleObjects(4, threads.data(), TRUE, INFINITE);
    for (const HANDLE thread : threads) {
        CloseHandle(thread);
    }
    std::istringstream lines(bytesOf(m_log));
    std::multiset<std::string> found;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_NE(line.find(" line "), std::string::npos) << line;
        found.insert(line.substr(line.find(" line ")));
    }
    EXPECT_EQ(found.size(), 800u);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(found.count(" line " + std::to_string(i)), 4u);
    }
}

TEST_F(DebugTest, ProcessesThatWriteTheSameLogLoseNothing)
{
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < 3; ++i) {
        children.push_back(std::make_unique<Child>(L"speak", std::vector<std::wstring>{data().wstring()}));
    }
    for (const auto& child : children) {
        EXPECT_EQ(child->wait(), 0u);
    }
    std::istringstream lines(bytesOf(m_log));
    std::set<std::string> found;
    for (std::string line; std::getline(lines, line);) {
        found.insert(line);
    }
    EXPECT_EQ(found.size(), 150u);
}

TEST_F(DebugTest, ChainsAreDumpedRuleByRule)
{
    const Chain chain = chainOf({{L"D:\\\u4E2D", 5, 4, 3, L"S-1-5-32-545"}, {L"D:/B", 6, -1, -1}});
    debug(chain.get());
    char expected[1000];
    _snprintf(
        expected, sizeof expected,
        "rule %p: type 2, in use 3, hard limit 5, soft limit 4, next %p, prev %p, account S-1-5-32-545, path "
        "D:\\\xE4\xB8\xAD\n"
        "rule %p: type 1, in use -1, hard limit 6, soft limit -1, next %p, prev %p, account anyone, path "
        "D:/B\n",
        static_cast<void*>(chain.get()), static_cast<void*>(chain->next), nullptr,
        static_cast<void*>(chain->next), nullptr, static_cast<void*>(chain.get()));
    EXPECT_EQ(bytesOf(m_log), expected);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 2);
}

TEST_F(DebugTest, OddRecordsAreDumpedToo)
{
    std::uint8_t invalid[] = {9, 9, 9, 9, 9, 9, 9, 9};
    QuotaRule rule{};
    rule.sid = invalid;
    debug(&rule);
    EXPECT_NE(bytesOf(m_log).find("account invalid, path (null)\n"), std::string::npos);
    std::filesystem::remove(m_log);
    debug(nullptr);
    EXPECT_FALSE(std::filesystem::exists(m_log) && !bytesOf(m_log).empty());
}

bool hasMonitor = false;

/// As if a program that shows the debug output of all processes ran, or none: the real ones may come and go.
HANDLE WINAPI openMonitorEvent(DWORD access, BOOL inherit, const wchar_t* name)
{
    if (wcscmp(name, L"DBWIN_BUFFER_READY") != 0) {
        return OpenEventW(access, inherit, name);
    }
    return hasMonitor ? CreateEventW(nullptr, FALSE, FALSE, nullptr) : nullptr;
}

TEST_F(DebugTest, LongChainsAreWholeAndOnlySpelledOutForSomebody)
{
    std::vector<Rule> rules;
    for (int i = 0; i < 20000; ++i) {
        rules.push_back({L"D:\\Projects", i + 1});
    }
    const Chain chain = chainOf(rules);
    debug(chain.get());
    const std::string text = bytesOf(m_log);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20000);
    EXPECT_TRUE(shown == text);

    const ImportPatch monitor(storeModule(), "OpenEventW", &openMonitorEvent);
    ASSERT_EQ(monitor.count(), 1);
    SetEnvironmentVariableW(L"LORNIX_LOG", nullptr);
    shown.clear();
    hasMonitor = false;
    debug(chain.get());
    EXPECT_TRUE(shown.empty()) << "nobody listens";
    hasMonitor = true;
    debug(chain.get());
    EXPECT_TRUE(shown == text);
}

} // namespace
