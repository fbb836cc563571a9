#pragma once

#include "ThreadTime.h"

#include <algorithm>
#include <functional>
#include <limits>

/// What GrowthFactor must stay below: 4 when the time grows with the size, 16 when it grows with the square.
constexpr double kGrowthLimit = 6;

/// How many times as long four times the work takes, in this thread's own time in user mode. What other programs do
/// meanwhile does not count, nor what the system takes to hand out memory, which is more for large blocks. The small
/// work runs four times as often, and both are repeated until each took several ticks of the clock, which are 1/100 s
/// on Windows. What remains is noise of caches and of sampling: the least factor of some attempts counts, and the first
/// under the limit ends them.
inline double GrowthFactor(const std::function<void()>& small, const std::function<void()>& fourTimes,
                           int attempts = 12)
{
    constexpr double kTick = 0.01;
    constexpr double kEnough = 10 * kTick;
    constexpr int kMostTimes = 1 << 20; // for work that takes no time at all
    const auto seconds = [](const std::function<void()>& work, int times) {
        const double begin = ThreadSecondsInUserMode();
        for (int i = 0; i < times; ++i)
            work();
        return ThreadSecondsInUserMode() - begin;
    };
    double factor = std::numeric_limits<double>::max();
    for (int attempt = 0; attempt < attempts && !(factor < kGrowthLimit); ++attempt) {
        double ofSmall = 0;
        double ofLarge = 0;
        for (int times = 1; times < kMostTimes && std::min(ofSmall, ofLarge) < kEnough; times *= 2) {
            ofSmall += seconds(small, 4 * times);
            ofLarge += seconds(fourTimes, times);
        }
        factor = std::min(factor, 4 * ofLarge / std::max(ofSmall, kTick));
    }
    return factor;
}
