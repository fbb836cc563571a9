#define OPENSSL_SUPPRESS_DEPRECATED // single blocks have no newer interface
#include "Sha256Data.h"
#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <openssl/sha.h>
#include <set>
#include <sstream>

namespace {

using KelInsHash::Sha256Engines;

std::string OpenSslDigest(const std::string& message)
{
    unsigned char digest[SHA256_DIGEST_LENGTH];
    ::SHA256(reinterpret_cast<const unsigned char*>(message.data()), message.size(), digest);
    std::string text;
    for (const unsigned char byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 0xF];
    }
    return text;
}

std::string RandomBytes(std::mt19937& random, std::size_t length)
{
    std::string bytes(length, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(static_cast<unsigned char>(random()));
    return bytes;
}

TEST(Sha256BesideOpenSsl, EveryLengthUpTo1100)
{
    std::mt19937 random(1100);
    const std::string bytes = RandomBytes(random, 1100);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const std::string message = bytes.substr(0, length);
        ASSERT_EQ(KelInsHash::SHA256::GetHash(message), OpenSslDigest(message)) << length;
    }
}

TEST(Sha256BesideOpenSsl, RandomMessagesInRandomPieces)
{
    std::mt19937 random(2026);
    for (int round = 0; round < 300; ++round) {
        const std::string message = RandomBytes(random, random() % 20'000);
        KelInsHash::SHA256 hash;
        const char* position = message.data();
        for (const std::size_t length : RandomSplit(random, message.size())) {
            hash.Add(position, length);
            position += length;
        }
        ASSERT_EQ(hash.GetHash(), OpenSslDigest(message)) << "round " << round;
    }
}

TEST(Sha256BesideOpenSsl, MonteCarloChainFromAnotherSeed)
{
    std::string ours = "any seed will do";
    std::string theirs = ours;
    for (int i = 0; i < 20'000; ++i) {
        ours = KelInsHash::SHA256::GetHash(ours + ours);
        theirs = OpenSslDigest(theirs + theirs);
    }
    EXPECT_EQ(ours, theirs);
}

void ExpectOpenSslBlocks(Sha256Engines::Engine engine)
{
    std::mt19937 random(64);
    for (int round = 0; round < 1000; ++round) {
        SHA256_CTX theirs{};
        Sha256Engines::Words ours{};
        for (std::size_t i = 0; i < ours.size(); ++i)
            ours[i] = theirs.h[i] = static_cast<std::uint32_t>(random());
        const std::string block = RandomBytes(random, 64);
        SHA256_Transform(&theirs, reinterpret_cast<const unsigned char*>(block.data()));
        engine(ours, reinterpret_cast<const unsigned char*>(block.data()), 1);
        ASSERT_TRUE(std::equal(ours.begin(), ours.end(), theirs.h)) << "round " << round;
    }
}

TEST(Sha256BesideOpenSsl, BlocksOfThePortableEngine)
{
    ExpectOpenSslBlocks(&Sha256Engines::Portable);
}

TEST(Sha256BesideOpenSsl, BlocksOfTheEngineWithBmi2)
{
    if (!Sha256Engines::HaveBmi2())
        GTEST_SKIP() << "this processor has no BMI2";
    ExpectOpenSslBlocks(&Sha256Engines::Bmi2);
}

TEST(Sha256BesideOpenSsl, BlocksOfTheShaExtensions)
{
    if (!Sha256Engines::HaveShaExtensions())
        GTEST_SKIP() << "this processor has no SHA extensions";
    ExpectOpenSslBlocks(&Sha256Engines::ShaExtensions);
}

#if defined(__x86_64__)
/// The words after "flags" of the first processor.
std::set<std::string> FlagsOfTheSystem()
{
    std::ifstream file("/proc/cpuinfo");
    std::string line;
    while (std::getline(file, line) && line.find("flags") != 0) {
    }
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(Sha256Engines, ServeWhereTheSystemNamesWhatTheyNeed)
{
    const std::set<std::string> flags = FlagsOfTheSystem();
    ASSERT_TRUE(flags.contains("sse2"));
    EXPECT_EQ(Sha256Engines::HaveBmi2(), flags.contains("avx") && flags.contains("bmi2"));
    EXPECT_EQ(Sha256Engines::HaveShaExtensions(),
              flags.contains("sha_ni") && flags.contains("ssse3") && flags.contains("sse4_1"));
}
#endif

} // namespace
