#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>

namespace {

using KelInsIO::AppendLines;
using KelInsIO::IsEachLineEndCrLf;
using KelInsIO::TextBuilder;

TEST(TextBuilder, GivesWhatWasAdded)
{
    for (const std::size_t expectedSize : {0U, 1000U, 1'000'000U}) {
        TextBuilder builder(expectedSize);
        std::string expected;
        for (std::size_t size = 0; size < 300; ++size) { // ten blocks
            const std::string piece(size, static_cast<char>('a' + size % 26));
            builder.Append(piece);
            expected += piece;
        }
        EXPECT_EQ(builder.Take(), expected);
    }
}

TEST(TextBuilder, TakesAPieceLongerThanItsBlocks)
{
    TextBuilder builder(0);
    const std::string piece(100'000, 'x');
    builder.Append("a");
    builder.Append(piece);
    builder.Append("b");
    EXPECT_EQ(builder.Take(), "a" + piece + "b");
}

TEST(TextBuilder, GivesNothingWhereNothingWasAdded)
{
    EXPECT_EQ(TextBuilder(10).Take(), "");
}

TEST(IsEachLineEndCrLf, LooksAtAllLines)
{
    EXPECT_TRUE(IsEachLineEndCrLf(""));
    EXPECT_TRUE(IsEachLineEndCrLf("\r\n"));
    EXPECT_TRUE(IsEachLineEndCrLf("a\r\n\r\nb\r\n"));
    EXPECT_TRUE(IsEachLineEndCrLf("a\r\r\nb\rc\r\n"));
    EXPECT_FALSE(IsEachLineEndCrLf("\n"));
    EXPECT_FALSE(IsEachLineEndCrLf("a\nb\r\n"));
    EXPECT_FALSE(IsEachLineEndCrLf("a\r\nb\n"));
    EXPECT_FALSE(IsEachLineEndCrLf("a\r\n\nb\r\n"));
    EXPECT_FALSE(IsEachLineEndCrLf("a\r\nb"));
    EXPECT_FALSE(IsEachLineEndCrLf("a\r\nb\r"));
}

std::string Appended(std::string_view lines)
{
    TextBuilder text(0);
    AppendLines(text, lines);
    return text.Take();
}

TEST(AppendLines, EndsEachLineWithCrLf)
{
    EXPECT_EQ(Appended(""), "");
    EXPECT_EQ(Appended("\n"), "\r\n");
    EXPECT_EQ(Appended("a"), "a\r\n");
    EXPECT_EQ(Appended("a\r"), "a\r\n");
    EXPECT_EQ(Appended("a\r\r"), "a\r\r\n");
    EXPECT_EQ(Appended("a\n\nb\r\n\r\nc"), "a\r\n\r\nb\r\n\r\nc\r\n");
}

TEST(AppendLines, AgreesWithGetLineOnRandomText)
{
    std::mt19937 random(9);
    for (int round = 0; round < 5000; ++round) {
        std::string text(random() % 40, '\0');
        for (char& c : text)
            c = "abc\r\n"[random() % 5];
        std::string expected;
        std::istringstream stream(text);
        for (std::string line; KelInsIO::GetLine(stream, line);)
            expected += line + "\r\n";
        ASSERT_EQ(Appended(text), expected) << testing::PrintToString(text);
        ASSERT_EQ(IsEachLineEndCrLf(text), text == expected) << testing::PrintToString(text);
    }
}

} // namespace
