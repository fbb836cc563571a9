#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>

/// What GrowthFactor must stay below. Not much over 4: a heap that gives large blocks back to the system takes about
/// twice the time for each byte of them, and so does memory beyond the processor's cache. The square gives 16.
constexpr double kGrowthLimit = 12;

/// How many times as long four times the work takes: about 4 when the time grows with the size, 16 when it grows with
/// the square. The small work is run four times for each run of the large one, so that both take about as long and
/// neither vanishes in the clock's grain. The least times of up to twelve rounds are compared, because a machine that
/// is busy with something else disturbs some of them; the first factor under the limit is the answer.
inline double GrowthFactor(const std::function<void()>& small, const std::function<void()>& fourTimes)
{
    const auto seconds = [](const std::function<void()>& work, int times) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < times; ++i)
            work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    double least = std::numeric_limits<double>::max();
    double leastOfLarge = least;
    double factor = least;
    for (int round = 0; round < 12 && !(factor < kGrowthLimit); ++round) {
        least = std::min(least, seconds(small, 4) / 4);
        leastOfLarge = std::min(leastOfLarge, seconds(fourTimes, 1));
        factor = leastOfLarge / least;
    }
    return factor;
}
