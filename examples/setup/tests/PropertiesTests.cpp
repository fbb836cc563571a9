#include "../Properties.h"

#include "../../../tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>

namespace {

struct PropertyCase
{
    const char* label;
    const char* before;
    const char* key;
    const char* value;
    const char* after;

    friend void PrintTo(const PropertyCase& c, std::ostream* out) { *out << c.before; }
};

class SetProperty : public testing::TestWithParam<PropertyCase>
{};

TEST_P(SetProperty, ChangesThatPropertyAlone)
{
    const TempDirectory directory;
    const std::string file = directory / "app.properties";
    KelInsIO::GetOutputFileStream(file, {}) << GetParam().before;
    Setup::SetProperty(file, GetParam().key, GetParam().value);
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), GetParam().after);
}

constexpr PropertyCase kCases[] = {
    {"Replaced", "a=1\nb=2\nc=3\n", "b", "x", "a=1\r\nb=x\r\nc=3\r\n"},
    {"Added", "a=1\n", "b", "x", "a=1\r\nb=x\r\n"},
    {"AddedToEmptyFile", "", "b", "x", "b=x\r\n"},
    {"WindowsPath", "dir=\n", "dir", R"(C:\Program Files\x)", "dir=C\\:\\\\Program Files\\\\x\r\n"},
    {"KeyWithBlankAndColon", "a\\ b\\:c=1\n", "a b:c", "x", "a\\ b\\:c=x\r\n"},
    {"ColonSeparator", "b: 1\n", "b", "x", "b=x\r\n"},
    {"BlankSeparator", "b 1\n", "b", "x", "b=x\r\n"},
    {"BlanksBeforeKeyAndEquals", "  \tb = 1\n", "b", "x", "b=x\r\n"},
    {"KeyAlone", "b\n", "b", "x", "b=x\r\n"},
    {"LongerKeyIsAnother", "bb=1\n", "b", "x", "bb=1\r\nb=x\r\n"},
    {"CommentsAreNotKeys", "#b=1\n!b=2\n", "b", "x", "#b=1\r\n!b=2\r\nb=x\r\n"},
    {"ContinuedValueGoesWhole", "b=1\\\n  2\\\n  3\nc=4\n", "b", "x", "b=x\r\nc=4\r\n"},
    {"ContinuationIsNotAKey", "a=1\\\nb=2\n", "b", "x", "a=1\\\r\nb=2\r\nb=x\r\n"},
    {"DoubledBackslashContinuesNothing", "a=1\\\\\nb=2\n", "b", "x", "a=1\\\\\r\nb=x\r\n"},
    {"CommentIsNeverContinued", "#a\\\nb=2\n", "b", "x", "#a\\\r\nb=x\r\n"},
    {"ContinuedAtTheEnd", "b=1\\\n", "b", "x", "b=x\r\n"},
    {"SecondPlaceGoes", "b=1\na=0\nb=2\n", "b", "x", "b=x\r\na=0\r\n"},
    {"LeadingBlankOfValue", "b=\n", "b", " x y", "b=\\ x y\r\n"},
    {"Utf8", "b=gr\xC3\xBCn\n", "b", "\xE2\x82\xAC", "b=\xE2\x82\xAC\r\n"},
    {"BlankLinesStay", "\n \nb=1\n\n", "b", "x", "\r\n \r\nb=x\r\n\r\n"},
};

INSTANTIATE_TEST_SUITE_P(Files, SetProperty, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.label); });

TEST(SetPropertyTest, WritesAReadOnlyFileAndLeavesItReadOnly)
{
    const TempDirectory directory;
    const std::string file = directory / "app.properties";
    KelInsIO::GetOutputFileStream(file, {}) << "a=1\n";
    KelInsIO::SetReadOnly(file, true);
    Setup::SetProperty(file, "a", "2");
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), "a=2\r\n");
    EXPECT_FALSE(KelInsIO::SetReadOnly(file, true)); // it was already
}

TEST(SetPropertyTest, MissingFile)
{
    const TempDirectory directory;
    EXPECT_THAT([&] { Setup::SetProperty(directory / "missing", "a", "1"); },
                testing::ThrowsMessage<std::runtime_error>("Failed to read " + (directory / "missing")));
    EXPECT_FALSE(KelInsIO::Exists(directory / "missing"));
}

} // namespace
