#include "frame/size_text.h"

#include "frame/number_text.h"
#include "frame/scan_number.h"

#include <cstddef>

void formatSize(wchar_t (&buffer)[kSizeTextCapacity], std::int64_t value)
{
    static constexpr wchar_t kUnits[] = L" KMGT";
    int unit = 0;
    for (int step = 0; step < 5; ++step) {
        if (value > 0x100000) {
            value /= 1024;
            ++unit;
        }
    }
    wchar_t* end = writeNumber(buffer, value);
    *end++ = kUnits[unit]; // the fifth division reaches the terminator: the text then ends after the digits
    *end = L'\0';
}

std::int64_t parseSize(const wchar_t* text)
{
    const ScannedNumber scanned = scanNumber(text);
    return scanned.found ? scaled(scanned.number, unitShift(scanned.next)) : -1;
}

std::int32_t parseCellSize(const wchar_t* text)
{
    const ScannedNumber scanned = scanNumber(text);
    if (!scanned.found) {
        return -1;
    }
    const int shift = unitShift(scanned.next);
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(scaled(scanned.number, shift > 30 ? 0 : shift)));
}

void formatPercent(wchar_t (&buffer)[kPercentTextCapacity], std::int64_t inUse, std::int64_t hardLimit)
{
    // QUIRK: a zero divisor faults, as hosts are told; volatile, so that the fault is not reasoned away.
    // ListFillTest.FaultsOnAHardLimitOfZero
    const volatile std::int64_t divisor = hardLimit;
    const auto hundredfold = static_cast<std::int64_t>(static_cast<std::uint64_t>(inUse) * 100u);
    const auto percent = static_cast<std::int32_t>(hundredfold / divisor);

    wchar_t text[24];
    wchar_t* end = text;
    if (percent < 0) {
        *end++ = L'-';
    }
    const std::int64_t magnitude = percent < 0 ? -std::int64_t{percent} : percent;
    if (magnitude < 10) {
        *end++ = L'0';
    }
    end = writeNumber(end, magnitude);
    *end++ = L'%';

    auto length = static_cast<std::size_t>(end - text);
    if (length > kPercentTextCapacity - 1) {
        length = kPercentTextCapacity - 1; // 10000 % and more do not fit the cell and are cut
    }
    for (std::size_t i = 0; i < length; ++i) {
        buffer[i] = text[i];
    }
    buffer[length] = L'\0';
}
