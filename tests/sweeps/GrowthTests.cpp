// The measure of growth itself: it must see the square, and must not see it where it is not.

#include "tests/support/Growth.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

/// Works `others` times with each byte. Each step waits for the multiplication before it, so that all take the same
/// time: through memory, some processors are twice as fast in long loops as in short ones.
void Mix(const std::vector<unsigned char>& bytes, std::size_t others)
{
    [[maybe_unused]] static volatile std::size_t result;
    std::size_t mixed = 1;
    for (const unsigned char byte : bytes)
        for (std::size_t j = 0; j < others; ++j)
            mixed = mixed * 31 + byte;
    result = mixed;
}

const std::vector<unsigned char> kFew(1000, 'x');
const std::vector<unsigned char> kMany(4000, 'x');

/// One measurement may be far off on a busy machine: the one in the middle of five counts.
double UsualGrowth(const std::function<void(const std::vector<unsigned char>&)>& work)
{
    std::array<double, 5> factors{};
    for (double& factor : factors)
        factor = GrowthFactor([&] { work(kFew); }, [&] { work(kMany); }, 1);
    std::ranges::sort(factors);
    return factors[2];
}

TEST(GrowthScaling, LinearWorkIsSeen)
{
    const double factor = UsualGrowth([](const auto& bytes) { Mix(bytes, 1000); });
    EXPECT_GT(factor, 2.5);
    EXPECT_LT(factor, kGrowthLimit);
}

TEST(GrowthScaling, TheSquareIsSeen)
{
    EXPECT_GT(UsualGrowth([](const auto& bytes) { Mix(bytes, bytes.size()); }), 1.5 * kGrowthLimit);
}

/// Half of the small one's work is as it should be: 10 times as long altogether.
TEST(GrowthScaling, ASquareInPartOfTheWorkIsSeen)
{
    EXPECT_GT(UsualGrowth([](const auto& bytes) {
                  Mix(bytes, 500);
                  Mix(bytes, bytes.size() / 2);
              }),
              kGrowthLimit);
}

/// With as many attempts as the tests of the library have: the square must not pass in any of them.
TEST(GrowthScaling, TheSquarePassesInNoAttempt)
{
    const double factor = GrowthFactor([] { Mix(kFew, kFew.size()); }, [] { Mix(kMany, kMany.size()); });
    EXPECT_GT(factor, kGrowthLimit);
}

} // namespace
