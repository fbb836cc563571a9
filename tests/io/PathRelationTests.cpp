#include <KelInsInfra/io/Path.h>
#include <gtest/gtest.h>

namespace {

using KelInsIO::Path;

TEST(PathComparison, IsOfTheCanonicalTextsByteForByte)
{
    const Path path(R"(C:\A)");
    EXPECT_TRUE(path == Path("C:/A/"));
    EXPECT_FALSE(path != Path("C:/A/"));
    EXPECT_TRUE(path != Path(R"(c:\a)"));
    EXPECT_FALSE(path == Path(R"(c:\a)"));
}

TEST(PathComparison, TakesATextAsItIs)
{
    const Path path(R"(C:\A)");
    EXPECT_TRUE(path == std::string(R"(C:\A)"));
    EXPECT_FALSE(path != std::string(R"(C:\A)"));
    EXPECT_FALSE(path == std::string("C:/A"));
    EXPECT_TRUE(path != std::string("C:/A"));
}

TEST(PathComparison, DoesNotLookAtTheRoot)
{
    Path appended;
    appended += R"(\srv\share)";
    EXPECT_FALSE(appended.IsAbsolute());
    EXPECT_TRUE(appended == Path(R"(\\srv\share)"));
}

struct JoinCase
{
    const char* label;
    const char* left;
    const char* right;
    const char* joined;   // left + right
    const char* root;     // of left + right
    const char* appended; // left += right; its root is left's

