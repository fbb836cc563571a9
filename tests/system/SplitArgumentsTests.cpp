#include "tests/system/SplitArgumentsModel.h"
#include <KelInsInfra/system/ProcessBuilder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using KelInsSys::ProcessBuilder;
using Arguments = std::vector<std::string>;
using namespace std::string_literals;

struct SplitCase
{
    const char* label;
    std::string text;
    Arguments arguments;

    friend void PrintTo(const SplitCase& c, std::ostream* out) { *out << c.text; }
};

const SplitCase kPlainCases[] = {
    {"Empty", "", {}},
    {"OneSpace", " ", {}},
    {"SpacesOnly", "     ", {}},
    {"OneWord", "a", {"a"}},
    {"TwoWords", "a b", {"a", "b"}},
    {"TwoSpacesSeparateLikeOne", "a  b", {"a", "b"}},
    {"LeadingSpaces", "   a", {"a"}},
    {"TrailingSpaces", "a   ", {"a"}},
    {"SpacesAllOver", "  a   bc    d ", {"a", "bc", "d"}},
    {"TabDoesNotSplit", "a\tb", {"a\tb"}},
    {"LineFeedDoesNotSplit", "a\nb", {"a\nb"}},
    {"CarriageReturnDoesNotSplit", "a\rb", {"a\rb"}},
    {"VerticalTabAndFormFeedDoNotSplit", "a\vb\fc", {"a\vb\fc"}},
    {"TabAlone", "\t", {"\t"}},
    {"NoBreakSpaceDoesNotSplit", "a\xC2\xA0z", {"a\xC2\xA0z"}},
    {"Utf8", "\xC3\xA9t\xC3\xA9 \xF0\x9F\x8D\x8E", {"\xC3\xA9t\xC3\xA9", "\xF0\x9F\x8D\x8E"}},
    {"InvalidUtf8", "\xFF \x80\xFE", {"\xFF", "\x80\xFE"}},
    {"NulIsAnOrdinaryByte", "a\0b c"s, {"a\0b"s, "c"}},
    {"OtherShellCharacters", "$x `y` *|&;<>#", {"$x", "`y`", "*|&;<>#"}},
};

const SplitCase kEscapeCases[] = {
    {"EscapedSpace", R"(a\ b)", {"a b"}},
    {"EscapedSpaceAlone", R"(\ )", {" "}},
    {"EscapedSpaceThenSpace", R"(\  x)", {" ", "x"}},
    {"EscapedApostrophe", R"(it\'s me)", {"it's", "me"}},
    {"EscapedQuote", R"(\"a b\")", {R"("a)", R"(b")"}},
    {"EscapedBackslash", R"(a\\b)", {R"(a\b)"}},
    {"EscapedBackslashThenSpace", R"(a\\ b)", {R"(a\)", "b"}},
    {"EscapedOrdinaryByte", R"(\n\t)", {"nt"}},
    {"EscapedTab", "\\\tx", {"\tx"}},
    {"WindowsPathLosesItsBackslashes", R"(C:\Tools\setup.exe)", {"C:Toolssetup.exe"}},
    {"TrailingBackslashIsDropped", R"(a\)", {"a"}},
    {"BackslashAlone", R"(\)", {}},
    {"TwoBackslashes", R"(\\)", {R"(\)"}},
    {"ThreeBackslashes", R"(\\\)", {R"(\)"}},
    {"TrailingBackslashAfterSpace", R"(a \)", {"a"}},
    {"EscapeOfFirstByteOfUtf8", "\\\xC3\xA9", {"\xC3\xA9"}},
};

const SplitCase kSingleQuoteCases[] = {
    {"Spaces", "'a b' c", {"a b", "c"}},
    {"EmptyAlone", "''", {""}},
    {"EmptyThenWord", "'' x", {"", "x"}},
    {"WordThenEmpty", "x ''", {"x", ""}},
    {"EmptyBetweenSpaces", "  ''  ", {""}},
    {"TwoEmpty", "'' ''", {"", ""}},
    {"TwoEmptyTogether", "''''", {""}},
    {"EmptyThenByte", "''a", {"a"}},
    {"ByteThenEmpty", "a''", {"a"}},
    {"BackslashHasNoMeaning", R"('a\b\\c\')", {R"(a\b\\c\)"}},
    {"QuoteInside", R"('say "hi"')", {R"(say "hi")"}},
    {"InsideAWord", "a'b c'd", {"ab cd"}},
    {"InsideAWordThenAnother", "a'b c'd e", {"ab cd", "e"}},
    {"TabAfterClosing", "'a'\tb", {"a\tb"}},
    {"BackslashAfterClosing", R"('a'\ b)", {"a b"}},
    {"BackslashAtEndAfterClosing", R"('a'\)", {"a"}},
    {"EmptyThenBackslashAtEnd", R"(''\)", {}},
    {"Unterminated", "'a b", {"a b"}},
    {"UnterminatedEmpty", "'", {}},
    {"UnterminatedEmptyAfterWord", "a '", {"a"}},
    {"UnterminatedEmptyInsideWord", "a'", {"a"}},
    {"UnterminatedBackslash", R"('a\)", {R"(a\)"}},
    {"UnterminatedSpaces", "'  ", {"  "}},
};

