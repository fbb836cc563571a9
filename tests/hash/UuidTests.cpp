#include <KelInsInfra/hash/KelInsUUID.h>
#include <array>
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kMany = 100'000;

bool IsHyphen(std::size_t position)
{
    return position == 8 || position == 13 || position == 18 || position == 23;
}

/// Empty when the text is a UUID of version 4 in the wanted case, or what is wrong with it.
std::string Fault(const std::string& uuid, bool upperCase)
{
    if (uuid.size() != 36)
        return "length";
    const std::string digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        if (IsHyphen(i) ? uuid[i] != '-' : digits.find(uuid[i]) == std::string::npos)
            return "position " + std::to_string(i);
    }
    if (uuid[14] != '4')
        return "version";
    return digits.substr(8, 4).find(uuid[19]) == std::string::npos ? "variant" : "";
}

class UuidCase : public testing::TestWithParam<bool>
{};

TEST_P(UuidCase, ShapeOfManyAndAllDifferent)
{
    std::set<std::string> seen;
    for (int i = 0; i < kMany; ++i) {
        const std::string uuid = KelInsUUID::GetUUID(GetParam());
        ASSERT_EQ(Fault(uuid, GetParam()), "") << uuid;
        ASSERT_TRUE(seen.insert(uuid).second) << uuid;
    }
}

INSTANTIATE_TEST_SUITE_P(Both, UuidCase, testing::Bool(),
                         [](const auto& test) { return std::string(test.param ? "Upper" : "Lower"); });

TEST(Uuid, CasesShareOneSequence)
{
    std::string lower = KelInsUUID::GetUUID(false);
    for (char& c : lower)
        c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
    EXPECT_NE(lower, KelInsUUID::GetUUID(true));
}

/// Chi-square of the counts against equal shares.
template <std::size_t N>
double ChiSquare(const std::array<int, N>& counts, int total)
{
    const double share = static_cast<double>(total) / N;
    double sum = 0;
    for (const int count : counts)
        sum += (count - share) * (count - share) / share;
    return sum;
}

// The bounds are for any seed: a good generator exceeds each of them once in about 10^11 positions (digits: 15 degrees
// of freedom, P(X > 85) = 8e-12; variant: 3, P(X > 55) = 7e-12; single bits: 1, P(X > 50) = 2e-12), so this test would
// fail by chance once in about a billion runs.
TEST(Uuid, DigitsAndBitsAreUniform)
{
    std::array<std::array<int, 16>, 36> digits{};
    std::array<std::array<std::array<int, 2>, 4>, 36> bits{};
    for (int i = 0; i < kMany; ++i) {
        const std::string uuid = KelInsUUID::GetUUID(false);
        for (std::size_t position = 0; position < uuid.size(); ++position) {
            if (IsHyphen(position))
                continue;
            const auto digit = std::string("0123456789abcdef").find(uuid[position]);
            ++digits[position][digit];
            for (std::size_t bit = 0; bit < 4; ++bit)
                ++bits[position][bit][digit >> bit & 1];
        }
    }
    for (std::size_t position = 0; position < digits.size(); ++position) {
        if (IsHyphen(position) || position == 14)
            continue;
        const bool variant = position == 19;
        if (variant) {
            const auto& d = digits[position];
            EXPECT_LT(ChiSquare(std::array{d[8], d[9], d[10], d[11]}, kMany), 55) << position;
        } else {
            EXPECT_LT(ChiSquare(digits[position], kMany), 85) << position;
        }
        for (std::size_t bit = 0; bit < (variant ? 2U : 4U); ++bit)
            EXPECT_LT(ChiSquare(bits[position][bit], kMany), 50) << "position " << position << ", bit " << bit;
    }
}

TEST(Uuid, NeighboursAreIndependent)
{
    std::array<int, 16> counts{}; // last digit of one and first digit of the next, their difference
    const auto value = [](char c) { return std::string("0123456789abcdef").find(c); };
    std::string previous = KelInsUUID::GetUUID(false);
    for (int i = 0; i < kMany; ++i) {
        const std::string uuid = KelInsUUID::GetUUID(false);
        ++counts[(value(uuid.front()) - value(previous.back())) & 0xF];
        previous = uuid;
    }
    EXPECT_LT(ChiSquare(counts, kMany), 85);
}

TEST(Uuid, SerialisedThreadsGetDifferentOnes)
{
    std::mutex mutex;
    std::set<std::string> seen;
    std::vector<std::thread> threads;
    for (int i = 0; i < 64; ++i) {
        threads.emplace_back([&mutex, &seen] {
            for (int call = 0; call < 500; ++call) {
                const std::lock_guard<std::mutex> lock(mutex);
                seen.insert(KelInsUUID::GetUUID(false));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(seen.size(), 64U * 500U);
}

std::uint64_t TicksSince1970()
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<Ticks>(now).count());
}

/// The text that a generator with this seed gives first, worked out here: the upper halves of eight outputs, in order.
std::string FirstOfSeed(std::uint32_t seed)
{
    std::mt19937 generator(seed);
    std::string hex;
    for (int i = 0; i < 8; ++i) {
        std::uint32_t value = static_cast<std::uint32_t>(generator()) >> 16;
        if (i == 3)
            value = (value & 0x0FFF) | 0x4000;
        if (i == 4)
            value = (value & 0x3FFF) | 0x8000;
        if (i >= 2 && i <= 5)
            hex += '-';
        for (int shift = 12; shift >= 0; shift -= 4)
            hex += "0123456789abcdef"[value >> shift & 0xF];
    }
    return hex;
}

TEST(UuidIsolated, FirstCallSeedsFromTheClockInTicks)
{
    const std::uint64_t before = TicksSince1970();
    const std::string first = KelInsUUID::GetUUID(false);
    const std::uint64_t after = TicksSince1970();
    ASSERT_LE(before, after);
    ASSERT_LT(after - before, 10'000'000U) << "the call took a second: too many seeds to try";
    for (std::uint64_t ticks = before; ticks <= after; ++ticks) {
        if (FirstOfSeed(static_cast<std::uint32_t>(ticks)) == first) // the low 32 bits
            return;
    }
    ADD_FAILURE() << first << " is no first value of the " << after - before + 1 << " ticks of its call";
}

} // namespace
