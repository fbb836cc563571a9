#include <KelInsInfra/io/Path.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <utility>

namespace {

using KelInsIO::Path;

struct SpellingCase
{
    const char* label; // letters and digits only: it becomes the test's name
    const char* input;
    const char* path;
    const char* root;

    friend void PrintTo(const SpellingCase& c, std::ostream* out) { *out << c.input; }
};

constexpr SpellingCase kSpellings[] = {
    {"Empty", "", "", ""},
    {"Plain", "a", "a", ""},
    {"Relative", R"(a\b)", R"(a\b)", ""},
    {"DotsStay", R"(.\a\..\b)", R"(.\a\..\b)", ""},
    {"NonAscii", "C:/\xC3\xA4/\xF0\x9F\x8D\x8E/", "C:\\\xC3\xA4\\\xF0\x9F\x8D\x8E", "C:"},

    // enclosing pairs
    {"Quoted", "\"a b\"", "a b", ""},
    {"QuotedDrive", R"("C:/Program Files//x/")", R"(C:\Program Files\x)", "C:"},
    {"QuotedUnc", R"("\\srv\share\x")", R"(\\srv\share\x)", R"(\\srv\share)"},
    {"OneQuote", "\"", "\"", ""},
    {"TwoQuotes", "\"\"", "", ""},
    {"OnlyOnePair", R"(""a"")", R"("a")", ""},
    {"QuoteInFrontOnly", R"("a)", R"("a)", ""},
    {"QuoteAtEndOnly", R"(a")", R"(a")", ""},
    {"QuotesInside", R"(a"b"c)", R"(a"b"c)", ""},
    {"QuotesBeforeSlashes", R"("a"/)", R"("a")", ""}, // the pair is looked for before separators are removed
    {"EnclosedInBackslashes", R"(\a\)", "a", ""},
    {"EnclosedInSlashes", "/a/", R"(\a)", ""}, // slashes are no enclosing pair
    {"Apostrophes", "'a'", "'a'", ""},

    // separators
    {"Slashes", "a/b/c", R"(a\b\c)", ""},
    {"MixedSlashes", R"(a/\b\/c)", R"(a\b\c)", ""},
    {"Doubled", R"(a\\b)", R"(a\b)", ""},
    {"LongRun", R"(a\\\\\\\b)", R"(a\b)", ""},
    {"DoubledAfterDrive", R"(C:\\x)", R"(C:\x)", "C:"},
    {"Trailing", R"(a\b\)", R"(a\b)", ""},
    {"TrailingRun", R"(a\b\\\)", R"(a\b)", ""},
    {"OneBackslash", R"(\)", "", ""},
    {"TwoBackslashes", R"(\\)", "", ""},
    {"ThreeBackslashes", R"(\\\)", "", ""},
    {"OneSlash", "/", "", ""},
    {"ThreeSlashes", "///", "", ""},
    {"LeadingBackslash", R"(\a)", R"(\a)", ""}, // relative to the current drive

    // drives
    {"Drive", "C:", "C:", "C:"},
    {"LowerCaseDrive", "z:", "z:", "z:"},
    {"FirstLetter", "A:", "A:", "A:"},
    {"LastLetter", "Z:", "Z:", "Z:"},
    {"FirstSmallLetter", "a:x", "a:x", "a:"},
    {"DriveRoot", R"(C:\)", "C:", "C:"},
    {"DriveAndName", R"(C:\x)", R"(C:\x)", "C:"},
    {"DriveWithoutSeparator", "C:x", "C:x", "C:"},
    {"DigitForLetter", "1:x", "", ""},
    {"DigitAlone", "1:foo", "", ""},
    {"BeforeA", "@:x", "", ""},
    {"AfterZ", "[:x", "", ""},
    {"BeforeSmallA", "`:x", "", ""},
    {"AfterSmallZ", "{:x", "", ""},
    {"NonAsciiLetter", "\xC3:x", "", ""},
    {"BackslashForLetter", R"(\:x)", "", ""},
    {"TwoColons", "::", "", ""},
    {"ColonLater", "ab:c", "ab:c", ""},
    {"ColonAlone", ":", ":", ""},

    // shares
    {"ServerAndShare", R"(\\srv\share)", R"(\\srv\share)", R"(\\srv\share)"},
    {"ShareTrailing", R"(\\srv\share\)", R"(\\srv\share)", R"(\\srv\share)"},
    {"ShareAndName", R"(\\srv\share\x)", R"(\\srv\share\x)", R"(\\srv\share)"},
    {"OneCharacterNames", R"(\\s\h)", R"(\\s\h)", R"(\\s\h)"},
    {"ForwardSlashUnc", "//srv//share/dir", R"(\\srv\share\dir)", R"(\\srv\share)"},
    {"ThreeLeading", R"(\\\server\share)", R"(\\server\share)", R"(\\server\share)"},
    {"SixLeading", R"(\\\\\\server\share\x)", R"(\\server\share\x)", R"(\\server\share)"},
    {"ServerAlone", R"(\\server)", "", ""},
    {"ServerTrailing", R"(\\server\)", "", ""},
    {"ServerTrailingRun", R"(\\server\\\)", "", ""},
    {"ExtendedDrive", R"(\\?\C:\x)", R"(\\?\C:\x)", R"(\\?\C:)"},
    {"Device", R"(\\.\COM1)", R"(\\.\COM1)", R"(\\.\COM1)"},
};

class PathSpelling : public testing::TestWithParam<SpellingCase>
{};

TEST_P(PathSpelling, GivesTextAndRoot)
{
    Path path(GetParam().input);
    EXPECT_EQ(path.GetPath(), GetParam().path);
    EXPECT_EQ(path.GetRoot(), GetParam().root);
    EXPECT_EQ(path.IsAbsolute(), *GetParam().root != '\0');
    EXPECT_EQ(path.IsEmpty(), *GetParam().path == '\0');
}

INSTANTIATE_TEST_SUITE_P(Table, PathSpelling, testing::ValuesIn(kSpellings),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(PathSpelling, NulInsideStays)
{
    using namespace std::string_literals;
    EXPECT_EQ(Path("a\0/b"s).GetPath(), "a\0\\b"s);
}

TEST(PathSpelling, LongTextsTakeLinearTime)
{
    const Path path(std::string(8u << 20, '/') + "server/" + std::string(8u << 20, '\\') + "share");
    EXPECT_EQ(path.GetPath(), R"(\\server\share)");
}

struct CleanCase
{
    const char* label;
    const char* input;
    const char* text;

    friend void PrintTo(const CleanCase& c, std::ostream* out) { *out << c.input; }
};

constexpr CleanCase kCleanTexts[] = {
    {"Empty", "", ""},
    {"Quoted", "\"a/b/\"", R"(a\b)"},
    {"Slashes", "a//b", R"(a\b)"},
    {"Trailing", R"(C:\a\\)", R"(C:\a)"},
    {"OnlySeparators", "//", ""},
    {"NoRootIsLookedFor", "1:x", "1:x"},
    {"ServerAlone", R"(\\server\)", R"(\\server)"},
    {"ManyLeading", R"(\\\\server)", R"(\\server)"},
};

class PathClean : public testing::TestWithParam<CleanCase>
{};

TEST_P(PathClean, GivesText)
{
    EXPECT_EQ(Path::CleanPath(GetParam().input), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, PathClean, testing::ValuesIn(kCleanTexts),
                         [](const auto& test) { return std::string(test.param.label); });

struct PartsCase
{
    const char* label;
    const char* input;
    const char* subPath;
    const char* fileName;
    const char* parent;

    friend void PrintTo(const PartsCase& c, std::ostream* out) { *out << c.input; }
};

constexpr PartsCase kParts[] = {
    {"Empty", "", "", "", ""},
    {"Name", "a", "a", "a", ""},
    {"Relative", R"(a\b)", R"(a\b)", "b", "a"},
    {"LeadingBackslash", R"(\b)", R"(\b)", "b", ""},
    {"Drive", "C:", "", "", ""},
    {"DriveAndName", R"(C:\a)", "a", "a", "C:"},
    {"DriveAndNames", R"(C:\a\b)", R"(a\b)", "b", R"(C:\a)"},
    {"DriveWithoutSeparator", "C:xyz", "yz", "yz", ""}, // the sub-path begins behind a separator, there or not
    {"DriveAndOneCharacter", "C:x", "", "", ""},
    {"DriveWithoutSeparatorDeep", R"(C:x\y)", R"(\y)", "y", "C:x"},
    {"Share", R"(\\srv\share)", "", "", ""},
    {"ShareAndName", R"(\\srv\share\x)", "x", "x", R"(\\srv\share)"},
    {"ShareAndNames", R"(\\srv\share\x\y)", R"(x\y)", "y", R"(\\srv\share\x)"},
    {"Dots", R"(C:\a\.)", R"(a\.)", ".", R"(C:\a)"},
    {"ForwardSlashUnc", "//srv//share/dir", "dir", "dir", R"(\\srv\share)"},
};

class PathParts : public testing::TestWithParam<PartsCase>
{};

TEST_P(PathParts, GivesSubPathFileNameAndParent)
{
    Path path(GetParam().input);
    EXPECT_EQ(path.GetSubPath(), GetParam().subPath);
    EXPECT_EQ(path.GetFileName(), GetParam().fileName);
    EXPECT_EQ(path.GetParent(), GetParam().parent);
}

TEST_P(PathParts, RootAndSubPathMakeThePathAgain)
{
    Path path(GetParam().input);
    if (path.GetSubPath().empty() || !path.IsAbsolute() || path.GetPath()[path.GetRoot().size()] != '\\')
        return; // nothing to join
    EXPECT_EQ(path.GetRoot() + '\\' + path.GetSubPath(), path.GetPath());
}

INSTANTIATE_TEST_SUITE_P(Table, PathParts, testing::ValuesIn(kParts),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(PathParent, OfAParentGoesUpToTheEmptyPath)
{
    Path path(R"(\\srv\share\a\b)");
    const char* const expected[] = {R"(\\srv\share\a)", R"(\\srv\share)", "", ""};
    for (const char* text : expected) {
        path = path.GetParent();
        EXPECT_EQ(path, text);
    }
}

TEST(PathParent, KeepsTheRoot)
{
    EXPECT_EQ(Path(R"(C:\a)").GetParent().GetRoot(), "C:");
    EXPECT_EQ(Path(R"(\\srv\share\a)").GetParent().GetRoot(), R"(\\srv\share)");
    EXPECT_FALSE(Path(R"(a\b)").GetParent().IsAbsolute());
}

TEST(PathConstants, HaveTheirValues)
{
    EXPECT_EQ(Path::SepC, '\\');
    EXPECT_EQ(Path::ConcatSepC, ';');
    EXPECT_EQ(Path::AltSepC, '/');
    EXPECT_EQ(Path::AltConcatSepC, ':');
    EXPECT_EQ(Path::Sep, "\\");
    EXPECT_EQ(Path::ConcatSep, ";");
    EXPECT_EQ(Path::AltSep, "/");
    EXPECT_EQ(Path::AltConcatSep, ":");
}

TEST(PathLifetime, DefaultIsEmptyWithoutRoot)
{
    Path path;
    EXPECT_TRUE(path.IsEmpty());
    EXPECT_FALSE(path.IsAbsolute());
    EXPECT_EQ(path.GetRoot(), "");
}

TEST(PathLifetime, CopiesKeepTextAndRoot)
{
    const Path source(R"(\\srv\share\x)");
    Path constructed(source);
    Path assigned("y");
    assigned = source;
    for (Path* copy : {&constructed, &assigned}) {
        EXPECT_EQ(*copy, source);
        EXPECT_EQ(copy->GetRoot(), R"(\\srv\share)");
    }
    EXPECT_EQ(source, R"(\\srv\share\x)");
}

TEST(PathLifetime, MovesKeepTextAndRootAndEmptyTheSource)
{
    Path source(R"(C:\some\name\that\is\not\short)");
    Path constructed(std::move(source));
    EXPECT_EQ(constructed, R"(C:\some\name\that\is\not\short)");
    EXPECT_EQ(constructed.GetRoot(), "C:");
    Path assigned("y");
    assigned = std::move(constructed);
    EXPECT_EQ(assigned, R"(C:\some\name\that\is\not\short)");
    EXPECT_EQ(assigned.GetRoot(), "C:");
    for (Path* left : {&source, &constructed}) { // NOLINT(bugprone-use-after-move): what is left is what is asked
        EXPECT_TRUE(left->IsEmpty());
        EXPECT_FALSE(left->IsAbsolute());
        *left = assigned; // fit to be assigned
        EXPECT_EQ(left->GetRoot(), "C:");
    }
}

TEST(PathLifetime, AssignmentToItselfChangesNothing)
{
    Path path(R"(C:\x)");
    Path& alias = path;
    path = alias;
    EXPECT_EQ(path, R"(C:\x)");
    path = std::move(alias);
    EXPECT_EQ(path, R"(C:\x)");
    EXPECT_EQ(path.GetRoot(), "C:");
}

TEST(PathLifetime, ClearTakesTextAndRoot)
{
    Path path(R"(C:\x)");
    path.Clear();
    EXPECT_TRUE(path.IsEmpty());
    EXPECT_FALSE(path.IsAbsolute());
    EXPECT_EQ(path.GetRoot(), "");
}

} // namespace
