#include "tests/processes/enumeration.h"
#include "tests/processes/run_time_functions.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <pdh.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

PDH_HQUERY const kQuery = reinterpret_cast<PDH_HQUERY>(UINT_PTR{0x11});
PDH_HCOUNTER const kCounter = reinterpret_cast<PDH_HCOUNTER>(UINT_PTR{0x22});

struct Item {
    LONGLONG value;
    const wchar_t* name;
};
std::vector<Item> items;
std::vector<std::string> calls;
std::map<std::string, DWORD> statuses; ///< of the calls that are to fail, by name
DWORD sizeStatus = 0x800007D2;
int openQueries = 0;

PDH_STATUS answer(const std::string& call, const std::string& detail = "")
{
    calls.push_back(detail.empty() ? call : call + " " + detail);
    const auto found = statuses.find(call);
    return found == statuses.end() ? 0 : static_cast<PDH_STATUS>(found->second);
}

std::string orNull(const wchar_t* text)
{
    return text != nullptr ? utf8(text) : "null";
}

PDH_STATUS WINAPI lookUpName(const wchar_t* machine, DWORD index, wchar_t* name, DWORD* room)
{
    EXPECT_EQ(*room, 160u);
    std::wcscpy(name, index == 230 ? L"Prozess" : L"Kennung");
    return answer("name" + std::to_string(index), orNull(machine));
}

PDH_STATUS WINAPI makePath(PDH_COUNTER_PATH_ELEMENTS_W* elements, wchar_t* path, DWORD* room, DWORD flags)
{
    EXPECT_EQ(*room, 1024u);
    EXPECT_EQ(flags, 0u);
    EXPECT_EQ(elements->szParentInstance, nullptr);
    EXPECT_EQ(elements->dwInstanceIndex, 0u);
    std::wcscpy(path, L"\\the path");
    return answer("path", orNull(elements->szMachineName) + " " + orNull(elements->szObjectName) + " " +
                              orNull(elements->szInstanceName) + " " + orNull(elements->szCounterName));
}

PDH_STATUS WINAPI openQuery(const wchar_t* source, DWORD_PTR user, PDH_HQUERY* query)
{
    EXPECT_EQ(source, nullptr);
    EXPECT_EQ(user, 0u);
    const PDH_STATUS status = answer("open");
    if (status == 0) {
        *query = kQuery;
        ++openQueries;
    }
    return status;
}

PDH_STATUS WINAPI addCounter(PDH_HQUERY query, const wchar_t* path, DWORD_PTR user, PDH_HCOUNTER* counter)
{
    EXPECT_EQ(query, kQuery);
    EXPECT_EQ(user, 0u);
    *counter = kCounter;
    return answer("add", utf8(path));
}

PDH_STATUS WINAPI collect(PDH_HQUERY query)
{
    EXPECT_EQ(query, kQuery);
    return answer("collect");
}

PDH_STATUS WINAPI getArray(PDH_HCOUNTER counter, DWORD* size, DWORD* count, PDH_RAW_COUNTER_ITEM_W* buffer)
{
    EXPECT_EQ(counter, kCounter);
    if (buffer == nullptr) {
        EXPECT_EQ(*size, 0u);
        *size = static_cast<DWORD>(items.size() * sizeof(PDH_RAW_COUNTER_ITEM_W));
        calls.emplace_back("size");
        return static_cast<PDH_STATUS>(sizeStatus);
    }
    EXPECT_EQ(*size, items.size() * sizeof(PDH_RAW_COUNTER_ITEM_W));
    for (size_t i = 0; i < items.size(); ++i) {
        buffer[i] = {};
        buffer[i].szName = const_cast<wchar_t*>(items[i].name);
        buffer[i].RawValue.FirstValue = items[i].value;
        buffer[i].RawValue.SecondValue = 99;
    }
    *count = static_cast<DWORD>(items.size());
    return answer("array");
}

PDH_STATUS WINAPI closeQuery(PDH_HQUERY query)
{
    EXPECT_EQ(query, kQuery);
    --openQueries;
    calls.emplace_back("close");
    SetLastError(5555); // as the platform may
    return 0;
}

struct CountersTest : testing::Test {
    CountersTest()
    {
        calls.clear();
        statuses.clear();
        sizeStatus = 0x800007D2;
        openQueries = 0;
        items = {{0, L"Idle"}, {4, L"System"}, {0, L"_Total"}};
        functions.put("PdhOpenQueryW", &openQuery);
        functions.put("PdhAddCounterW", &addCounter);
        functions.put("PdhGetRawCounterArrayW", &getArray);
        functions.put("PdhCollectQueryData", &collect);
        functions.put("PdhCloseQuery", &closeQuery);
        functions.put("PdhMakeCounterPathW", &makePath);
        functions.put("PdhLookupPerfNameByIndexW", &lookUpName);
    }
    RunTimeFunctions functions{thisProgram()};
    HeldThings held{thisProgram()};