const SplitCase kDoubleQuoteCases[] = {
    {"Spaces", R"("a b" c)", {"a b", "c"}},
    {"EmptyAlone", R"("")", {""}},
    {"EmptyThenWord", R"("" x)", {"", "x"}},
    {"WordThenEmpty", R"(x "")", {"x", ""}},
    {"TwoEmpty", R"("" "")", {"", ""}},
    {"TwoEmptyTogether", R"("""")", {""}},
    {"EscapedQuote", R"("x\"y")", {R"(x"y)"}},
    {"EscapedBackslash", R"("x\\y")", {R"(x\y)"}},
    {"BackslashBeforeAnotherByteStays", R"("x\ny")", {R"(x\ny)"}},
    {"BackslashBeforeSpaceStays", R"("x\ y")", {R"(x\ y)"}},
    {"BackslashBeforeApostropheStays", R"("x\'y")", {R"(x\'y)"}},
    {"EscapedBackslashThenClosing", R"("x\\" y)", {R"(x\)", "y"}},
    {"ThreeBackslashesThenQuote", R"("x\\\"y")", {R"(x\"y)"}},
    {"BackslashOtherBackslashQuote", R"("\n\"")", {R"(\n")"}},
    {"WindowsPath", R"("C:\Program Files\x.exe" /s)", {R"(C:\Program Files\x.exe)", "/s"}},
    {"WindowsPathEndingInBackslash", R"("C:\dir\" x)", {R"(C:\dir" x)"}},
    {"ApostropheInside", R"("it's")", {"it's"}},
    {"InsideAWord", R"(a"b c"d e)", {"ab cd", "e"}},
    {"SingleThenDouble", R"('a b'"c d" e)", {"a bc d", "e"}},
    {"ClosedThenEscapedSpace", R"("a"\ b)", {"a b"}},
    {"Unterminated", R"("unterminated)", {"unterminated"}},
    {"UnterminatedWithSpaces", R"(a "b c)", {"a", "b c"}},
    {"UnterminatedEmpty", R"(")", {}},
    {"UnterminatedByEscapedQuote", R"("a\")", {R"(a")"}},
    {"UnterminatedBackslash", R"("a\)", {R"(a\)"}},
    {"UnterminatedBackslashAlone", R"("\)", {R"(\)"}},
    {"Option", R"(/name="Orchard Suite" /q)", {"/name=Orchard Suite", "/q"}},
    {"NulInside", "\"a\0 b\""s, {"a\0 b"s}},
};

class SplitArguments : public testing::TestWithParam<SplitCase>
{};

TEST_P(SplitArguments, Gives)
{
    EXPECT_EQ(ProcessBuilder::SplitArguments(GetParam().text), GetParam().arguments);
    EXPECT_EQ(SplitArgumentsModel::Split(GetParam().text), GetParam().arguments) << "the model";
}

std::string Label(const testing::TestParamInfo<SplitCase>& test)
{
    return test.param.label;
}

INSTANTIATE_TEST_SUITE_P(Plain, SplitArguments, testing::ValuesIn(kPlainCases), Label);
INSTANTIATE_TEST_SUITE_P(Escape, SplitArguments, testing::ValuesIn(kEscapeCases), Label);
INSTANTIATE_TEST_SUITE_P(SingleQuote, SplitArguments, testing::ValuesIn(kSingleQuoteCases), Label);
INSTANTIATE_TEST_SUITE_P(DoubleQuote, SplitArguments, testing::ValuesIn(kDoubleQuoteCases), Label);

/// All texts of up to seven bytes that matter, 97,656 of them.
TEST(SplitArgumentsExhaustive, AgreesWithTheModel)
{
    constexpr std::string_view bytes = R"(a '"\)";
    std::vector<std::string> texts = {""};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = texts[i];
        ASSERT_EQ(ProcessBuilder::SplitArguments(text), SplitArgumentsModel::Split(text)) << text;
        for (const char byte : bytes)
            if (text.size() < 7)
                texts.push_back(text + byte);
    }
    EXPECT_EQ(texts.size(), 97'656U);
}

TEST(SplitArgumentsLarge, MegabytesInOneArgumentAndInMany)
{
    constexpr std::size_t size = 4'000'000;
    const Arguments one = ProcessBuilder::SplitArguments("'" + std::string(size, ' ') + "'");
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one.front().size(), size);
    std::string text;
    for (std::size_t i = 0; i < size / 2; ++i)
        text += "a ";
    const Arguments many = ProcessBuilder::SplitArguments(text);
    EXPECT_EQ(many.size(), size / 2);
    EXPECT_THAT(many, testing::Each("a"));
}

} // namespace
