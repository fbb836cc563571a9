#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/internal/UuidText.h>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <tests/support/OnThreads.h>

namespace {

using KelInsUUID::Values;

struct TextCase
{
    const char* label;
    Values values;
    bool upperCase;
    const char* text;

    friend void PrintTo(const TextCase& c, std::ostream* out) { *out << c.text; }
};

constexpr TextCase kTextCases[] = {
    {"AllZero", {0, 0, 0, 0, 0, 0, 0, 0}, false, "00000000-0000-4000-8000-000000000000"},
    {"AllOnes",
     {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF},
     false,
     "ffffffff-ffff-4fff-bfff-ffffffffffff"},
    {"AllOnesUpper",
     {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF},
     true,
     "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF"},
    {"GroupsInOrder",
     {0x0001, 0x0020, 0x0300, 0x1004, 0x4005, 0x0060, 0x0700, 0x8000},
     false,
     "00010020-0300-4004-8005-006007008000"},
    {"EveryDigitLower",
     {0x0123, 0x4567, 0x89AB, 0xCDEF, 0xFEDC, 0xBA98, 0x7654, 0x3210},
     false,
     "01234567-89ab-4def-bedc-ba9876543210"},
    {"EveryDigitUpper",
     {0x0123, 0x4567, 0x89AB, 0xCDEF, 0xFEDC, 0xBA98, 0x7654, 0x3210},
     true,
     "01234567-89AB-4DEF-BEDC-BA9876543210"},
    {"VariantNine", {0, 0, 0, 0, 0x1000, 0, 0, 0}, false, "00000000-0000-4000-9000-000000000000"},
    {"VariantA", {0, 0, 0, 0, 0x2000, 0, 0, 0}, false, "00000000-0000-4000-a000-000000000000"},
    {"VariantTopBitsDropped", {0, 0, 0, 0, 0xC000, 0, 0, 0}, false, "00000000-0000-4000-8000-000000000000"},
    {"VersionTopDigitDropped", {0, 0, 0, 0xF000, 0, 0, 0, 0}, false, "00000000-0000-4000-8000-000000000000"},
};

class UuidTextTable : public testing::TestWithParam<TextCase>
{};

TEST_P(UuidTextTable, Text)
{
    EXPECT_EQ(KelInsUUID::UuidText(GetParam().values, GetParam().upperCase), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, UuidTextTable, testing::ValuesIn(kTextCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(UuidValues, AreTheUpperHalvesOfEightOutputs)
{
    std::mt19937 generator; // seed 5489: its first outputs are 0xD091BB5C, 0x22AE9EF6, 0xE7E1FAEE, 0xD5C31F79, ...
    const Values first = KelInsUUID::DrawValues(generator);
    EXPECT_EQ(first[0], 0xD091);
    EXPECT_EQ(first[1], 0x22AE);
    EXPECT_EQ(first[2], 0xE7E1);
    EXPECT_EQ(first[3], 0xD5C3);
    std::mt19937 other;
    other.discard(8);
    EXPECT_EQ(generator, other);
}

TEST(UuidValues, AreWhatTheStandardDistributionDraws)
{
    std::mt19937 ours(1);
    std::mt19937 theirs(1);
    std::uniform_int_distribution<int> distribution(0, 65535); // rejects nothing either
    for (int i = 0; i < 10'000; ++i) {
        for (const std::uint16_t value : KelInsUUID::DrawValues(ours))
            ASSERT_EQ(value, distribution(theirs)) << i;
    }
}

// What is guarded is the seeding of the generator, not its use: 64 threads ask for it at once, then draw in turn.
TEST(UuidGeneratorIsolated, FirstUseByManyThreadsMakesOne)
{
    constexpr int kThreads = 64;
    std::mutex mutex;
    std::set<const std::mt19937*> generators;
    std::set<std::string> uuids;
    OnThreads(kThreads, [&](int) {
        const std::mt19937* generator = &KelInsUUID::Generator();
        const std::lock_guard<std::mutex> lock(mutex);
        generators.insert(generator);
        uuids.insert(KelInsUUID::GetUUID(false));
    });
    EXPECT_EQ(generators.size(), 1U);
    EXPECT_EQ(uuids.size(), std::size_t{kThreads});
}

} // namespace
