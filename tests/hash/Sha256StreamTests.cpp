#include "Sha256Data.h"
#include <KelInsInfra/hash/SHA256.h>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <tests/support/TempDirectory.h>

namespace {

using KelInsHash::SHA256;

const std::string kDigestOfNothing = SHA256::GetHash("");

class Sha256StreamLength : public testing::TestWithParam<std::size_t>
{};

TEST_P(Sha256StreamLength, IsReadToItsEnd)
{
    const std::string bytes = Pattern(GetParam());
    std::istringstream stream(bytes);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes));
    EXPECT_EQ(stream.rdstate(), std::ios_base::eofbit | std::ios_base::failbit);
}

INSTANTIATE_TEST_SUITE_P(Lengths, Sha256StreamLength,
                         testing::Values(0, 1, 63, 64, 65, 65535, 65536, 65537, 131072, 131073, 200000));

TEST(Sha256Stream, AppendsToWhatIsThere)
{
    const std::string bytes = Pattern(100'000);
    std::istringstream stream(bytes);
    SHA256 hash;
    hash.Add("before");
    hash.Add(stream);
    hash.Add("behind");
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash("before" + bytes + "behind"));
}

TEST(Sha256Stream, StartsWhereTheStreamStands)
{
    std::istringstream stream("0123456789");
    stream.seekg(4);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash("456789"));
}

TEST(Sha256Stream, BlanksAndZeroBytesCount)
{
    const std::string bytes(" \t\r\n\0 \x1A x ", 9);
    std::istringstream stream(bytes);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes));
}

struct StateCase
{
    const char* label;
    std::ios_base::iostate before;
    std::ios_base::iostate after;

    friend void PrintTo(const StateCase& c, std::ostream* out) { *out << c.label; }
};

const StateCase kStatesThatYieldNothing[] = {
    {"Failed", std::ios_base::failbit, std::ios_base::failbit},
    {"Bad", std::ios_base::badbit, std::ios_base::badbit},
    {"FailedAtItsEnd", std::ios_base::failbit | std::ios_base::eofbit, std::ios_base::failbit | std::ios_base::eofbit},
    {"AtItsEndOnly", std::ios_base::eofbit, std::ios_base::eofbit | std::ios_base::failbit}, // one read fails
};

class Sha256StreamState : public testing::TestWithParam<StateCase>
{};

TEST_P(Sha256StreamState, ContributesNothing)
{
    std::istringstream stream("abc");
    stream.setstate(GetParam().before);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), kDigestOfNothing);
    EXPECT_EQ(stream.rdstate(), GetParam().after);
    stream.clear();
    EXPECT_EQ(stream.tellg(), std::streampos(0)); // nothing was taken
}

INSTANTIATE_TEST_SUITE_P(Table, Sha256StreamState, testing::ValuesIn(kStatesThatYieldNothing),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(Sha256Stream, WithoutBufferContributesNothing)
{
    std::istream stream(nullptr);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), kDigestOfNothing);
}

TEST(Sha256Stream, FailedStreamWithExceptionsOnDoesNotThrow)
{
    std::istringstream stream("abc");
    stream.setstate(std::ios_base::failbit);
    EXPECT_THROW(stream.exceptions(std::ios_base::failbit), std::ios_base::failure);
    SHA256 hash;
    EXPECT_NO_THROW(hash.Add(stream));
    EXPECT_EQ(hash.GetHash(), kDigestOfNothing);
}

TEST(Sha256Stream, CanBeFilledAgain)
{
    std::stringstream stream;
    stream << "abc";
    SHA256 hash;
    hash.Add(stream);
    stream.clear();
    stream << "def";
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash("abcdef"));
}

/// Delivers `count` bytes one by one, then throws, or asks for no more than it is told.
class BreakingBuffer : public std::streambuf
{
public:
    BreakingBuffer(std::string bytes, bool throws) : bytes_(std::move(bytes)), throws_(throws) {}

protected:
    int_type underflow() override
    {
        if (next_ < bytes_.size()) { // a window of at most 1,000 bytes
            const std::size_t size = std::min<std::size_t>(1000, bytes_.size() - next_);
            setg(&bytes_[next_], &bytes_[next_], &bytes_[next_] + size);
            next_ += size;
            return traits_type::to_int_type(*gptr());
        }
        if (throws_)
            throw std::runtime_error("broken");
        return traits_type::eof();
    }

private:
    std::string bytes_;
    std::size_t next_ = 0;
    bool throws_;
};

TEST(Sha256Stream, DeliveredInSmallWindows)
{
    const std::string bytes = Pattern(150'001);
    BreakingBuffer buffer(bytes, false);
    std::istream stream(&buffer);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes));
}

TEST(Sha256Stream, BreaksInTheMiddle)
{
    const std::string bytes = Pattern(65536 + 5000);
    BreakingBuffer buffer(bytes, true);
    std::istream stream(&buffer);
    SHA256 hash;
    EXPECT_NO_THROW(hash.Add(stream)); // the stream keeps its buffer's exception to itself
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes.substr(0, 65536))); // the broken read delivered no count
    hash.Add("more");
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes.substr(0, 65536) + "more"));
}

TEST(Sha256Stream, BreaksInTheMiddleWithExceptionsOn)
{
    const std::string bytes = Pattern(65536 + 5000);
    BreakingBuffer buffer(bytes, true);
    std::istream stream(&buffer);
    stream.exceptions(std::ios_base::badbit);
    SHA256 hash;
    EXPECT_THROW(hash.Add(stream), std::runtime_error); // what the buffer threw, as the stream's owner asked
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes.substr(0, 65536)));
}

class Sha256StreamExceptions : public testing::TestWithParam<std::ios_base::iostate>
{};

TEST_P(Sha256StreamExceptions, AllIsAppendedBeforeTheEndThrows)
{
    for (const std::size_t length : {0U, 3U, 65536U, 70000U, 131072U}) {
        const std::string bytes = Pattern(length);
        std::istringstream stream(bytes);
        stream.exceptions(GetParam());
        SHA256 hash;
        EXPECT_THROW(hash.Add(stream), std::ios_base::failure);
        EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes)) << length;
        EXPECT_EQ(stream.rdstate(), std::ios_base::eofbit | std::ios_base::failbit);
        EXPECT_EQ(stream.exceptions(), GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Masks, Sha256StreamExceptions,
                         testing::Values(std::ios_base::failbit, std::ios_base::eofbit,
                                         std::ios_base::failbit | std::ios_base::eofbit | std::ios_base::badbit));

TEST(Sha256Stream, BadbitExceptionsDoNotThrowAtTheEnd)
{
    std::istringstream stream("abc");
    stream.exceptions(std::ios_base::badbit);
    SHA256 hash;
    EXPECT_NO_THROW(hash.Add(stream));
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash("abc"));
}

TEST(Sha256Stream, File)
{
    const TempDirectory directory;
    const std::string path = directory / "data.bin";
    const std::string bytes = Pattern(300'000);
    std::ofstream(path, std::ios_base::binary) << bytes;
    std::ifstream stream(path, std::ios_base::binary);
    SHA256 hash;
    hash.Add(stream);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes));

    std::ifstream missing(directory / "missing", std::ios_base::binary);
    hash.Add(missing);
    EXPECT_EQ(hash.GetHash(), SHA256::GetHash(bytes));
}

} // namespace
