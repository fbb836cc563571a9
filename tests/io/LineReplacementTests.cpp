#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;

struct ReplacementCase
{
    const char* label;
    std::string content;
    std::string from;
    std::string to;
    std::string text;
    int count;

    friend void PrintTo(const ReplacementCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const ReplacementCase kReplacementCases[] = {
    {"EmptyFile", "", "a", "b", "", 0},
    {"LfBecomesCrLfWithoutFinalLineEnd", "x\ny\n", "q", "r", "x\r\ny", 0},
    {"CrLfStaysWithoutFinalLineEnd", "x\r\ny\r\n", "q", "r", "x\r\ny", 0},
    {"NoFinalLineEnd", "x\ny", "q", "r", "x\r\ny", 0},
    {"OnlyALineEnd", "\n", "q", "r", "", 0},
    {"TwoLineEnds", "\n\n", "q", "r", "\r\n", 0},
    {"EmptyFirstLine", "\nx", "q", "r", "\r\nx", 0},
    {"EmptyLastLine", "x\n\n", "q", "r", "x\r\n", 0},
    {"SeveralInALineAndInLines", "aXbX\nXX\r\nc", "X", "yy", "ayybyy\r\nyyyy\r\nc", 4},
    {"RemovesText", "one two\none", "one", "", " two\r\n", 2},
    {"ReplacementIsNotSearchedAgain", "aa", "a", "aa", "aaaa", 2},
    {"LeftToRight", "aaa", "aa", "b", "ba", 1},
    {"SpanningALineEndIsNeverFound", "a\nb\r\na\r\nb", "a\nb", "x", "a\r\nb\r\na\r\nb", 0},
    {"SpanningACrLfIsNeverFound", "a\r\nb", "a\r\nb", "x", "a\r\nb", 0},
    {"LineFeedIsNeverFound", "a\nb", "\n", "x", "a\r\nb", 0},
    {"FinalCarriageReturnIsNotPartOfTheLine", "a\r\nb", "a\r", "x", "a\r\nb", 0},
    {"OneOfTwoCarriageReturnsIs", "a\r\r\nb", "a\r", "x", "x\r\nb", 1},
    {"InnerCarriageReturn", "a\rb\n", "\r", "-", "a-b", 1},
    {"ReplacementWithLineEnd", "a;b", ";", "\n", "a\nb", 1},
    {"ZeroBytes", "a\0b\0"s, "\0"s, "0", "a0b0", 2},
    {"NonAscii", "gr\xC3\xBC\xC3\x9F", "\xC3\xBC", "ue", "grue\xC3\x9F", 1},
    {"CaseMatters", "abc ABC", "abc", "x", "x ABC", 1},
    {"LongText", std::string(40, 'a') + "b" + std::string(33, 'a') + "b", std::string(33, 'a') + "b", "-",
     std::string(7, 'a') + "--", 2},
    {"LongTextThatDiffersInTheMiddle", std::string(20, 'a') + "c" + std::string(20, 'a'), std::string(41, 'a'), "-",
     std::string(20, 'a') + "c" + std::string(20, 'a'), 0},
};

class ReplaceInEachLineTable : public testing::TestWithParam<ReplacementCase>
{};

TEST_P(ReplaceInEachLineTable, GivesTextAndCount)
{
    const auto result = KelInsIO::ReplaceInEachLine(GetParam().content, GetParam().from, GetParam().to);
    EXPECT_EQ(result.text, GetParam().text);
    EXPECT_EQ(result.count, GetParam().count);
}

INSTANTIATE_TEST_SUITE_P(Table, ReplaceInEachLineTable, testing::ValuesIn(kReplacementCases),
                         [](const auto& test) { return std::string(test.param.label); });

std::string RandomText(std::mt19937& random, std::string_view alphabet, std::size_t maxSize)
{
    std::string text(random() % (maxSize + 1), '\0');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

TEST(TakeLine, AgreesWithGetLineOnRandomText)
{
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        const std::string text = RandomText(random, "ab\r\n\n", 24);
        std::istringstream stream(text);
        std::string_view rest = text;
        for (std::string line; KelInsIO::GetLine(stream, line);) {
            ASSERT_FALSE(rest.empty()) << testing::PrintToString(text);
            ASSERT_EQ(KelInsIO::TakeLine(rest), line) << testing::PrintToString(text);
        }
        ASSERT_TRUE(rest.empty()) << testing::PrintToString(text);
    }
}

TEST(ReplaceInEachLine, AgreesWithTheLiteralLoopOnRandomText)
{
    std::mt19937 random(8);
    for (int round = 0; round < 5000; ++round) {
        const std::string content = RandomText(random, "ab\r\n", 40);
        const std::string shape = RandomText(random, "ab\r\n", 3);
        const std::string from = shape.empty() ? "\r" : shape;
        const std::string to = RandomText(random, "abc\r\n", 3);
        std::string expected;
        int count = 0;
        bool first = true;
        std::istringstream stream(content);
        for (std::string line; KelInsIO::GetLine(stream, line); first = false) {
            count += KelInsString::ReplaceAll(line, from, to, 0);
            expected += (first ? "" : "\r\n") + line;
        }
        const auto result = KelInsIO::ReplaceInEachLine(content, from, to);
        ASSERT_EQ(result.text, expected) << testing::PrintToString(content);
        ASSERT_EQ(result.count, count) << testing::PrintToString(content);
    }
}

} // namespace
