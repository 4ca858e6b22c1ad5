#include "frame/size_text.h"

#include "tests/support/oracles.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <random>

namespace {

constexpr std::int64_t kKiB = 1024;
constexpr std::int64_t kMiB = kKiB * 1024;
constexpr std::int64_t kGiB = kMiB * 1024;
constexpr std::int64_t kTiB = kGiB * 1024;

std::wstring sizeText(std::int64_t value)
{
    wchar_t buffer[kSizeTextCapacity];
    std::wmemset(buffer, L'#', kSizeTextCapacity);
    formatSize(buffer, value);
    return buffer;
}

std::wstring percentText(std::int64_t inUse, std::int64_t hardLimit)
{
    // A neighbour on either side shows a write outside of the buffer, on Windows too.
    struct {
        wchar_t before = L'<';
        wchar_t text[kPercentTextCapacity] = {L'#', L'#', L'#', L'#', L'#', L'#'};
        wchar_t after = L'>';
    } cell;
    formatPercent(cell.text, inUse, hardLimit);
    EXPECT_EQ(cell.before, L'<');
    EXPECT_EQ(cell.after, L'>');
    return cell.text;
}

TEST(FormatSize, NumbersStayInTheirUnitUpTo1048576)
{
    EXPECT_EQ(sizeText(1048576), L"1048576 ");
    EXPECT_EQ(sizeText(1048577), L"1024K");
    EXPECT_EQ(sizeText(100 * kMiB), L"102400K");
    EXPECT_EQ(sizeText(kGiB), L"1048576K");
    EXPECT_EQ(sizeText(kGiB + 1023), L"1048576K");
    EXPECT_EQ(sizeText(1048577 * kKiB - 1), L"1048576K");
    EXPECT_EQ(sizeText(1048577 * kKiB), L"1024M");
    EXPECT_EQ(sizeText(5 * kGiB), L"5120M");
    EXPECT_EQ(sizeText(kTiB), L"1048576M");
    EXPECT_EQ(sizeText(2 * kTiB), L"2048G");
    EXPECT_EQ(sizeText(1024 * kTiB), L"1048576G");
    EXPECT_EQ(sizeText(2048 * kTiB), L"2048T");
}

TEST(FormatSize, SmallAndNegativeValuesAreBytes)
{
    EXPECT_EQ(sizeText(0), L"0 ");
    EXPECT_EQ(sizeText(1), L"1 ");
    EXPECT_EQ(sizeText(-1), L"-1 ");
    EXPECT_EQ(sizeText(-5 * kTiB), L"-5497558138880 ");
    EXPECT_EQ(sizeText(INT64_MIN), L"-9223372036854775808 ");
}

TEST(FormatSize, FifthDivisionLeavesNoUnitLetter)
{
    EXPECT_EQ(sizeText(1048576 * kTiB), L"1048576T");
    EXPECT_EQ(sizeText(1048577 * kTiB - 1), L"1048576T");
    EXPECT_EQ(sizeText(1048577 * kTiB), L"1024");
    EXPECT_EQ(sizeText(INT64_MAX), L"8191");
}

TEST(FormatSize, AgreesWithWholeUnits)
{
    std::mt19937_64 random(3);
    for (int round = 0; round < 100'000; ++round) {
        const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
        ASSERT_EQ(sizeText(value), oracles::sizeText(value)) << value;
    }
    for (int bit = 0; bit < 63; ++bit) { // and round the powers of two, where units change
        for (std::int64_t off = -1025; off <= 1025; ++off) {
            const std::int64_t value = (std::int64_t{1} << bit) + off;
            ASSERT_EQ(sizeText(value), oracles::sizeText(value)) << value;
        }
    }
}

TEST(FormatSize, ShownSizeReadsBackNeverLarger)
{
    std::mt19937_64 random(4);
    for (int round = 0; round < 20'000; ++round) {
        const auto value = static_cast<std::int64_t>(random() >> (4 + random() % 60)); // up to 2^60
        const std::int64_t back = parseSize(sizeText(value).c_str());
        ASSERT_LE(back, value);
        ASSERT_LE(value - back, value / 1024);
    }
}

TEST(ParseSize, UnitLettersInEitherCase)
{
    EXPECT_EQ(parseSize(L"5120M"), 5368709120);
    EXPECT_EQ(parseSize(L"1k"), kKiB);
    EXPECT_EQ(parseSize(L"1K"), kKiB);
    EXPECT_EQ(parseSize(L"1m"), kMiB);
    EXPECT_EQ(parseSize(L"1g"), kGiB);
    EXPECT_EQ(parseSize(L"1G"), kGiB);
    EXPECT_EQ(parseSize(L"1t"), kTiB);
    EXPECT_EQ(parseSize(L"1T"), kTiB);
    EXPECT_EQ(parseSize(L"1MB"), kMiB);
}

TEST(ParseSize, AnyOtherCharacterIsBytes)
{
    EXPECT_EQ(parseSize(L"7"), 7);
    EXPECT_EQ(parseSize(L"7b"), 7);
    EXPECT_EQ(parseSize(L"7 "), 7);
    EXPECT_EQ(parseSize(L"100 M"), 100); // the blank is the unit
    EXPECT_EQ(parseSize(L"05%"), 5);
    EXPECT_EQ(parseSize(L"1.5G"), 1);
    EXPECT_EQ(parseSize(L" \t12K"), 12 * kKiB);
}

TEST(ParseSize, NoNumberIsMinusOne)
{
    EXPECT_EQ(parseSize(L"abc"), -1);
    EXPECT_EQ(parseSize(L""), -1);
    EXPECT_EQ(parseSize(L"   "), -1);
    EXPECT_EQ(parseSize(L"-M"), -1);
    EXPECT_EQ(parseSize(L"M5"), -1);
    EXPECT_EQ(parseSize(L"-1"), -1); // cannot be told from no number
}

TEST(ParseSize, NegativeAndOverflowingNumbersWrap)
{
    EXPECT_EQ(parseSize(L"-5K"), -5 * kKiB);
    EXPECT_EQ(parseSize(L"8388608T"), INT64_MIN);
    EXPECT_EQ(parseSize(L"16777216T"), 0);
    EXPECT_EQ(parseSize(L"16777217T"), kTiB);
    EXPECT_EQ(parseSize(L"9223372036854775808"), INT64_MIN);
}

TEST(ParseCellSize, CountsIn32Bits)
{
    EXPECT_EQ(parseCellSize(L"7"), 7);
    EXPECT_EQ(parseCellSize(L"1k"), 1024);
    EXPECT_EQ(parseCellSize(L"1M"), 1048576);
    EXPECT_EQ(parseCellSize(L"1g"), 1073741824);
    EXPECT_EQ(parseCellSize(L"2G"), INT32_MIN);
    EXPECT_EQ(parseCellSize(L"3G"), -1073741824);
    EXPECT_EQ(parseCellSize(L"4G"), 0);
    EXPECT_EQ(parseCellSize(L"5G"), 1073741824);
    EXPECT_EQ(parseCellSize(L"-1K"), -1024);
    EXPECT_EQ(parseCellSize(L"4294967295"), -1);
    EXPECT_EQ(parseCellSize(L"4294967296"), 0);
    EXPECT_EQ(parseCellSize(L"4294967297M"), 1048576);
    EXPECT_EQ(parseCellSize(L"2147483648"), INT32_MIN);
}

TEST(ParseCellSize, KnowsNoTerabytes)
{
    EXPECT_EQ(parseCellSize(L"1t"), 1);
    EXPECT_EQ(parseCellSize(L"1T"), 1);
    EXPECT_EQ(parseCellSize(L"2147483648T"), INT32_MIN);
}

TEST(ParseCellSize, NoNumberIsMinusOne)
{
    EXPECT_EQ(parseCellSize(L""), -1);
    EXPECT_EQ(parseCellSize(L"G"), -1);
    EXPECT_EQ(parseCellSize(L"100 M"), 100);
}

TEST(ParseSizes, AgreeWithPaperArithmetic)
{
    std::mt19937_64 random(5);
    const std::wstring alphabet = L"0123456789 -+kKmMgGtTb%";
    for (int round = 0; round < 20'000; ++round) {
        std::wstring text(random() % 24, L'\0');
        for (wchar_t& c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        ASSERT_EQ(parseSize(text.c_str()), oracles::parsedSize(text)) << testing::PrintToString(text);
        ASSERT_EQ(parseCellSize(text.c_str()), oracles::parsedCellSize(text)) << testing::PrintToString(text);
    }
}

TEST(FormatPercent, AtLeastTwoDigits)
{
    EXPECT_EQ(percentText(0, 100), L"00%");
    EXPECT_EQ(percentText(5, 100), L"05%");
    EXPECT_EQ(percentText(50, 100), L"50%");
    EXPECT_EQ(percentText(100, 100), L"100%");
    EXPECT_EQ(percentText(99999, 100000), L"99%");
    EXPECT_EQ(percentText(9999, 100), L"9999%");
}

TEST(FormatPercent, MinusSignComesBesideTheTwoDigits)
{
    EXPECT_EQ(percentText(-1, 100), L"-01%");
    EXPECT_EQ(percentText(-50, 100), L"-50%");
    EXPECT_EQ(percentText(50, -100), L"-50%");
    EXPECT_EQ(percentText(-1, 1000), L"00%"); // towards zero, and zero has no sign
    EXPECT_EQ(percentText(-999, 100), L"-999%");
}

TEST(FormatPercent, CutToFiveCharacters)
{
    EXPECT_EQ(percentText(10000, 100), L"10000"); // exactly what fits is not enough for the sign
    EXPECT_EQ(percentText(123456, 100), L"12345");
    EXPECT_EQ(percentText(-1000, 100), L"-1000");
    EXPECT_EQ(percentText(INT32_MAX, 100), L"21474");
    EXPECT_EQ(percentText(INT32_MIN, 100), L"-2147");
}

TEST(FormatPercent, ShownValueIsCutTo32Bits)
{
    EXPECT_EQ(percentText(std::int64_t{1} << 32, 100), L"00%");
    EXPECT_EQ(percentText((std::int64_t{1} << 32) + 7, 100), L"07%");
    EXPECT_EQ(percentText((std::int64_t{1} << 31) + 7, 100), L"-2147");
}

TEST(FormatPercent, HundredfoldWrapsIn64Bits)
{
    EXPECT_EQ(percentText(std::int64_t{1} << 62, 1), L"00%"); // 2^62 * 100 = 25 * 2^64
    EXPECT_EQ(percentText((std::int64_t{1} << 62) + 1, 100), L"01%");
    EXPECT_EQ(percentText(INT64_MAX, 100), L"-01%");
}

TEST(FormatPercent, AgreesWithTheRuntimesFormat)
{
    std::mt19937_64 random(6);
    for (int round = 0; round < 50'000; ++round) {
        const auto percent = static_cast<std::int32_t>(random()) >> (random() % 32);
        char expected[kPercentTextCapacity];
        std::snprintf(expected, sizeof expected, "%2.2d%%", static_cast<int>(percent));
        ASSERT_EQ(percentText(percent, 100),
                  std::wstring(expected, expected + std::char_traits<char>::length(expected)))
            << percent;
    }
}

} // namespace
