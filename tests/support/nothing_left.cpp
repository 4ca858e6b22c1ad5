#include "tests/support/nothing_left.h"

#include "tests/support/leak_count.h"

#include <gtest/gtest.h>

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
    testing::Message growth;
    for (int series = 0; series < kSeries; ++series) {
        const LeakCount before = LeakCount::now();
        several(kRounds);
        const LeakCount after = LeakCount::now();
        if (after == before) {
            return;
        }
        growth << "\n  before " << before << "\n  after  " << after;
    }
    ADD_FAILURE() << "held around each " << kRounds << " rounds:" << growth;
}
