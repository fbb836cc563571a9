// The measure of growth itself: it must see the square, and must not see it where it is not.

#include "tests/support/Growth.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

/// Adds up pairs of bytes: each byte with as many others.
std::size_t AddUp(const std::vector<unsigned char>& bytes, std::size_t others)
{
    volatile std::size_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        for (std::size_t j = 0; j < others; ++j)
            sum = sum + bytes[i] + bytes[j];
    return sum;
}

const std::vector<unsigned char> kFew(1000, 'x');
const std::vector<unsigned char> kMany(4000, 'x');

TEST(GrowthScaling, LinearWorkIsSeen)
{
    const double factor = GrowthFactor([] { AddUp(kFew, 1000); }, [] { AddUp(kMany, 1000); });
    EXPECT_GT(factor, 2.5);
    EXPECT_LT(factor, kGrowthLimit);
}

TEST(GrowthScaling, TheSquareIsSeen)
{
    const double factor = GrowthFactor([] { AddUp(kFew, kFew.size()); }, [] { AddUp(kMany, kMany.size()); }, 1);
    EXPECT_GT(factor, 1.5 * kGrowthLimit);
}

/// Half of the small one's work is as it should be: 10 times as long altogether.
TEST(GrowthScaling, ASquareInPartOfTheWorkIsSeen)
{
    const auto work = [](const std::vector<unsigned char>& bytes) {
        AddUp(bytes, 500);
        AddUp(bytes, bytes.size() / 2);
    };
    EXPECT_GT(GrowthFactor([&] { work(kFew); }, [&] { work(kMany); }, 1), kGrowthLimit);
}

} // namespace
