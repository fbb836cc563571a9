#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using KelInsIO::ReplaceInLines;

TEST(ReplaceInLines, RewritesLfAsCrLfWithoutFinalLineEnd)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one\ntwo one\n\nthree\n");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "one", "1"), 2);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "1\r\ntwo 1\r\n\r\nthree");
    EXPECT_EQ(FileContentIfAny(directory / "a.txt_TmpRIL"), "(no file)");
}

TEST(ReplaceInLines, RewritesEvenWhereNothingIsFound)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one\ntwo\n");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "three", "3"), 0);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "one\r\ntwo");
}

TEST(ReplaceInLines, NeverFindsATextThatSpansALineEnd)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one\r\ntwo\r\n");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "one\r\ntwo", "x"), 0);
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "e\nt", "x"), 0);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "one\r\ntwo");
}

TEST(ReplaceInLines, LeavesAnEmptyFileEmpty)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "x", "y"), 0);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "");
}

TEST(ReplaceInLines, MayShortenAFileToNothing)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "xx");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "x", ""), 2);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "");
}

TEST(ReplaceInLines, RewritesAReadOnlyFileAndLeavesItReadOnly)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one");
    ASSERT_TRUE(KelInsIO::SetReadOnly(directory / "a.txt", true));
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "one", "1"), 1);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "1");
    EXPECT_TRUE(IsReadOnly(directory / "a.txt"));
    EXPECT_EQ(FileContentIfAny(directory / "a.txt_TmpRIL"), "(no file)");
}

TEST(ReplaceInLines, LeavesAWritableFileWritable)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one");
    ReplaceInLines(directory / "a.txt", "one", "1");
    EXPECT_FALSE(IsReadOnly(directory / "a.txt"));
}

TEST(ReplaceInLines, AnEmptyFileNameIsRefusedFirst)
{
    ExpectThrowsText<std::runtime_error>([] { ReplaceInLines("", "a", "b"); },
                                         "KelInsIO::ReplaceInLines: Filename is empty\nReplaced: a\nReplacing: b");
    ExpectThrowsText<std::runtime_error>([] { ReplaceInLines("", "", ""); },
                                         "KelInsIO::ReplaceInLines: Filename is empty\nReplaced: \nReplacing: ");
}

TEST(ReplaceInLines, AnEmptySearchTextDoesNotTouchTheFile)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one\ntwo\n");
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "", "b"), 0);
    EXPECT_EQ(FileContentIfAny(directory / "a.txt"), "one\ntwo\n");
    EXPECT_EQ(ReplaceInLines(directory / "missing", "", "b"), 0);
    EXPECT_EQ(FileContentIfAny(directory / "missing"), "(no file)");
}

TEST(ReplaceInLines, AMissingFileIsRefusedUnderItsNormalisedName)
{
    const TempDirectory directory;
    const std::string text = "\nReplaced: a\nReplacing: b";
    ExpectThrowsText<std::runtime_error>([&] { ReplaceInLines(directory.Path() + "/no/file", "a", "b"); },
                                         "KelInsIO::ReplaceInLines: Failed to open " + directory.Path() + "\\no\\file" +
                                             text);
    ExpectThrowsText<std::runtime_error>([&] { ReplaceInLines(directory.Path(), "a", "b"); },
                                         "KelInsIO::ReplaceInLines: Failed to open " + directory.Path() + text);
}

TEST(ReplaceInLines, AFileThatIsBeingWrittenIsRefused)
{
    const TempDirectory directory;
    const std::ofstream writer = KelInsIO::GetOutputFileStream(directory / "a.txt", std::ios_base::out);
    ExpectThrowsText<std::runtime_error>([&] { ReplaceInLines(directory / "a.txt", "a", "b"); },
                                         "KelInsIO::ReplaceInLines: Failed to open " + (directory / "a.txt") +
                                             "\nReplaced: a\nReplacing: b");
}

TEST(ReplaceInLines, SlashesAndNamesOutsideAsciiWork)
{
    const TempDirectory directory;
    const std::string name = "gr\xC3\xBC\xC3\x9F \xE6\x97\xA5.txt";
    MakeFile(directory / name, "\xC3\xBC");
    EXPECT_EQ(ReplaceInLines(KelInsIO::Path::Slashify(directory / name), "\xC3\xBC", "ue"), 1);
    EXPECT_EQ(FileContentIfAny(directory / name), "ue");
}

TEST(ReplaceInLines, HandlesAFileOfManyMegabytes)
{
    const TempDirectory directory;
    std::string content;
    std::string expected;
    for (int i = 0; i < 300'000; ++i) {
        content += "line with an X and another X in it\n";
        expected += i == 0 ? "" : "\r\n";
        expected += "line with an why and another why in it";
    }
    content += std::string(2'000'000, 'a'); // one huge line
    expected += "\r\n" + std::string(2'000'000, 'a');
    MakeFile(directory / "a.txt", content);
    EXPECT_EQ(ReplaceInLines(directory / "a.txt", "X", "why"), 600'000);
    EXPECT_TRUE(FileContentIfAny(directory / "a.txt") == expected);
}

TEST(ReplaceInLines, GivesItsHandlesBack)
{
    const TempDirectory directory;
    MakeFile(directory / "a.txt", "one");
    ReplaceInLines(directory / "a.txt", "one", "1");
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 50; ++i)
        ReplaceInLines(directory / "a.txt", "1", "1");
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
