#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <gtest/gtest.h>
#include <new>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;

struct LinesCase
{
    const char* label;
    std::string content;
    std::vector<std::string> lines;

    friend void PrintTo(const LinesCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const LinesCase kLinesCases[] = {
    {"Nothing", "", {}},
    {"CrLf", "abc\r\n", {"abc"}},
    {"TwoCarriageReturns", "abc\r\r\n", {"abc\r"}},
    {"LfAlone", "abc\n", {"abc"}},
    {"NoLineEnd", "abc", {"abc"}},
    {"CarriageReturnAtTheEndOfTheFile", "abc\r", {"abc"}},
    {"CarriageReturnInside", "a\rb\r\n", {"a\rb"}},
    {"EmptyLines", "\n\r\n\n", {"", "", ""}},
    {"OnlyCarriageReturn", "\r", {""}},
    {"EmptyLastLineIsNone", "a\n\n", {"a", ""}},
    {"ZeroByteInside", "a\0b\r\nc"s, {"a\0b"s, "c"}},
    {"MixedLineEnds", "a\r\nb\nc\r\r\n\rd", {"a", "b", "c\r", "\rd"}},
    {"LineFeedBeforeCarriageReturn", "a\n\rb\n", {"a", "\rb"}},
};

class GetLineTable : public testing::TestWithParam<LinesCase>
{};

TEST_P(GetLineTable, GivesNarrowLines)
{
    std::istringstream stream(GetParam().content);
    std::vector<std::string> lines;
    for (std::string line; KelInsIO::GetLine(stream, line);)
        lines.push_back(line);
    EXPECT_EQ(lines, GetParam().lines);
    EXPECT_TRUE(stream.eof());
    EXPECT_FALSE(stream.bad());
}

TEST_P(GetLineTable, GivesWideLines)
{
    std::wistringstream stream(std::wstring(GetParam().content.begin(), GetParam().content.end()));
    std::vector<std::string> lines;
    for (std::wstring line; KelInsIO::GetLine(stream, line);) {
        std::string& narrow = lines.emplace_back();
        for (const wchar_t c : line)
            narrow += static_cast<char>(c);
    }
    EXPECT_EQ(lines, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Table, GetLineTable, testing::ValuesIn(kLinesCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(GetLine, ReturnsTheStream)
{
    std::istringstream narrow("a\n");
    std::string line;
    EXPECT_EQ(&KelInsIO::GetLine(narrow, line), &narrow);
    std::wistringstream wide(L"a\n");
    std::wstring wideLine;
    EXPECT_EQ(&KelInsIO::GetLine(wide, wideLine), &wide);
}

TEST(GetLine, WideLinesKeepEveryUnit)
{
    std::wistringstream stream(L"\u00E9\u4E2D\u0D0D\u0D0A\r\nx");
    std::wstring line;
    ASSERT_TRUE(KelInsIO::GetLine(stream, line));
    EXPECT_EQ(line, L"\u00E9\u4E2D\u0D0D\u0D0A");
}

TEST(GetLine, AFailedReadRemovesNothing)
{
    std::istringstream stream("abc\n");
    stream.setstate(std::ios_base::failbit);
    std::string line = "kept\r";
    EXPECT_FALSE(KelInsIO::GetLine(stream, line));
    EXPECT_EQ(line, "kept\r"); // std::getline leaves the text alone when the stream is not good
}

TEST(GetLine, ReadsALineOfManyMegabytes)
{
    const std::string text(8 * 1024 * 1024, 'x');
    std::istringstream stream(text + "\r\nnext");
    std::string line;
    ASSERT_TRUE(KelInsIO::GetLine(stream, line));
    EXPECT_TRUE(line == text);
    ASSERT_TRUE(KelInsIO::GetLine(stream, line));
    EXPECT_EQ(line, "next");
}

TEST(InputStreamToString, GivesEverythingFromTheCurrentPosition)
{
    const std::string text = "one\r\ntwo\n\0three\x1A\xFF"s;
    std::istringstream stream(text);
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), text);

    std::istringstream rest(text);
    std::string line;
    KelInsIO::GetLine(rest, line);
    EXPECT_EQ(KelInsIO::InputStreamToString(rest), "two\n\0three\x1A\xFF"s);
}

TEST(InputStreamToString, AnEmptyStreamAndASpentOneGiveNothing)
{
    std::istringstream stream("");
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), "");
    std::istringstream spent("abc");
    KelInsIO::InputStreamToString(spent);
    EXPECT_EQ(KelInsIO::InputStreamToString(spent), "");
}

TEST(InputStreamToString, AStreamWithoutABufferGivesNothing)
{
    std::istream stream(nullptr);
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), "");
}

TEST(InputStreamToString, LeavesWhiteSpaceAndLargeContentAsTheyAre)
{
    std::string text(" \t\n ");
    for (int i = 0; i < 300000; ++i)
        text += static_cast<char>(i * 7);
    std::istringstream stream(text);
    EXPECT_TRUE(KelInsIO::InputStreamToString(stream) == text);
}

/// Gives a text, and then an exception.
template <typename Exception>
class Breaking : public std::streambuf
{
public:
    explicit Breaking(std::string text) : text_(std::move(text)) {}

protected:
    int_type underflow() override
    {
        if (eback() != nullptr)
            throw Exception();
        setg(text_.data(), text_.data(), text_.data() + text_.size());
        return traits_type::to_int_type(*gptr());
    }

private:
    std::string text_;
};

struct ReadError : std::runtime_error
{
    ReadError() : std::runtime_error("read error") {}
};

TEST(InputStreamToString, EndsAtAReadErrorButNotWhereMemoryRunsOut)
{
    Breaking<ReadError> broken("abc");
    std::istream stream(&broken);
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), "abc");

    Breaking<std::bad_alloc> exhausting("abc");
    std::istream exhausted(&exhausting);
    EXPECT_THROW(KelInsIO::InputStreamToString(exhausted), std::bad_alloc);
}

TEST(LineReader, LinesAcrossItsBlocks)
{
    for (const std::size_t size : {16382U, 16383U, 16384U, 16385U, 32768U, 50000U}) {
        const std::string line(size, 'x');
        for (const std::string end : {"\n", "\r\n"}) {
            std::istringstream stream(line + "y" + end + "z" + line + end + "last");
            KelInsIO::LineReader lines(stream);
            EXPECT_EQ(lines.Next(), line + "y");
            EXPECT_EQ(lines.Next(), "z" + line);
            EXPECT_EQ(lines.Next(), "last");
            EXPECT_EQ(lines.Next(), std::nullopt);
        }
    }
}

TEST(LineReader, GivesNoPartOfALineForTheWhole)
{
    Breaking<ReadError> broken("one\ntw");
    std::istream stream(&broken);
    KelInsIO::LineReader lines(stream);
    EXPECT_EQ(lines.Next(), "one");
    EXPECT_EQ(lines.Next(), std::nullopt);
    EXPECT_TRUE(stream.bad());
}

} // namespace
