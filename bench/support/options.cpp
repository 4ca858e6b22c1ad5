#include "bench/support/options.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string_view>

namespace {

bool readNumber(std::string_view text, int least, int most, int& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() && number >= least && number <= most;
}

bool readSizes(std::string_view text, int step, int largest, std::vector<int>& sizes)
{
    sizes.clear();
    for (std::size_t comma = 0; comma != std::string_view::npos;) {
        comma = text.find(',');
        int size = 0;
        if (!readNumber(text.substr(0, comma), step, largest, size) || size % step != 0) {
            return false;
        }
        sizes.push_back(size);
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    }
    return true;
}

bool readOption(std::string_view argument, int step, int largest, Options& options)
{
    constexpr std::string_view kSizes = "--sizes=";
    constexpr std::string_view kRounds = "--rounds=";
    if (argument.starts_with(kSizes)) {
        return readSizes(argument.substr(kSizes.size()), step, largest, options.sizes);
    }
    if (argument.starts_with(kRounds)) {
        return readNumber(argument.substr(kRounds.size()), 1, 1000, options.rounds);
    }
    options.rowByRow = options.rowByRow && argument != "--no-row-by-row";
    options.times = options.times || argument == "--times";
    options.memory = options.memory || argument == "--memory";
    return argument == "--no-row-by-row" || argument == "--times" || argument == "--memory";
}

} // namespace

int Options::roundsOf(int size) const
{
    return rounds != 0 ? rounds : size <= 1000 ? 25 : size <= 10000 ? 11 : 5;
}

bool readOptions(int count, char** arguments, int step, int largest, Options& options)
{
    const auto wrong = std::find_if(arguments + 1, arguments + count, [&](const char* argument) {
        return !readOption(argument, step, largest, options);
    });
    if (wrong == arguments + count) {
        return true;
    }
    std::fprintf(stderr, "Not an option here: %s\n", *wrong);
    std::fprintf(stderr, "Sizes are multiples of %d up to %d\n", step, largest);
    return false;
}
