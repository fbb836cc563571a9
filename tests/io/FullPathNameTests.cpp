#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
#include <gtest/gtest.h>

namespace {

using KelInsIO::Path;
using GetFullPathNameHook = ImportHook<DWORD(LPCWSTR, DWORD, LPWSTR, LPWSTR*)>;

struct NameCase
{
    const char* label; // letters and digits only: it becomes the test's name
    const char* text;
    const char* name;

    friend void PrintTo(const NameCase& c, std::ostream* out) { *out << c.text; }
};

constexpr NameCase kNames[] = {
    // relative: only widened
    {"Empty", "", ""},
    {"Relative", R"(a\b)", R"(a\b)"},
    {"RelativeSlash", "a/b", "a/b"},
    {"RelativeDots", R"(..\a\.)", R"(..\a\.)"},
    {"Drive", "C:", "C:"},
    {"DriveAndName", "C:x", "C:x"},
    {"LeadingBackslash", R"(\x)", R"(\x)"},
    {"TwoBackslashes", R"(\\)", R"(\\)"},
    {"ThreeBackslashes", R"(\\\x)", R"(\\\x)"},
    {"DigitForLetter", R"(1:\x)", R"(1:\x)"},
    {"UnderscoreForLetter", R"(_:\x)", R"(_:\x)"},
    {"BraceForLetter", R"({:\x)", R"({:\x)"},
    {"NonAsciiRelative", "\xC3\xA4\xF0\x9F\x8D\x8E", "\xC3\xA4\xF0\x9F\x8D\x8E"},

    // already in extended-length form
    {"Extended", R"(\\?\C:\x\..\y)", R"(\\?\C:\x\..\y)"},
    {"ExtendedUnc", R"(\\?\UNC\srv\share)", R"(\\?\UNC\srv\share)"},
    {"ExtendedBeginning", R"(\\?)", R"(\\?)"},

    // drives
    {"DriveRoot", R"(C:\)", R"(\\?\C:\)"},
    {"DriveRootSlash", "C:/", R"(\\?\C:\)"},
    {"Absolute", R"(C:\a\b)", R"(\\?\C:\a\b)"},
    {"LowerCaseDrive", R"(c:\a)", R"(\\?\c:\a)"},
    {"Slashes", "C:/a//b", R"(\\?\C:\a\b)"},
    {"Dots", R"(C:\a\..\.\b)", R"(\\?\C:\b)"},
    {"AboveTheRoot", R"(C:\..\..\b)", R"(\\?\C:\b)"},
    {"NonAscii", "C:\\\xC3\xA4\\\xF0\x9F\x8D\x8E", "\\\\?\\C:\\\xC3\xA4\\\xF0\x9F\x8D\x8E"},

    // servers
    {"Share", R"(\\server\share)", R"(\\?\UNC\server\share)"},
    {"ShareAndName", R"(\\server\share\a\..\b)", R"(\\?\UNC\server\share\b)"},
    {"SlashedShare", "//server/share/a", R"(\\?\UNC\server\share\a)"},
    {"ServerAlone", R"(\\server)", R"(\\?\UNC\server)"},
};

class FullPathName : public testing::TestWithParam<NameCase>
{};

TEST_P(FullPathName, IsTheNameToOpen)
{
    EXPECT_EQ(KelInsString::Narrow(Path::GetFullPathNameW(GetParam().text)), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Table, FullPathName, testing::ValuesIn(kNames),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(FullPathName, HasNoLengthLimit)
{
    std::string path = "C:";
    while (path.size() < 20000)
        path += "\\0123456789";
    const std::wstring name = Path::GetFullPathNameW(path);
    EXPECT_EQ(KelInsString::Narrow(name), R"(\\?\)" + path);
}

TEST(FullPathName, EndsInNoNul)
{
    EXPECT_EQ(Path::GetFullPathNameW(R"(C:\a)").size(), 8u);
    EXPECT_EQ(Path::GetFullPathNameW(R"(\\s\h)").size(), 11u);
}

TEST(FullPathName, AsksForTheSizeAndThenForTheName)
{
    GetFullPathNameHook hook("GetFullPathNameW");
    EXPECT_EQ(Path::GetFullPathNameW(R"(C:\a)"), LR"(\\?\C:\a)");
    ASSERT_EQ(hook.Calls().size(), 2u);
    EXPECT_EQ(std::get<1>(hook.Calls()[0]), 0u);
    EXPECT_EQ(std::get<2>(hook.Calls()[0]), nullptr);
    EXPECT_EQ(std::get<1>(hook.Calls()[1]), 5u);
}

TEST(FullPathName, RelativeAndExtendedNamesDoNotAskTheSystem)
{
    GetFullPathNameHook hook("GetFullPathNameW");
    for (const char* text : {"", "a", "C:x", R"(\x)", R"(\\?\C:\x)"})
        Path::GetFullPathNameW(text);
    EXPECT_TRUE(hook.Calls().empty());
}

TEST(FullPathName, IsThePrefixAloneWhenTheSystemDoesNotTell)
{
    for (const std::size_t call : {1u, 2u}) {
        GetFullPathNameHook hook("GetFullPathNameW");
        hook.FailFrom(call, 0, LastError(ERROR_PATH_NOT_FOUND));
        EXPECT_EQ(Path::GetFullPathNameW(R"(C:\a)"), LR"(\\?\)");
        EXPECT_EQ(Path::GetFullPathNameW(R"(\\server\share)"), LR"(\\?\UNC)");
    }
}

TEST(FullPathName, IsThePrefixAloneWhenTheNameGrewMeanwhile)
{
    GetFullPathNameHook hook("GetFullPathNameW");
    hook.FailCall(2, 1000, NoCode()); // the size needed now, instead of the name's length
    EXPECT_EQ(Path::GetFullPathNameW(R"(C:\a)"), LR"(\\?\)");
}

} // namespace
