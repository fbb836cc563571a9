// The files of NIST's validation programme: lines "Len = <bits>", "Msg = <hex>", "Seed = <hex>", "MD = <hex>".

#include <KelInsInfra/hash/SHA256.h>
#include <cctype>
#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

using KelInsHash::SHA256;

std::string FromHex(const std::string& digits)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

/// The value of a line "<name> = <value>", or an empty text.
std::string ValueOf(const std::string& line, const std::string& name)
{
    if (line.rfind(name + " = ", 0) != 0)
        return {};
    std::string value = line.substr(name.size() + 3);
    while (!value.empty() && std::isspace(static_cast<unsigned char>(value.back())) != 0)
        value.pop_back();
    return value;
}

class Sha256Nist : public testing::Test
{
protected:
    /// Skips the test where the file is not installed.
    void Open(const std::string& name)
    {
        file_.open(KELINS_NIST_VECTORS "/" + name);
        if (!file_)
            GTEST_SKIP() << "no " << name << " in " KELINS_NIST_VECTORS;
    }

    void ExpectMessages(int expectedCount)
    {
        std::size_t bits = 0;
        std::string message;
        int count = 0;
        for (std::string line; std::getline(file_, line);) {
            if (const std::string length = ValueOf(line, "Len"); !length.empty())
                bits = std::stoul(length);
            else if (const std::string hex = ValueOf(line, "Msg"); !hex.empty())
                message = FromHex(hex).substr(0, bits / 8);
            else if (const std::string digest = ValueOf(line, "MD"); !digest.empty()) {
                EXPECT_EQ(SHA256::GetHash(message), digest) << bits << " bits";
                ++count;
            }
        }
        EXPECT_EQ(count, expectedCount);
    }

    std::ifstream file_;
};

/// A thousand messages, each the three digests before it.
std::string MonteCarloRound(const std::string& seed)
{
    std::string a = seed;
    std::string b = seed;
    std::string c = seed;
    for (int i = 0; i < 1000; ++i) {
        std::string next = FromHex(SHA256::GetHash(a + b + c));
        a.swap(b);
        b.swap(c);
        c.swap(next);
    }
    return c;
}

TEST_F(Sha256Nist, ShortMessages)
{
    ASSERT_NO_FATAL_FAILURE(Open("SHA256ShortMsg.rsp"));
    if (!IsSkipped())
        ExpectMessages(65);
}

TEST_F(Sha256Nist, LongMessages)
{
    ASSERT_NO_FATAL_FAILURE(Open("SHA256LongMsg.rsp"));
    if (!IsSkipped())
        ExpectMessages(64);
}

TEST_F(Sha256Nist, MonteCarlo)
{
    ASSERT_NO_FATAL_FAILURE(Open("SHA256Monte.rsp"));
    if (IsSkipped())
        return;
    std::string seed;
    int count = 0;
    for (std::string line; std::getline(file_, line);) {
        if (const std::string first = ValueOf(line, "Seed"); !first.empty())
            seed = FromHex(first);
        else if (const std::string digest = ValueOf(line, "MD"); !digest.empty()) {
            seed = MonteCarloRound(seed);
            EXPECT_EQ(seed, FromHex(digest)) << "round " << count;
            ++count;
        }
    }
    EXPECT_EQ(count, 100);
}

} // namespace
