#include "Sha256Data.h"
#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using KelInsHash::SHA256;
using KelInsHash::Sha256Engines;
using Words = Sha256Engines::Words;

constexpr Words kInitial = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                            0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

struct EngineCase
{
    const char* label;
    Sha256Engines::Engine engine;
    bool (*isThere)();

    friend void PrintTo(const EngineCase& c, std::ostream* out) { *out << c.label; }
};

class Sha256Engine : public testing::TestWithParam<EngineCase>
{
protected:
    void SetUp() override
    {
        if (!GetParam().isThere())
            GTEST_SKIP() << "this processor has not what the engine needs";
    }

    static Words After(Words words, const std::string& blocks)
    {
        GetParam().engine(words, reinterpret_cast<const unsigned char*>(blocks.data()), blocks.size() / 64);
        return words;
    }

    /// The digest, with the padding made here, apart from the library's own.
    static std::string Digest(const std::string& message)
    {
        std::string padded = message + '\x80';
        while (padded.size() % 64 != 56)
            padded += '\0';
        for (int shift = 56; shift >= 0; shift -= 8)
            padded += static_cast<char>(static_cast<unsigned char>(message.size() * 8 >> shift));
        std::string digest;
        for (const std::uint32_t word : After(kInitial, padded))
            for (int shift = 28; shift >= 0; shift -= 4)
                digest += "0123456789abcdef"[word >> shift & 0xF];
        return digest;
    }
};

TEST_P(Sha256Engine, PublishedMessages)
{
    EXPECT_EQ(Digest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Digest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(Digest(std::string(1'000'000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST_P(Sha256Engine, EveryLengthUpTo1100)
{
    const std::string bytes = Pattern(1100);
    std::string digests;
    for (std::size_t length = 0; length <= bytes.size(); ++length)
        digests += Digest(bytes.substr(0, length));
    // digest of the 1,101 digests one after the other, made with another implementation
    EXPECT_EQ(Digest(digests), "5ef668b0cf853a886675ca3b6fce93f5c3c9de8ead95e10c503c108d4f7c4c2d");
}

TEST_P(Sha256Engine, NoBlocksChangeNothing)
{
    EXPECT_EQ(After(kInitial, ""), kInitial);
    Words words = kInitial;
    GetParam().engine(words, nullptr, 0);
    EXPECT_EQ(words, kInitial);
}

TEST_P(Sha256Engine, BlocksTogetherAreBlocksOneByOne)
{
    const std::string bytes = Pattern(40 * 64);
    for (std::size_t count = 1; count <= 40; ++count) {
        Words expected = kInitial;
        for (std::size_t i = 0; i < count; ++i)
            expected = After(expected, bytes.substr(i * 64, 64));
        EXPECT_EQ(After(kInitial, bytes.substr(0, count * 64)), expected) << count;
    }
}

TEST_P(Sha256Engine, AnyAlignment)
{
    const std::string bytes = Pattern(9 * 64);
    const Words expected = After(kInitial, bytes);
    for (std::size_t offset = 0; offset < 64; ++offset) {
        const std::string shifted = std::string(offset, '!') + bytes;
        Words words = kInitial;
        GetParam().engine(words, reinterpret_cast<const unsigned char*>(shifted.data()) + offset, 9);
        EXPECT_EQ(words, expected) << offset;
    }
}

TEST_P(Sha256Engine, AgreesWithThePortableOneFromAnyWords)
{
    std::mt19937 random(4);
    for (int round = 0; round < 2000; ++round) {
        Words words;
        for (std::uint32_t& word : words)
            word = static_cast<std::uint32_t>(random());
        std::string blocks(64 * (1 + random() % 6), '\0');
        for (char& byte : blocks)
            byte = static_cast<char>(static_cast<unsigned char>(random()));
        Words expected = words;
        Sha256Engines::Portable(expected, reinterpret_cast<const unsigned char*>(blocks.data()), blocks.size() / 64);
        ASSERT_EQ(After(words, blocks), expected) << "round " << round;
    }
}

constexpr EngineCase kEngines[] = {
    {"Portable", &Sha256Engines::Portable, [] { return true; }},
    {"Bmi2", &Sha256Engines::Bmi2, &Sha256Engines::HaveBmi2},
    {"ShaExtensions", &Sha256Engines::ShaExtensions, &Sha256Engines::HaveShaExtensions},
};

INSTANTIATE_TEST_SUITE_P(All, Sha256Engine, testing::ValuesIn(kEngines),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(Sha256Steps, FastestEngineOfWhatIsThere)
{
    const Sha256Engines::Engine portable = &Sha256Engines::Portable;
    const Sha256Engines::Engine bmi2 = &Sha256Engines::Bmi2;
    const Sha256Engines::Engine shaExtensions = &Sha256Engines::ShaExtensions;
    EXPECT_EQ(Sha256Engines::Fastest(false, false), portable);
    EXPECT_EQ(Sha256Engines::Fastest(false, true), bmi2);
    EXPECT_EQ(Sha256Engines::Fastest(true, false), shaExtensions);
    EXPECT_EQ(Sha256Engines::Fastest(true, true), shaExtensions);
}

TEST(Sha256Steps, BigEndianReadsBytesInOrder)
{
    const unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::uint32_t word = 0;
    std::uint64_t number = 0;
    std::copy_n(bytes, sizeof word, reinterpret_cast<unsigned char*>(&word));
    std::copy_n(bytes, sizeof number, reinterpret_cast<unsigned char*>(&number));
    EXPECT_EQ(Sha256Engines::BigEndian(word), 0x01020304U);
    EXPECT_EQ(Sha256Engines::BigEndian(number), 0x0102030405060708U);
}

TEST(Sha256Steps, RightRotateByEveryCount)
{
    constexpr std::uint32_t kValue = 0x80000003;
    EXPECT_EQ(Sha256Engines::RightRotate(kValue, 0), kValue);
    EXPECT_EQ(Sha256Engines::RightRotate(kValue, 1), 0xC0000001U);
    EXPECT_EQ(Sha256Engines::RightRotate(kValue, 31), 0x00000007U);
    EXPECT_EQ(Sha256Engines::RightRotate(kValue, 32), kValue);
}

} // namespace
