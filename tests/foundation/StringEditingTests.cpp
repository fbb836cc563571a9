#include <KelInsInfra/foundation/KelInsString.h>
#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;

struct ReplaceCase
{
    const char* label;
    const char* text;
    const char* from;
    const char* to;
    std::uint64_t start;
    const char* expected;
    std::int32_t count;

    friend void PrintTo(const ReplaceCase& c, std::ostream* out) { *out << c.text << ": " << c.from << " by " << c.to; }
};

constexpr ReplaceCase kReplaceCases[] = {
    {"InsertedTextNotSearchedAgain", "aaa", "a", "aa", 0, "aaaaaa", 3},
    {"EmptySearchText", "aaa", "", "b", 0, "aaa", 0},
    {"EmptyText", "", "a", "b", 0, "", 0},
    {"EmptyReplacement", "a-b-c", "-", "", 0, "abc", 2},
    {"NotFound", "abc", "x", "y", 0, "abc", 0},
    {"FromStart", "a.b.c", ".", "/", 2, "a.b/c", 1},
    {"StartAtEnd", "aa", "a", "b", 2, "aa", 0},
    {"StartBeyondEnd", "aa", "a", "b", UINT64_MAX, "aa", 0},
    {"Overlapping", "aaaa", "aa", "a", 0, "aa", 2},
    {"LongerText", "x\\\\y", "\\\\", "\\", 1, "x\\y", 1},
    {"WholeText", "abc", "abc", "", 0, "", 1},
};

class ReplaceAllText : public testing::TestWithParam<ReplaceCase>
{};