    friend void PrintTo(const JoinCase& c, std::ostream* out) { *out << c.left << " + " << c.right; }
};

constexpr JoinCase kJoins[] = {
    {"Names", "a", "b", R"(a\b)", "", R"(a\b)"},
    {"Drive", "C:", "a", R"(C:\a)", "C:", R"(C:\a)"},
    {"Share", R"(\\srv\share)", "a/b", R"(\\srv\share\a\b)", R"(\\srv\share)", R"(\\srv\share\a\b)"},
    {"LeadingSeparator", "a", R"(\b)", R"(a\b)", "", R"(a\b)"},
    {"NothingToAppend", "a", "", "a", "", "a"},
    {"OnlySeparators", "a", "///", "a", "", "a"},
    {"EmptyLeft", "", "b", R"(\b)", "", R"(\b)"},
    {"EmptyLeftDrive", "", R"(C:\b)", R"(\C:\b)", "", R"(\C:\b)"},
    {"EmptyLeftShare", "", R"(\srv\share)", R"(\\srv\share)", R"(\\srv\share)", R"(\\srv\share)"},
    {"EmptyLeftServer", "", R"(\srv)", "", "", R"(\\srv)"}, // no share: invalid where the root is looked for
    {"BothEmpty", "", "", "", "", ""},
    {"QuoteIsNotEnclosing", "a", R"("b")", R"(a\"b")", "", R"(a\"b")"},
};

class PathJoin : public testing::TestWithParam<JoinCase>
{};

TEST_P(PathJoin, PlusNormalizesAnew)
{
    const Path left(GetParam().left);
    for (Path joined : {left + std::string(GetParam().right), Path(left) + GetParam().right}) {
        EXPECT_EQ(joined, GetParam().joined);
        EXPECT_EQ(joined.GetRoot(), GetParam().root);
    }
    EXPECT_EQ(left, Path(GetParam().left));
}

TEST_P(PathJoin, PlusEqualsKeepsTheLeftRoot)
{
    Path path(GetParam().left);
    const std::string root = path.GetRoot();
    Path& result = path += std::string(GetParam().right);
    EXPECT_EQ(&result, &path);
    EXPECT_EQ(path, GetParam().appended);
    EXPECT_EQ(path.GetRoot(), root);
}

INSTANTIATE_TEST_SUITE_P(Table, PathJoin, testing::ValuesIn(kJoins),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(PathJoin, TakesPaths)
{
    Path path(R"(C:\a)");
    EXPECT_EQ(path + Path("b/c"), R"(C:\a\b\c)");
    path += Path("b/c");
    EXPECT_EQ(path, R"(C:\a\b\c)");
    path += path;
    EXPECT_EQ(path, R"(C:\a\b\c\C:\a\b\c)");
}

struct ListCase
{
    const char* label;
    const char* input;
    const char* list;

    friend void PrintTo(const ListCase& c, std::ostream* out) { *out << c.input; }
};

constexpr ListCase kLists[] = {
    {"Empty", "", ""},
    {"Drives", R"(C:\a:D:\b:x)", R"(C:\a;D:\b;x)"},
    {"AlreadySemicolons", R"(C:\a;D:\b)", R"(C:\a;D:\b)"},
    {"Names", "ab:cd", "ab;cd"},
    {"LettersAreDrives", "a:b:c", "a:b;c"},
    {"DriveAlone", "C:", "C:"},
    {"DriveThenSeparator", "C::D:", "C:;D:"},
    {"NoLetter", "1:a", "1;a"},
    {"NonAsciiByte", "\xC3:a", "\xC3;a"},
    {"LeadingColon", ":a", ";a"},
    {"LetterAfterColon", ":a:b", ";a:b"},
    {"OnlyColons", ":::", ";;;"},
    {"TrailingColon", "ab:", "ab;"},
    {"LetterAfterSemicolon", "x;d:e", "x;d:e"},
    {"TwoLetters", "ab:c:d", "ab;c:d"},
    {"SlashesStay", "/usr/bin:/bin", "/usr/bin;/bin"},
};

class PathList : public testing::TestWithParam<ListCase>
{};

TEST_P(PathList, GetsSemicolons)
{
    EXPECT_EQ(Path::NormalizeConcatSeparator(GetParam().input), GetParam().list);
}

INSTANTIATE_TEST_SUITE_P(Table, PathList, testing::ValuesIn(kLists),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(PathText, SeparatorsAreExchangedAndNothingElse)
{
    EXPECT_EQ(Path::NormalizePathSeparator("a//b\\c/"), "a\\\\b\\c\\");
    EXPECT_EQ(Path::NormalizePathSeparator(""), "");
    EXPECT_EQ(Path::Slashify("a\\\\b/c\\"), "a//b/c/");
    EXPECT_EQ(Path::Slashify(""), "");
}

TEST(PathResolve, TakesAbsoluteOthersAsTheyAre)
{
    EXPECT_EQ(Path(R"(C:\a)").Resolve(Path(R"(D:\b)")), R"(D:\b)");
    EXPECT_EQ(Path("a").Resolve(Path(R"(\\srv\share\b)")).GetRoot(), R"(\\srv\share)");
}

TEST(PathResolve, JoinsRelativeOthers)
{
    EXPECT_EQ(Path(R"(C:\a)").Resolve(Path(R"(b\c)")), R"(C:\a\b\c)");
    EXPECT_EQ(Path(R"(C:\a)").Resolve(Path(R"(\b)")), R"(C:\a\b)");
    EXPECT_EQ(Path().Resolve(Path("b")), R"(\b)");
}

TEST(PathResolve, OfTheEmptyPathIsThis)
{
    EXPECT_EQ(Path(R"(C:\a)").Resolve(Path()), R"(C:\a)");
    EXPECT_EQ(Path(R"(C:\a)").Resolve(Path()).GetRoot(), "C:");
    EXPECT_EQ(Path().Resolve(Path()), "");
}

struct RelativeCase
{
    const char* label;
    const char* base;
    const char* other;
    const char* relative;

    friend void PrintTo(const RelativeCase& c, std::ostream* out) { *out << "from " << c.base << " to " << c.other; }
};

constexpr RelativeCase kRelatives[] = {
    {"OtherEmpty", R"(C:\a)", "", ""},
    {"BothEmpty", "", "", ""},

    // both rooted
    {"Sibling", R"(C:\a\b)", R"(C:\a\c\d)", R"(..\c\d)"},
    {"Below", R"(C:\a)", R"(C:\a\b)", "b"},
    {"Above", R"(C:\a\b)", R"(C:\a)", ".."},
    {"FarAbove", R"(C:\a\b\c\d)", R"(C:\a)", R"(..\..\..)"},
    {"Equal", R"(C:\a\b)", R"(C:\a\b)", ""},
    {"EqualRoots", "C:", "C:", ""},
    {"FromTheRoot", "C:", R"(C:\x)", "x"},
    {"FromTheRootDeep", "C:", R"(C:\x\y)", R"(x\y)"},
    {"ToTheRoot", R"(C:\x)", "C:", ".."},
    {"ToTheRootDeep", R"(C:\x\y)", "C:", R"(..\..)"},
    {"NothingShared", R"(C:\a)", R"(C:\b)", R"(..\b)"},
    {"NamesThatBeginAlike", R"(C:\ab)", R"(C:\abc)", R"(..\abc)"},
    {"LongerNameInBase", R"(C:\abc\x)", R"(C:\ab\x)", R"(..\..\ab\x)"},
    {"OtherDrive", R"(C:\a)", R"(D:\a)", ""},
    {"DriveCase", R"(C:\a)", R"(c:\a)", ""},
    {"NameCase", R"(C:\a\x)", R"(C:\A\x)", R"(..\..\A\x)"},
    {"Shares", R"(\\srv\share\a)", R"(\\srv\share\b)", R"(..\b)"},
    {"ShareRoot", R"(\\srv\share)", R"(\\srv\share\b\c)", R"(b\c)"},
    {"ToTheShareRoot", R"(\\srv\share\b\c)", R"(\\srv\share)", R"(..\..)"},
    {"LastCharacterOfTheRootIsNotCompared", R"(\\server\shareA\x)", R"(\\server\shareB\y)", R"(..\y)"},
    {"OtherServer", R"(\\srv1\share\x)", R"(\\srv2\share\x)", ""},
    {"RootsOfOtherLength", R"(\\srv\share\x)", R"(\\srv\shares\x)", ""},
    {"DriveAndShare", R"(C:\x)", R"(\\srv\share\x)", ""},
    {"FromTheRootWithoutSeparator", "C:", R"(C:x\b)", R"(\b)"}, // both texts are read from the base's start
    {"FromTheRootToANameWithoutSeparator", "C:", "C:xy", "y"},

    // both relative
    {"RelativeNames", "a", "b", R"(..\b)"},
    {"RelativeEqual", "a", "a", R"(..\a)"},
    {"RelativeDeep", R"(a\b)", "b", R"(..\..\b)"},
    {"RelativeCommonBeginning", R"(a\b)", R"(a\c)", R"(..\..\a\c)"},
    {"RelativeEmptyBase", "", "b", R"(..\b)"},
    {"RelativeLeadingBackslash", R"(\a)", R"(\b)", R"(..\..\b)"},

    // one rooted
    {"BaseRooted", R"(C:\a)", "a", ""},
    {"OtherRooted", "a", R"(C:\a)", ""},
    {"OtherRootedBaseEmpty", "", R"(C:\a)", ""},
};

class PathRelative : public testing::TestWithParam<RelativeCase>
{};

TEST_P(PathRelative, GivesPath)
{
    Path relative = Path(GetParam().base).Relativize(Path(GetParam().other));
    EXPECT_EQ(relative, GetParam().relative);
    EXPECT_FALSE(relative.IsAbsolute());
}

INSTANTIATE_TEST_SUITE_P(Table, PathRelative, testing::ValuesIn(kRelatives),
                         [](const auto& test) { return std::string(test.param.label); });

} // namespace
