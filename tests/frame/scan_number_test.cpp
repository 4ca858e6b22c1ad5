#include "frame/scan_number.h"

#include "tests/support/oracles.h"

#include <gtest/gtest.h>

#include <random>

namespace {

void expectScan(const std::wstring& text, bool found, std::int64_t number, wchar_t next)
{
    const ScannedNumber scanned = scanNumber(text.c_str());
    EXPECT_EQ(scanned.found, found) << testing::PrintToString(text);
    EXPECT_EQ(scanned.number, number) << testing::PrintToString(text);
    EXPECT_EQ(scanned.hasNext, next != L'\0') << testing::PrintToString(text);
    EXPECT_EQ(scanned.next, next) << testing::PrintToString(text);
}

TEST(ScanNumber, TakesTheCharacterDirectlyBehindTheNumber)
{
    expectScan(L"100M", true, 100, L'M');
    expectScan(L"7", true, 7, L'\0');
    expectScan(L"05%", true, 5, L'%');
    expectScan(L"1.5G", true, 1, L'.');
    expectScan(L"1,000", true, 1, L',');
    expectScan(L"1e5", true, 1, L'e');
    expectScan(L"0x1F", true, 0, L'x');
    expectScan(L"3\x2713", true, 3, L'\x2713');
}

TEST(ScanNumber, BlankBehindTheNumberIsTheNextCharacter)
{
    expectScan(L"100 M", true, 100, L' ');
    expectScan(L"100\tM", true, 100, L'\t');
}

TEST(ScanNumber, WhiteSpaceInFrontIsSkipped)
{
    expectScan(L"  12K", true, 12, L'K');
    expectScan(L"\t\n\v\f\r 12K", true, 12, L'K');
    expectScan(L"  \t", false, 0, L'\0');
}

TEST(ScanNumber, OneSignDirectlyBeforeTheDigits)
{
    expectScan(L"-1 ", true, -1, L' ');
    expectScan(L"+5k", true, 5, L'k');
    expectScan(L"-0", true, 0, L'\0');
    expectScan(L"--1", false, 0, L'\0');
    expectScan(L"+-1", false, 0, L'\0');
    expectScan(L"- 1", false, 0, L'\0');
    expectScan(L"-", false, 0, L'\0');
    expectScan(L"+k", false, 0, L'\0');
}

TEST(ScanNumber, NoNumber)
{
    expectScan(L"", false, 0, L'\0');
    expectScan(L"abc", false, 0, L'\0');
    expectScan(L"K5", false, 0, L'\0');
    expectScan(L".5", false, 0, L'\0');
    expectScan(L"\xFF11", false, 0, L'\0'); // a digit, but not one of the ten
    expectScan(L"\x0661", false, 0, L'\0');
}

TEST(ScanNumber, DigitsThatDoNotFitWrap)
{
    expectScan(L"9223372036854775807", true, INT64_MAX, L'\0');
    expectScan(L"9223372036854775808", true, INT64_MIN, L'\0');
    expectScan(L"-9223372036854775808", true, INT64_MIN, L'\0');
    expectScan(L"-9223372036854775809", true, INT64_MAX, L'\0');
    expectScan(L"18446744073709551615", true, -1, L'\0');
    expectScan(L"18446744073709551616", true, 0, L'\0');
    expectScan(L"18446744073709551617k", true, 1, L'k');
    expectScan(L"0000000000000000000000000000042", true, 42, L'\0');
}

TEST(ScanNumber, AgreesWithPaperArithmetic)
{
    std::mt19937_64 random(1);
    const std::wstring alphabet = L"0123456789019 \t+-kKmMgGtT%.x\x00A0\x3000";
    for (int round = 0; round < 20'000; ++round) {
        std::wstring text(random() % 30, L'\0');
        for (wchar_t& c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        const ScannedNumber expected = oracles::scan(text);
        expectScan(text, expected.found, expected.number, expected.next);
    }
}

TEST(ScanNumber, EveryPrintedNumberComesBack)
{
    std::mt19937_64 random(2);
    for (int round = 0; round < 20'000; ++round) {
        const auto number = static_cast<std::int64_t>(random()) >> (random() % 64);
        expectScan(std::to_wstring(number) + L"g", true, number, L'g');
    }
}

TEST(UnitShift, LettersInEitherCase)
{
    EXPECT_EQ(unitShift(L'k'), 10);
    EXPECT_EQ(unitShift(L'K'), 10);
    EXPECT_EQ(unitShift(L'm'), 20);
    EXPECT_EQ(unitShift(L'M'), 20);
    EXPECT_EQ(unitShift(L'g'), 30);
    EXPECT_EQ(unitShift(L'G'), 30);
    EXPECT_EQ(unitShift(L't'), 40);
    EXPECT_EQ(unitShift(L'T'), 40);
}

TEST(UnitShift, AnyOtherCharacterIsBytes)
{
    for (unsigned c = 0; c <= 0xFFFF; ++c) {
        const auto unit = static_cast<wchar_t>(c);
        if (std::wstring_view(L"kKmMgGtT").find(unit) == std::wstring_view::npos) {
            ASSERT_EQ(unitShift(unit), 0) << c;
        }
    }
}

TEST(Scaled, WrapsInsteadOfOverflowing)
{
    EXPECT_EQ(scaled(1, 40), std::int64_t{1} << 40);
    EXPECT_EQ(scaled(-1, 10), -1024);
    EXPECT_EQ(scaled(INT64_MAX, 10), -1024);
    EXPECT_EQ(scaled(std::int64_t{1} << 24, 40), 0);
    EXPECT_EQ(scaled(std::int64_t{1} << 23, 40), INT64_MIN);
}

} // namespace
