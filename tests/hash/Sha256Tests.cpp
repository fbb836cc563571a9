#include "Sha256Data.h"
#include <KelInsInfra/hash/SHA256.h>
#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace {

using KelInsHash::SHA256;

constexpr const char* kDigestOfNothing = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr const char* kDigestOfAbc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

static_assert(SHA256::_cChunkSize == 64);
static_assert(std::is_same_v<decltype(SHA256::_cChunkSize), const std::int32_t>);
static_assert(std::is_trivially_copyable_v<SHA256>);

struct MessageCase
{
    const char* label;
    std::string message;
    const char* digest;

    friend void PrintTo(const MessageCase& c, std::ostream* out) { *out << c.message.size() << " bytes"; }
};

const MessageCase kPublishedMessages[] = {
    {"Nothing", "", kDigestOfNothing},
    {"Abc", "abc", kDigestOfAbc},
    {"TwoBlocks", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {"ThreeBlocks",
     "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu",
     "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
    {"OneByteBd", "\xBD", "68325720aabd7c82f30f554b313d0570c95accbb7dc4b5aae11204c08ffe732b"},
    {"FourBytes", "\xC9\x8C\x8E\x55", "7abc22c0ae5af26ce93dbb94433a0e0b2e119d014f8e7f65bd56c61ccccd9504"},
    {"Zeros55", std::string(55, '\0'), "02779466cdec163811d078815c633f21901413081449002f24aa3e80f0b88ef7"},
    {"Zeros56", std::string(56, '\0'), "d4817aa5497628e7c77e6b606107042bbba3130888c5f47a375e6179be789fbb"},
    {"Zeros57", std::string(57, '\0'), "65a16cb7861335d5ace3c60718b5052e44660726da4cd13bb745381b235a1785"},
    {"Zeros64", std::string(64, '\0'), "f5a5fd42d16a20302798ef6ed309979b43003d2320d9f0e8ea9831a92759fb4b"},
    {"Zeros1000", std::string(1000, '\0'), "541b3e9daa09b20bf85fa273e5cbd3e80185aa4ec298e765db87742b70138a53"},
    {"LetterA1000", std::string(1000, 'A'), "c2e686823489ced2017f6059b8b239318b6364f6dcd835d0a519105a1eadd6e4"},
    {"LetterU1005", std::string(1005, 'U'), "f4d62ddec0f3dd90ea1380fa16a5ff8dc4c54b21740650f24afc4120903552b0"},
    {"MillionZeros", std::string(1'000'000, '\0'), "d29751f2649b32ff572b5e0a9f541ea660a50f94ff0beedfb0b692b924cc8025"},
    {"MillionLettersA", std::string(1'000'000, 'a'),
     "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    {"ZeroByteInside", std::string("a\0b", 3), "59b271ae1bbcb1d31d41929817f4b16fb439eb4f31520b5ad1d5ce98920a7138"},
};

// Made with another implementation. Lengths on both sides of every edge of the padding, of blocks, of four blocks, and
// of the pieces in which streams are read.
const MessageCase kPatternMessages[] = {
    {"Length1", Pattern(1), "ca358758f6d27e6cf45272937977a748fd88391db679ceda7dc7bf1f005ee879"},
    {"Length3", Pattern(3), "647674a296197442f518bcca323ec605dd8d098b2d4f22ee1fdcdd2bb753a189"},
    {"Length54", Pattern(54), "c802146d5788fb540fbf29d8ff485730ad10f4f13b78961c032e78691b582647"},
    {"Length55", Pattern(55), "8aa994584139d128848eeebc4e815639ba5ab6e6e39574195a63ac4f14f7c43b"},
    {"Length56", Pattern(56), "ad574708f75c044c9b85de64cb568ee7711ff4f36448c6242f053ba8f6cc2b63"},
    {"Length57", Pattern(57), "5b46e502092be01b1100193e089fdda95638c12e19a1d24f308eb2c3d3ae849d"},
    {"Length63", Pattern(63), "280ed3e8ff1df845b2e7dfe6ac6cee817bef20e783cc65abc41b818b4d2fe076"},
    {"Length64", Pattern(64), "c6ab9724ade5b6a7a1edfffb12f3aa9181351355af8fd08c919952ad211339dd"},
    {"Length65", Pattern(65), "788367c73c7ddf4c53f65e68cc0d943e6227ab55b0e78ba63ace822b1c6301c0"},
    {"Length119", Pattern(119), "3d610547d68216dedf7435a4fb6260353911f6b3fd3f18805ddb8be285d726fe"},
    {"Length120", Pattern(120), "1f80156a804cb7862ad113e8200e9d74499723e7c7854d5f48776d3148e09656"},
    {"Length127", Pattern(127), "192409cd280e14b743642ad1343fbd3e82d9305de72c078117745a679210cc3d"},
    {"Length128", Pattern(128), "cc548ca2dec1f6fe4f58b2e27aa9c7521607df1130d140b55a4dad0665302356"},
    {"Length129", Pattern(129), "81e89a7b2911aaa7795f9e3d4910cb47d6cd2b00d83b8399481527261a1a7519"},
    {"Length192", Pattern(192), "6e3a9b4ecba7af3a46e4f5c90fe02c99b5715144444b38049a42ac8313b30346"},
    {"Length255", Pattern(255), "c9241bc45a34a7e4028b10346f6edc6336c11c4e2484dff4e4cff74a003b6da1"},
    {"Length256", Pattern(256), "c8c6e02d597fa6c407a5fec30c981c7bbad08972240eea89841b8f37e2fbf32c"},
    {"Length257", Pattern(257), "84ae14a3c10fa75d3bbeb383f872bbeb0b7d0f709308441df1fc1721e10923c1"},
    {"Length320", Pattern(320), "6e4de13b87a3bf0d2e453b5d7558298d5beaf605fef595ea46cea8eaeb71c211"},
    {"Length512", Pattern(512), "cd40e8375c2169784004c0ff584cb93e46830b97d5f351c2481dd852eee8bbda"},
    {"Length1000", Pattern(1000), "4cdc56c9b07775cf51fa4ad851ad5f5d7a030d6efc5742821dd0609f15beffac"},
    {"Length65535", Pattern(65535), "9cd7f74a7fe47518be5c1d6ad5663b64ee9e4ef8ba73e486b6292e9352b5705a"},
    {"Length65536", Pattern(65536), "7bc6ec89e34b3b9b3b0fd92b5568095fc59c6b44bd48f926262c7a6599e4cef2"},
    {"Length65537", Pattern(65537), "a89848cfdb83f211c3131d9e5e67f8795eef3617e398dacf58bdb346ba6fdefc"},
    {"Length200000", Pattern(200000), "5ef84e339e38c67c479ca673f690490766555bd7df6b07c9ebf7f868b88c5ec5"},
};

class Sha256Message : public testing::TestWithParam<MessageCase>
{};

TEST_P(Sha256Message, AsOneString)
{
    EXPECT_EQ(SHA256::GetHash(GetParam().message), GetParam().digest);
}

TEST_P(Sha256Message, InTwoUnequalPieces)
{
    const std::string& message = GetParam().message;
    for (const std::size_t first : {std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{65}}) {
        if (first > message.size())
            break;
        SHA256 hash;
        hash.Add(message.data(), first);
        hash.Add(message.data() + first, message.size() - first);
        EXPECT_EQ(hash.GetHash(), GetParam().digest) << first;
    }
}

INSTANTIATE_TEST_SUITE_P(Published, Sha256Message, testing::ValuesIn(kPublishedMessages),
                         [](const auto& test) { return std::string(test.param.label); });
INSTANTIATE_TEST_SUITE_P(Patterns, Sha256Message, testing::ValuesIn(kPatternMessages),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(Sha256, EveryLengthUpTo1100)
{
    const std::string bytes = Pattern(1100);
    SHA256 digests;
    for (std::size_t length = 0; length <= bytes.size(); ++length)
        digests.Add(SHA256::GetHash(bytes.substr(0, length)));
    // digest of the 1,101 digests one after the other, made with another implementation
    EXPECT_EQ(digests.GetHash(), "5ef668b0cf853a886675ca3b6fce93f5c3c9de8ead95e10c503c108d4f7c4c2d");
}

TEST(Sha256, UnalignedInput)
{
    const std::string bytes = Pattern(1000);
    const std::string expected = SHA256::GetHash(bytes);
    for (std::size_t offset = 0; offset < 64; ++offset) {
        const std::string shifted = std::string(offset, '!') + bytes;
        SHA256 hash;
        hash.Add(shifted.data() + offset, bytes.size());
        EXPECT_EQ(hash.GetHash(), expected) << offset;
    }
}

TEST(Sha256, ReadsNothingBehindItsInput)
{
    for (std::size_t length = 1; length <= 300; ++length) { // each block of memory ends where the input does
        const std::unique_ptr<char[]> exact(new char[length]);
        Pattern(length).copy(exact.get(), length);
        SHA256 hash;
        hash.Add(exact.get(), length);
        EXPECT_EQ(hash.GetHash(), SHA256::GetHash(Pattern(length))) << length;
    }
}

TEST(Sha256, PiecesOfOneSizeGiveTheSameDigest)
{
    const std::string bytes = Pattern(10'000);
    const std::string expected = SHA256::GetHash(bytes);
    for (const std::size_t size : {1U, 2U, 3U, 55U, 63U, 64U, 65U, 127U, 128U, 129U, 256U, 4096U, 9999U}) {
        SHA256 hash;
        for (std::size_t i = 0; i < bytes.size(); i += size)
            hash.Add(bytes.substr(i, size));
        EXPECT_EQ(hash.GetHash(), expected) << size;
    }
}

TEST(Sha256, RandomSplitsGiveTheSameDigest)
{
    const std::string bytes = Pattern(20'000);
    const std::string expected = SHA256::GetHash(bytes);
    std::mt19937 random(20'000);
    for (int round = 0; round < 300; ++round) {
        SHA256 hash;
        const char* position = bytes.data();
        for (const std::size_t length : RandomSplit(random, bytes.size())) {
            hash.Add(position, length);
            position += length;
        }
        ASSERT_EQ(hash.GetHash(), expected) << "round " << round;
    }
}

TEST(Sha256, GetHashChangesNothing)
{
    const std::string bytes = Pattern(200);
    SHA256 hash;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const SHA256& unchanged = hash;
        const std::string expected = SHA256::GetHash(bytes.substr(0, length));
        ASSERT_EQ(unchanged.GetHash(), expected) << length;
        ASSERT_EQ(unchanged.GetHash(), expected) << length << ", asked again";
        hash.Add(&bytes[length], 1);
    }
}

TEST(Sha256, ResetForgetsEverything)
{
    for (const std::size_t length : {0U, 1U, 63U, 64U, 65U, 1000U}) {
        SHA256 hash;
        hash.Add(Pattern(length));
        hash.Reset();
        EXPECT_EQ(hash.GetHash(), kDigestOfNothing) << length;
        hash.Add("abc");
        EXPECT_EQ(hash.GetHash(), kDigestOfAbc) << length;
    }
}

TEST(Sha256, NullAndNoLengthDoNothing)
{
    SHA256 hash;
    hash.Add(nullptr, 0);
    hash.Add(nullptr, 3);
    hash.Add(nullptr, UINT64_MAX);
    hash.Add("xyz", 0);
    hash.Add(std::string());
    EXPECT_EQ(hash.GetHash(), kDigestOfNothing);
    hash.Add("ab");
    hash.Add(nullptr, 100); // with bytes waiting as well
    hash.Add("xyz", 0);
    hash.Add("c");
    EXPECT_EQ(hash.GetHash(), kDigestOfAbc);
}

TEST(Sha256, ZeroBytesCount)
{
    const std::string zeroInside("a\0b", 3);
    SHA256 hash;
    hash.Add(zeroInside);
    EXPECT_EQ(hash.GetHash(), "59b271ae1bbcb1d31d41929817f4b16fb439eb4f31520b5ad1d5ce98920a7138");
    EXPECT_NE(hash.GetHash(), SHA256::GetHash("a"));
}

TEST(Sha256, CopyGoesOnFromWhereItsOriginalStood)
{
    const std::string bytes = Pattern(500);
    for (const std::size_t middle : {0U, 1U, 64U, 100U, 127U, 128U}) {
        SHA256 original;
        original.Add(bytes.data(), middle);
        SHA256 copy = original;
        SHA256 assigned;
        assigned.Add("forgotten");
        assigned = original;
        original.Add("something else");
        copy.Add(bytes.data() + middle, bytes.size() - middle);
        assigned.Add(bytes.data() + middle, bytes.size() - middle);
        EXPECT_EQ(copy.GetHash(), SHA256::GetHash(bytes)) << middle;
        EXPECT_EQ(assigned.GetHash(), SHA256::GetHash(bytes)) << middle;
        EXPECT_EQ(original.GetHash(), SHA256::GetHash(bytes.substr(0, middle) + "something else")) << middle;
    }
}

TEST(Sha256, ChunkSizeCanBeBoundToAReference)
{
    const std::int32_t& size = SHA256::_cChunkSize;
    EXPECT_EQ(size, 64);
}

} // namespace
