#include "policies/attribute_number.h"

#include "frame/scan_number.h"

std::int32_t attributeNumber(const wchar_t* text)
{
    if (text == nullptr) {
        return 0;
    }
    const ScannedNumber scanned = scanNumber(text);
    if (!scanned.found) {
        return 0;
    }
    // The letter applies to a negative number as well: "-1k" is -1024, while "-1x" stays the -1 of "no limit".
    return static_cast<std::int32_t>(scaled(scanned.number, unitShift(scanned.next)));
}
