#include "tests/support/nothing_left.h"

#include "tests/support/leak_count.h"

#include <gtest/gtest.h>

#include <bitset>

void expectNothingLeft(const std::function<void()>& round)
{
    constexpr int kWarmUp = 3;
    constexpr int kSeries = 3;
    constexpr int kRounds = 10;
    const auto several = [&](int times) {
        for (int i = 0; i < times; ++i) {
            round();
        }
    };
    several(kWarmUp);
    LeakCount::now(); // finds its functions
    std::bitset<4> growing;
    growing.set();
    testing::Message growth;
    for (int series = 0; series < kSeries && growing.any(); ++series) {
        const LeakCount before = LeakCount::now();
        several(kRounds);
        const LeakCount after = LeakCount::now();
        growing &= after.above(before); // what the system keeps for itself goes up and down
        growth << "\n  before " << before << "\n  after  " << after;
    }
    EXPECT_TRUE(growing.none()) << "held around each " << kRounds << " rounds:" << growth;
}
