#include "../InstallList.h"

#include "../../../tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>
#include <sstream>

namespace {

using Setup::InstallList;

const std::string kDigest(64, 'a');

InstallList Read(const std::string& text)
{
    std::istringstream stream(text);
    return InstallList(stream);
}

struct BadLine
{
    const char* label;
    std::string line;

    friend void PrintTo(const BadLine& bad, std::ostream* out) { *out << bad.line; }
};

class InstallListRefuses : public testing::TestWithParam<BadLine>
{};

TEST_P(InstallListRefuses, WhatSetupDidNotWrite)
{
    const std::string good = kDigest + "  good.txt\n";
    EXPECT_THAT([&] { Read(good + GetParam().line + "\n" + good); },
                testing::ThrowsMessage<std::runtime_error>("Setup did not write this line: " + GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, InstallListRefuses,
    testing::Values(BadLine{"Parent", kDigest + "  .."}, BadLine{"ParentOf", kDigest + "  ../x"},
                    BadLine{"ParentInside", kDigest + "  docs/../../x"}, BadLine{"ParentAtEnd", kDigest + "  docs/.."},
                    BadLine{"BackslashParent", kDigest + R"(  ..\x)"}, BadLine{"Backslash", kDigest + R"(  docs\x)"},
                    BadLine{"Rooted", kDigest + "  /x"}, BadLine{"Drive", kDigest + "  C:/x"},
                    BadLine{"DriveRelative", kDigest + "  C:x"}, BadLine{"Share", kDigest + "  //server/share/x"},
                    BadLine{"Device", kDigest + R"(  \\.\C:)"}, BadLine{"Stream", kDigest + "  x.txt:stream"},
                    BadLine{"Dot", kDigest + "  ."}, BadLine{"DotInside", kDigest + "  docs/./x"},
                    BadLine{"EmptyName", kDigest + "  docs//x"}, BadLine{"SlashAtEnd", kDigest + "  docs/"},
                    BadLine{"NoPath", kDigest + "  "}, BadLine{"OneBlank", kDigest + " x"},
                    BadLine{"BinaryMark", kDigest + " *x"}, BadLine{"ShortDigest", kDigest.substr(1) + "  x"},
                    BadLine{"LongDigest", kDigest + "a  x"}, BadLine{"NotHexadecimal", "g" + kDigest.substr(1) + "  x"},
                    BadLine{"UpperCaseDigest", "A" + kDigest.substr(1) + "  x"}, BadLine{"Empty", ""},
                    BadLine{"PathAlone", "docs/x"}, BadLine{"OtherComment", "# other docs"},
                    BadLine{"DirectoryParent", "# directory .."}, BadLine{"DirectoryRooted", "# directory /docs"},
                    BadLine{"DirectoryDrive", "# directory C:"}, BadLine{"DirectoryEmpty", "# directory "}),
    [](const auto& row) { return std::string(row.param.label); });

TEST(InstallListTest, RefusesAPathWithAZeroByte)
{
    EXPECT_THROW(Read(kDigest + "  x" + std::string(1, '\0') + "y\n"), std::runtime_error);
}

TEST(InstallListTest, KnowsFilesAndDirectories)
{
    const InstallList list = Read("# directory .\n# directory docs\n" + kDigest +
                                  "  docs/grüße.txt\r\n" + // somebody saved it with another editor
                                  std::string(64, '0') + "  with two  blanks ..\n");
    EXPECT_EQ(list.GetFileCount(), 2U);
    EXPECT_TRUE(list.HasDirectory("."));
    EXPECT_TRUE(list.HasDirectory("docs"));
    EXPECT_FALSE(list.HasDirectory("docs/grüße.txt"));
    ASSERT_NE(list.FindFile("docs/grüße.txt"), nullptr);
    EXPECT_EQ(*list.FindFile("docs/grüße.txt"), kDigest);
    EXPECT_NE(list.FindFile("with two  blanks .."), nullptr);
    EXPECT_EQ(list.FindFile("docs"), nullptr);
    EXPECT_EQ(list.FindFile("other"), nullptr);
}

TEST(InstallListTest, IgnoresALastLineThatWasCutOff)
{
    const InstallList list = Read(kDigest + "  whole.txt\n" + kDigest + "  cut.t");
    EXPECT_EQ(list.GetFileCount(), 1U);
    EXPECT_NE(list.FindFile("whole.txt"), nullptr);
    EXPECT_EQ(Read("").GetFileCount(), 0U);
    EXPECT_EQ(Read(kDigest.substr(1)).GetFileCount(), 0U);
}

TEST(InstallListTest, ReadsWhatItsWriterWrote)
{
    const TempDirectory target;
    {
        Setup::InstallListWriter writer(target.Path());
        writer.AddDirectory(".");
        writer.AddDirectory(R"(a\b)");
        writer.AddFile(R"(a\b\c.txt)", kDigest);
    }
    std::ifstream stream = KelInsIO::GetInputFileStream(target / InstallList::kFileName, {});
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), "# directory .\n# directory a/b\n" + kDigest + "  a/b/c.txt\n");

    stream.seekg(0);
    const InstallList list(stream);
    EXPECT_TRUE(list.HasDirectory("."));
    EXPECT_TRUE(list.HasDirectory("a/b"));
    EXPECT_NE(list.FindFile("a/b/c.txt"), nullptr);
}

TEST(InstallListTest, DigestOfFileIsThatOfItsBytes)
{
    const TempDirectory directory;
    KelInsIO::GetOutputFileStream(directory / "abc", {}) << "abc";
    KelInsIO::GetOutputFileStream(directory / "empty", {});
    EXPECT_EQ(Setup::DigestOfFile(directory / "abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Setup::DigestOfFile(directory / "empty"),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_THAT([&] { Setup::DigestOfFile(directory / "missing"); },
                testing::ThrowsMessage<std::runtime_error>("Failed to read " + (directory / "missing")));
}

} // namespace
