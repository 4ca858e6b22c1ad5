#include "policies/rate_text.h"

#include "frame/number_text.h"

namespace {

struct RateUnit {
    std::int32_t seconds;
    const wchar_t* text;
};

constexpr RateUnit kUnits[] = {
    {1, L"sec"}, {60, L"min"}, {3600, L"hr"}, {86400, L"day(s)"}, {604800, L"week(s)"}};

void append(wchar_t* to, const wchar_t* text)
{
    while (*text != L'\0') {
        *to++ = *text++;
    }
    *to = L'\0';
}

} // namespace

void formatRate(wchar_t (&buffer)[kRateTextCapacity], std::int32_t seconds)
{
    if (seconds < 0) { // only -1 is ever stored
        append(buffer, L"no limit");
        return;
    }
    if (seconds == 0) {
        seconds = kDefaultRate;
    }
    const RateUnit* unit = kUnits;
    for (const RateUnit& larger : kUnits) {
        if (seconds < larger.seconds) {
            break;
        }
        unit = &larger;
    }
    append(writeNumber(buffer, seconds / unit->seconds), unit->text);
}
