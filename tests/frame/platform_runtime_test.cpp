// The parsers and formatters beside the formatted reading and writing of the platform's own runtime.
#include "frame/ignore_case.h"
#include "frame/scan_number.h"
#include "frame/size_text.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <random>
#include <string>

namespace {

/// The runtime's functions, taken by name: what the compiler's headers offer under these names are its own
/// versions, which saturate and read %c as a multi-byte character.
template <class Function>
Function* ofRuntime(const char* name)
{
    const HMODULE runtime = GetModuleHandleW(L"msvcrt.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(runtime, name)));
}

int (*const kRuntimeScan)(const wchar_t*, const wchar_t*,
                          ...) = ofRuntime<int(const wchar_t*, const wchar_t*, ...)>("swscanf");
int (*const kRuntimePrint)(wchar_t*, const wchar_t*,
                           ...) = ofRuntime<int(wchar_t*, const wchar_t*, ...)>("swprintf");
int (*const kRuntimePrintCut)(wchar_t*, size_t, const wchar_t*,
                              ...) = ofRuntime<int(wchar_t*, size_t, const wchar_t*, ...)>("_snwprintf");

void expectSameScan(const std::wstring& text)
{
    long long number = 0;
    wchar_t next = L'\0';
    const int fields = kRuntimeScan(text.c_str(), L"%I64d%c", &number, &next);
    const ScannedNumber scanned = scanNumber(text.c_str());
    ASSERT_EQ(scanned.found, fields >= 1) << testing::PrintToString(text);
    ASSERT_EQ(scanned.hasNext, fields == 2) << testing::PrintToString(text);
    ASSERT_EQ(scanned.number, number) << testing::PrintToString(text);
    ASSERT_EQ(scanned.next, next) << testing::PrintToString(text);

    long cell = -1;
    wchar_t unit = L'b';
    kRuntimeScan(text.c_str(), L"%ld%c", &cell, &unit);
    auto count = static_cast<unsigned long>(cell);
    switch (unit) {
    case L'G':
    case L'g':
        count *= 1024;
        [[fallthrough]];
    case L'M':
    case L'm':
        count *= 1024;
        [[fallthrough]];
    case L'K':
    case L'k':
        count *= 1024;
        break;
    default:
        break;
    }
    ASSERT_EQ(parseCellSize(text.c_str()), static_cast<std::int32_t>(count)) << testing::PrintToString(text);
}

std::wstring withCharacter(const wchar_t* before, unsigned character, const wchar_t* after)
{
    return std::wstring(before) + static_cast<wchar_t>(character) + after;
}

TEST(PlatformRuntime, EveryLeadingCharacter)
{
    for (unsigned c = 1; c <= 0xFFFF; ++c) {
        ASSERT_NO_FATAL_FAILURE(expectSameScan(withCharacter(L"", c, L"42k")));
        ASSERT_NO_FATAL_FAILURE(expectSameScan(withCharacter(L" ", c, L"-7")));
    }
}

TEST(PlatformRuntime, EveryCharacterBehindASignAndBehindTheNumber)
{
    for (unsigned c = 1; c <= 0xFFFF; ++c) {
        ASSERT_NO_FATAL_FAILURE(expectSameScan(withCharacter(L"-", c, L"9")));
        ASSERT_NO_FATAL_FAILURE(expectSameScan(withCharacter(L"12", c, L"3")));
        ASSERT_NO_FATAL_FAILURE(expectSameScan(withCharacter(L"0", c, L"")));
    }
}

TEST(PlatformRuntime, SignsAndZeros)
{
    for (const wchar_t* text :
         {L"",   L" ",     L"-",   L"+",   L"--1",   L"++1",   L"+-1",    L"-+1", L"- 1", L"+ 1",
          L"-0", L"+0",    L"-00", L"0",   L"00",    L"-01",   L"0-1",    L"1-1", L"1+",  L"0x1F",
          L"0X", L"-0x10", L"08",  L"0b1", L"1_000", L"1'000", L"\n-3\n", L"-\n3"})
    {
        ASSERT_NO_FATAL_FAILURE(expectSameScan(text));
    }
}

TEST(PlatformRuntime, NumbersThatDoNotFit)
{
    for (const wchar_t* text :
         {L"2147483647", L"2147483648", L"-2147483648", L"-2147483649", L"4294967295", L"4294967296",
          L"9223372036854775807", L"9223372036854775808", L"-9223372036854775808", L"-9223372036854775809",
          L"18446744073709551615", L"18446744073709551616", L"-18446744073709551616"})
    {
        ASSERT_NO_FATAL_FAILURE(expectSameScan(text));
        ASSERT_NO_FATAL_FAILURE(expectSameScan(std::wstring(text) + L"G"));
    }
    std::mt19937_64 random(11);
    for (int round = 0; round < 20'000; ++round) {
        std::wstring text = (random() & 1) != 0 ? L"-" : L"";
        for (std::size_t digits = 1 + random() % 60; digits > 0; --digits) {
            text += static_cast<wchar_t>(L'0' + random() % 10);
        }
        ASSERT_NO_FATAL_FAILURE(expectSameScan(text));
    }
}

TEST(PlatformRuntime, RandomTexts)
{
    std::mt19937_64 random(12);
    const std::wstring alphabet = L"0123456789 \t\n+-kKmMgGtTbB%.,xX\x00A0\x3000\xFF10\xD800\xFFFF";
    for (int round = 0; round < 200'000; ++round) {
        std::wstring text(random() % 12, L'\0');
        for (wchar_t& c : text) {
            c = random() % 16 == 0 ? static_cast<wchar_t>(1 + random() % 0xFFFF)
                                   : alphabet[random() % alphabet.size()];
        }
        ASSERT_NO_FATAL_FAILURE(expectSameScan(text));
    }
}

TEST(PlatformRuntime, SizeTexts)
{
    std::mt19937_64 random(13);
    for (int round = 0; round < 100'000; ++round) {
        const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
        std::int64_t number = value;
        int unit = 0;
        for (int step = 0; step < 5; ++step) {
            if (number > 0x100000) {
                number /= 1024;
                ++unit;
            }
        }
        wchar_t expected[kSizeTextCapacity];
        kRuntimePrint(expected, L"%I64d%c", static_cast<long long>(number), L" KMGT"[unit]);
        wchar_t text[kSizeTextCapacity];
        formatSize(text, value);
        ASSERT_STREQ(text, expected) << value;
    }
}

TEST(PlatformRuntime, PercentTexts)
{
    std::mt19937_64 random(14);
    for (int round = 0; round < 100'000; ++round) {
        const auto inUse = static_cast<std::int64_t>(random()) >> (random() % 64);
        const auto hardLimit = static_cast<std::int64_t>(random()) >> (random() % 64);
        const auto hundredfold = static_cast<std::int64_t>(static_cast<std::uint64_t>(inUse) * 100u);
        if (hardLimit == 0 || hardLimit == -1) {
            continue;
        }
        wchar_t expected[kPercentTextCapacity] = {};
        kRuntimePrintCut(expected, kPercentTextCapacity - 1, L"%2.2d%%",
                         static_cast<int>(hundredfold / hardLimit));
        wchar_t text[kPercentTextCapacity];
        formatPercent(text, inUse, hardLimit);
        ASSERT_STREQ(text, expected) << inUse << " of " << hardLimit;
    }
}

// A hard limit of 0 stops whoever shows it, with the processor's own fault.
TEST(PlatformRuntime, HardLimitOfZeroFaults)
{
    DWORD code = 0;
    __try
    {
        wchar_t text[kPercentTextCapacity];
        formatPercent(text, 1, 0);
    } __except (code = GetExceptionCode(), EXCEPTION_EXECUTE_HANDLER)
    {
    }
    EXPECT_EQ(code, static_cast<DWORD>(EXCEPTION_INT_DIVIDE_BY_ZERO));
}

} // namespace