TEST_P(ReplaceAllText, GivesTextAndCount)
{
    const ReplaceCase& c = GetParam();
    std::string text = c.text;
    EXPECT_EQ(KelInsString::ReplaceAll(text, std::string(c.from), std::string(c.to), c.start), c.count);
    EXPECT_EQ(text, c.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, ReplaceAllText, testing::ValuesIn(kReplaceCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(ReplaceAllText, TextMayBeItsOwnArgument)
{
    std::string text = "ab";
    EXPECT_EQ(KelInsString::ReplaceAll(text, text, std::string("c"), 0), 1);
    EXPECT_EQ(text, "c");
}

TEST(ReplaceAllCharacter, FromStart)
{
    std::string text = "a.b.c";
    EXPECT_EQ(KelInsString::ReplaceAll(text, '.', '/', 2), 1);
    EXPECT_EQ(text, "a.b/c");
    EXPECT_EQ(KelInsString::ReplaceAll(text, '.', '/', 0), 1);
    EXPECT_EQ(text, "a/b/c");
}

TEST(ReplaceAllCharacter, StartAtOrBeyondEndChangesNothing)
{
    std::string text = "aa";
    EXPECT_EQ(KelInsString::ReplaceAll(text, 'a', 'b', 2), 0);
    EXPECT_EQ(KelInsString::ReplaceAll(text, 'a', 'b', UINT64_MAX), 0);
    EXPECT_EQ(text, "aa");
}

TEST(RemoveAll, CountsAndErases)
{
    std::string text = "a-b--c-";
    EXPECT_EQ(KelInsString::RemoveAll(text, '-'), 4);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(KelInsString::RemoveAll(text, '-'), 0);
    std::string empty;
    EXPECT_EQ(KelInsString::RemoveAll(empty, '-'), 0);
}

TEST(RemoveAll, ErasesZeroBytes)
{
    std::string text("a\0b\0", 4);
    EXPECT_EQ(KelInsString::RemoveAll(text, '\0'), 2);
    EXPECT_EQ(text, "ab");
}

struct SplitCase
{
    const char* label;
    const char* text;
    Pieces withEmpty;
    Pieces withoutEmpty;

    friend void PrintTo(const SplitCase& c, std::ostream* out) { *out << '"' << c.text << '"'; }
};

const SplitCase kSplitCases[] = {
    {"EmptyText", "", {}, {}},
    {"DelimiterAlone", ",", {"", ""}, {}},
    {"TwoDelimiters", ",,", {"", "", ""}, {}},
    {"EmptyInTheMiddle", "a,,b", {"a", "", "b"}, {"a", "b"}},
    {"DelimiterAtEnd", "a,", {"a", ""}, {"a"}},
    {"DelimiterAtStart", ",a", {"", "a"}, {"a"}},
    {"NoDelimiter", "abc", {"abc"}, {"abc"}},
    {"SpacesAreNotDelimiters", "a, b", {"a", " b"}, {"a", " b"}},
    {"LineFeedIsNoDelimiter", "a\nb,c", {"a\nb", "c"}, {"a\nb", "c"}},
};

class Split : public testing::TestWithParam<SplitCase>
{};

TEST_P(Split, BothFormsAgree)
{
    const SplitCase& c = GetParam();
    EXPECT_EQ(KelInsString::Split(c.text, ',', true), c.withEmpty);
    EXPECT_EQ(KelInsString::Split(c.text, ',', false), c.withoutEmpty);
    EXPECT_EQ(KelInsString::Split(c.text, std::string(","), true), c.withEmpty);
    EXPECT_EQ(KelInsString::Split(c.text, std::string(","), false), c.withoutEmpty);
}

INSTANTIATE_TEST_SUITE_P(Table, Split, testing::ValuesIn(kSplitCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(Split, LongDelimiter)
{
    EXPECT_EQ(KelInsString::Split("a::b:c::", std::string("::"), true), (Pieces{"a", "b:c", ""}));
    EXPECT_EQ(KelInsString::Split("a::b:c::", std::string("::"), false), (Pieces{"a", "b:c"}));
    EXPECT_EQ(KelInsString::Split(":::", std::string("::"), true), (Pieces{"", ":"}));
}

TEST(Split, EmptyDelimiterIsNeverFound)
{
    EXPECT_EQ(KelInsString::Split("abc", std::string(), true), Pieces{"abc"});
    EXPECT_EQ(KelInsString::Split("abc", std::string(), false), Pieces{"abc"});
    EXPECT_EQ(KelInsString::Split("", std::string(), true), Pieces{});
}

TEST(Split, ZeroByteDelimiter)
{
    EXPECT_EQ(KelInsString::Split(std::string("a\0b", 3), '\0', true), (Pieces{"a", "b"}));
}

TEST(ToFixedPrecision, DigitsAfterThePoint)
{
    EXPECT_EQ(KelInsString::ToFixedPrecision(3.14159, 2), "3.14");
    EXPECT_EQ(KelInsString::ToFixedPrecision(2.0, 0), "2");
    EXPECT_EQ(KelInsString::ToFixedPrecision(-0.5, 3), "-0.500");
    EXPECT_EQ(KelInsString::ToFixedPrecision(1e15, 1), "1000000000000000.0");
}

/// The stream alone would need a stack of several times as much.
TEST(ToFixedPrecision, TenMillionDigits)
{
    EXPECT_EQ(KelInsString::ToFixedPrecision(-0.5, 10'000'000), "-0.5" + std::string(9'999'999, '0'));
    EXPECT_EQ(KelInsString::ToFixedPrecision(0.5, 1075), "0.5" + std::string(1074, '0'));
    EXPECT_EQ(KelInsString::ToFixedPrecision(std::numeric_limits<double>::infinity(), 10'000'000), "inf");
}

/// A host's own number format.
class CommaPoint : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }

    char do_thousands_sep() const override { return '.'; }

    std::string do_grouping() const override { return "\3"; }
};

class GlobalLocaleGuard
{
public:
    explicit GlobalLocaleGuard(const std::locale& locale) : previous_(std::locale::global(locale)) {}

    GlobalLocaleGuard(const GlobalLocaleGuard&) = delete;
    GlobalLocaleGuard& operator=(const GlobalLocaleGuard&) = delete;

    ~GlobalLocaleGuard() { std::locale::global(previous_); }

private:
    std::locale previous_;
};

TEST(ToFixedPrecision, FollowsTheGlobalLocale)
{
    const GlobalLocaleGuard guard(std::locale(std::locale::classic(), new CommaPoint)); // owned by the locale
    EXPECT_EQ(KelInsString::ToFixedPrecision(12345.678, 2), "12.345,68");
}

struct ToIntCase
{
    const char* label;
    const char* text;
    std::int32_t expected; // with default 5

    friend void PrintTo(const ToIntCase& c, std::ostream* out) { *out << '"' << c.text << '"'; }
};

constexpr ToIntCase kToIntCases[] = {
    {"Empty", "", 5},
    {"TrailingLetters", "12abc", 12},
    {"Letters", "abc", 5},
    {"LeadingWhiteSpace", " \t\n42", 42},
    {"WhiteSpaceOnly", "  ", 5},
    {"Minus", "-7", -7},
    {"Plus", "+7", 7},
    {"SignAlone", "-", 5},
    {"Largest", "2147483647", INT32_MAX},
    {"BeyondLargest", "2147483648", 5},
    {"Smallest", "-2147483648", INT32_MIN},
    {"BelowSmallest", "-2147483649", 5},
    {"BeyondEverything", "99999999999999999999999", 5},
    {"HexadecimalIsZero", "0x10", 0},
    {"LeadingZeros", "007", 7},
};

class ToInt : public testing::TestWithParam<ToIntCase>
{};

TEST_P(ToInt, GivesNumberOrDefault)
{
    EXPECT_EQ(KelInsString::ToInt(GetParam().text, 5), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, ToInt, testing::ValuesIn(kToIntCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(ToInt, LeavesErrnoAlone)
{
    errno = 33;
    KelInsString::ToInt("99999999999999999999999", 5);
    EXPECT_EQ(errno, 33);
}

TEST(ToSizeT, GivesNumberOrDefault)
{
    EXPECT_EQ(KelInsString::ToSize_t("", 7), 7U);
    EXPECT_EQ(KelInsString::ToSize_t("x", 7), 7U);
    EXPECT_EQ(KelInsString::ToSize_t("12abc", 7), 12U);
    EXPECT_EQ(KelInsString::ToSize_t(" \n42", 7), 42U);
    EXPECT_EQ(KelInsString::ToSize_t("   ", 7), 7U);
    EXPECT_EQ(KelInsString::ToSize_t("4294967296", 7), 4294967296U);
    EXPECT_EQ(KelInsString::ToSize_t("18446744073709551615", 7), UINT64_MAX);
    EXPECT_EQ(KelInsString::ToSize_t("-1", 7), UINT64_MAX);
}

} // namespace