    void expectFailure(DWORD error) const
    {
        const Enumeration seen = Enumeration::of(enumerateProcessCounters);
        EXPECT_EQ(seen.result, 0);
        EXPECT_EQ(seen.error, error);
        EXPECT_THAT(seen.calls, IsEmpty());
        expectNothingHeld();
    }
    void expectNothingHeld() const
    {
        EXPECT_EQ(held.libraries, 0);
        EXPECT_EQ(held.heapBlocks, 0);
        EXPECT_EQ(openQueries, 0);
    }
};

} // namespace

TEST_F(CountersTest, TellsEachProcess)
{
    const Enumeration seen = Enumeration::of(enumerateProcessCounters, 0, L"\\\\server");
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("0 Idle", "4 System"));
    EXPECT_THAT(calls,
                ElementsAre("name230 \\\\server", "name784 \\\\server", "path \\\\server Prozess * Kennung",
                            "open", "add \\the path", "collect", "size", "array", "close"));
    EXPECT_EQ(held.loaded, "pdh.dll ");
    expectNothingHeld();
}

TEST_F(CountersTest, AsksThisMachineForNone)
{
    EXPECT_EQ(Enumeration::of(enumerateProcessCounters).result, 1);
    EXPECT_EQ(calls[0], "name230 null");
    EXPECT_EQ(calls[2], "path null Prozess * Kennung");
}

TEST_F(CountersTest, TakesTheLowHalfOfTheValueAndLeavesOutOnlyTheTotal)
{
    items = {{0x100000007, L"a"},      {0, L"_total"}, {5, L"_Total"},
             {0x100000000, L"_Total"}, {0, nullptr},   {6, nullptr}};
    EXPECT_THAT(Enumeration::of(enumerateProcessCounters).calls,
                ElementsAre("7 a", "0 _total", "5 _Total", "0 null", "6 null"));
}

TEST_F(CountersTest, StopsWhenTheCallbackSaysSo)
{
    items = {{1, L"a"}, {2, L"b"}, {3, L"c"}};
    const Enumeration seen = Enumeration::of(enumerateProcessCounters, 2);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("1 a", "2 b"));
    expectNothingHeld();
}

TEST_F(CountersTest, FailsWithTheStatusOfALookUp)
{
    for (const char* name : {"name230", "name784"}) {
        statuses = {{name, 0xC0000BDBu}};
        expectFailure(5); // access denied, as the platform's own error
        statuses = {{name, 0xC0000BB8u}};
        expectFailure(0xC0000BB8);
    }
    EXPECT_THAT(calls, testing::Not(testing::Contains("open")));
}

TEST_F(CountersTest, FailsWithTheStatusOfEachStep)
{
    for (const char* step : {"path", "open", "add", "collect", "array"}) {
        calls.clear();
        statuses = {{step, 0xC0000BDBu}}; // only of a look-up it becomes another
        expectFailure(0xC0000BDB);
        const bool opened = std::string(step) != "path" && std::string(step) != "open";
        EXPECT_EQ(calls.back() == "close", opened) << step;
    }
}

TEST_F(CountersTest, GoesOnOnlyAfterTwoAnswersToTheSize)
{
    sizeStatus = 0;
    EXPECT_EQ(Enumeration::of(enumerateProcessCounters).result, 1);
    sizeStatus = 0x800007D5;
    expectFailure(0x800007D5);
}

TEST_F(CountersTest, FailsWithoutMemory)
{
    held.failHeapAfter = 0;
    expectFailure(8);
    held.failHeapAfter = -1;
}

TEST_F(CountersTest, NeedsEachFunction)
{
    for (const char* name :
         {"PdhOpenQueryW", "PdhAddCounterW", "PdhGetRawCounterArrayW", "PdhCollectQueryData", "PdhCloseQuery",
          "PdhMakeCounterPathW", "PdhLookupPerfNameByIndexW"})
    {
        RunTimeFunctions without(thisProgram());
        without.remove(name);
        expectFailure(127);
    }
    EXPECT_THAT(calls, IsEmpty());
}

TEST(CountersSystemTest, ListsProcessesOrTellsWhyNot)
{
    const Enumeration seen = Enumeration::of(enumerateProcessCounters);
    if (seen.result != 0) {
        EXPECT_THAT(seen.calls, testing::Not(IsEmpty()));
    } else {
        // The runtime that these tests run on mostly has no counters of processes.
        EXPECT_NE(seen.error, 4711u);
        EXPECT_NE(seen.error, 127u);
        EXPECT_THAT(seen.calls, IsEmpty());
    }
}
