#include <KelInsInfra/io/Path.h>
#include <gtest/gtest.h>

namespace {

using KelInsIO::Path;

struct RootCase
{
    const char* label; // letters and digits only: it becomes the test's name
    const char* input;
    const char* path;
    const char* root;

    friend void PrintTo(const RootCase& c, std::ostream* out) { *out << c.input; }
};

constexpr RootCase kRootCases[] = {
    {"ServerAlone", R"(\\server)", "", ""}, // no share: invalid, hence empty
    {"NotADriveLetter", "1:x", "", ""},
    {"ForwardSlashUnc", "//srv//share/dir", R"(\\srv\share\dir)", R"(\\srv\share)"},
};

class PathRoot : public testing::TestWithParam<RootCase>
{};

TEST_P(PathRoot, GivesTextAndRoot)
{
    Path path(GetParam().input);
    EXPECT_EQ(path.GetPath(), GetParam().path);
    EXPECT_EQ(path.GetRoot(), GetParam().root);
}

INSTANTIATE_TEST_SUITE_P(Table, PathRoot, testing::ValuesIn(kRootCases),
                         [](const auto& test) { return std::string(test.param.label); });

} // namespace
