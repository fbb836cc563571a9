#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using KelInsIniFile::Where;
using KelInsIniFile::Write;

void WriteKey(const std::string& file, const std::string& section, const std::string& key, const std::string& value)
{
    Write(file, section, key, value, Where::Replace, ';', false);
}

void WriteShell(const std::string& file, const std::string& key, const std::string& value)
{
    Write(file, "ignored", key, value, Where::Replace, ';', true);
}

// --- edits, whole: the lines in all their variety are tested where they are edited

struct WriteCase
{
    const char* label;
    std::string content;
    std::string section;
    Where where;
    std::string value; // of the key PATH
    bool shellExport;
    std::string result;

    friend void PrintTo(const WriteCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const WriteCase kWriteCases[] = {
    {"NewKeyBeforeTheFirstHeader", "[A]\r\n", "", Where::Replace, "v", false, "PATH=v\r\n[A]\r\n"},
    {"NewKeyBeforeTheNextHeader", "[S]\r\n[T]\r\n", "S", Where::Replace, "v", false, "[S]\r\nPATH=v\r\n[T]\r\n"},
    {"NewSection", "[A]\r\n", "S", Where::Replace, "v", false, "[A]\r\n[S]\r\nPATH=v\r\n"},
    {"Append", "PATH=a\r\n", "", Where::Append, "b", false, "PATH=a;b\r\n"},
    {"AppendToSeparator", "PATH=a;\r\n", "", Where::Append, "b", false, "PATH=a;b\r\n"},
    {"AppendSeparatorFirst", "PATH=a\r\n", "", Where::Append, ";b", false, "PATH=a;b\r\n"},
    {"AppendToNothing", "PATH=\r\n", "", Where::Append, "b", false, "PATH=b\r\n"},
    {"Prepend", "PATH=a\r\n", "", Where::Prepend, "b", false, "PATH=b;a\r\n"},
    {"AppendToNoKey", "X=1\r\n", "", Where::Append, "b", false, "X=1\r\nPATH=b\r\n"},
    {"PrependToNoKey", "X=1\r\n", "", Where::Prepend, "b", false, "X=1\r\nPATH=b\r\n"},
    {"UnknownWhereReplaces", "PATH=a\r\n", "", static_cast<Where>(77), "b", false, "PATH=b\r\n"},
    {"Shell", "PATH=1\r\nexport PATH\r\n", "", Where::Replace, "2", true, "PATH=2\r\nexport PATH\r\n"},
    {"ShellAppend", "PATH=1\r\nexport PATH\r\n", "S", Where::Append, "2", true, "PATH=1;2\r\nexport PATH\r\n"},
    {"ShellNewKey", "K=1\r\nexport K\r\n", "", Where::Replace, "2", true,
     "K=1\r\nexport K\r\nPATH=2\r\nexport PATH\r\n"},
    {"LfBecomesCrLf", "; note\n\n[S]\nPATH=1\n", "S", Where::Replace, "2", false, "; note\r\n\r\n[S]\r\nPATH=2\r\n"},
    {"NoFinalLineEnd", "[S]\r\nPATH=1", "S", Where::Replace, "2", false, "[S]\r\nPATH=2\r\n"},
    {"CrCrLf", "A=1\r\r\nPATH=1\r\r\n", "", Where::Replace, "2", false, "A=1\r\r\nPATH=2\r\n"},
    {"KeyIsTakenVerbatim", "PATH = 1\r\n", "", Where::Replace, "2", false, "PATH = 1\r\nPATH=2\r\n"},
    {"ByteOrderMark", "\xEF\xBB\xBF[S]\r\nPATH=1\r\n", "S", Where::Replace, "2", false,
     "\xEF\xBB\xBF[S]\r\nPATH=1\r\n[S]\r\nPATH=2\r\n"},
    {"CtrlZ", "\x1A\r\nPATH=1\r\n", "", Where::Replace, "2", false, "\x1A\r\nPATH=2\r\n"},
    {"NonAscii", "[\xC3\x9C]\r\nPATH=1\r\n", "\xC3\x9C", Where::Append, "\xE6\x97\xA5", false,
     "[\xC3\x9C]\r\nPATH=1;\xE6\x97\xA5\r\n"},
    {"ValueWithLineEnd", "PATH=1\r\n", "", Where::Replace, "a\nb", false, "PATH=a\nb\r\n"},
    {"EmptyFile", "", "S", Where::Replace, "", false, "[S]\r\nPATH=\r\n"},
};

class WriteTable : public testing::TestWithParam<WriteCase>
{};

TEST_P(WriteTable, GivesTheFile)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    const WriteCase& c = GetParam();
    MakeFile(file, c.content);
    Write(file, c.section, "PATH", c.value, c.where, ';', c.shellExport);
    EXPECT_EQ(FileContentIfAny(file), c.result);
    EXPECT_EQ(FileContentIfAny(file + "_TmpIniW"), "(no file)");
    EXPECT_FALSE(IsReadOnly(file));
}

INSTANTIATE_TEST_SUITE_P(Table, WriteTable, testing::ValuesIn(kWriteCases),
                         [](const auto& test) { return std::string(test.param.label); });

// --- files

TEST(Write, CreatesTheFileAndItsDirectories)
{
    const TempDirectory directory;
    WriteKey(directory / R"(new\deeper\a.ini)", "S", "K", "v");
    EXPECT_EQ(FileContentIfAny(directory / R"(new\deeper\a.ini)"), "[S]\r\nK=v\r\n");
    WriteKey(directory / "b.ini", "", "K", "v");
    EXPECT_EQ(FileContentIfAny(directory / "b.ini"), "K=v\r\n");
    WriteShell(directory / "c.sh", "K", "v");
    EXPECT_EQ(FileContentIfAny(directory / "c.sh"), "K=v\r\nexport K\r\n");
}

std::string Numbered(char letter, int number)
{
    std::string name(1, letter);
    return name += std::to_string(number);
}

TEST(Write, WhatIsWrittenIsRead)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    for (int i = 0; i < 40; ++i)
        WriteKey(file, Numbered('S', i % 3), Numbered('K', i % 7), Numbered('v', i));
    for (int i = 19; i < 40; ++i)
        EXPECT_EQ(KelInsIniFile::ReadValueOfKey(file, Numbered('S', i % 3), Numbered('K', i % 7)), Numbered('v', i));
}

/// Doubled separators mean the same file to the system, but are not what a path makes of them.
TEST(Write, EditsTheFileOfANameThatIsNotClean)
{
    const TempDirectory directory;
    const std::string file = directory / R"(\a.ini)";
    WriteKey(file, "", "K", "1");
    WriteKey(file, "", "L", "2");
    EXPECT_EQ(FileContentIfAny(directory / "a.ini"), "K=1\r\nL=2\r\n");
}

TEST(Write, KeepsAReadOnlyFileReadOnly)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    MakeFile(file, "K=1\r\n");
    ASSERT_TRUE(KelInsIO::SetReadOnly(file, true));
    WriteKey(file, "", "K", "2");
    EXPECT_EQ(FileContentIfAny(file), "K=2\r\n");
    EXPECT_TRUE(IsReadOnly(file));
    EXPECT_EQ(FileContentIfAny(file + "_TmpIniW"), "(no file)");
}

TEST(Write, ShortensAFile)
{
    const TempDirectory directory;
    MakeFile(directory / "a.ini", "K=" + std::string(200'000, 'x') + "\r\nL=1\r\n");
    WriteKey(directory / "a.ini", "", "K", "");
    EXPECT_EQ(FileContentIfAny(directory / "a.ini"), "K=\r\nL=1\r\n");
}

TEST(Write, KeepsHugeLines)
{
    const TempDirectory directory;
    const std::string huge(3'000'000, 'x');
    MakeFile(directory / "a.ini", huge + "\nK=" + huge);
    Write(directory / "a.ini", "", "K", huge, Where::Append, ',', false);
    EXPECT_TRUE(FileContentIfAny(directory / "a.ini") == huge + "\r\nK=" + huge + ',' + huge + "\r\n");
}

TEST(Write, WorksUnderNamesOfAnyScriptAndWithSlashes)
{
    const TempDirectory directory;
    const std::string file = directory / "gr\xC3\xBC\xC3\x9F\\\xE6\x97\xA5.ini";
    WriteKey(KelInsIO::Path::Slashify(file), "", "K", "1");
    WriteKey(KelInsIO::Path::Slashify(file), "", "L", "2");
    EXPECT_EQ(FileContentIfAny(file), "K=1\r\nL=2\r\n");
}

TEST(Write, WorksUnderLongNames)
{
    const TempDirectory directory;
    std::string path = directory / "long";
    while (path.size() < 400)
        path += '\\' + std::string(90, 'd');
    path += "\\a.ini";
    WriteKey(path, "", "K", "1");
    WriteKey(path, "", "K", "2");
    EXPECT_EQ(KelInsIniFile::ReadValueOfKey(path, "", "K"), "2");
    EXPECT_FALSE(KelInsIO::Exists(path + "_TmpIniW"));
    KelInsIO::Delete(directory / "long");
}

TEST(Write, GivesItsHandlesBack)
{
    const TempDirectory directory;
    WriteKey(directory / "a.ini", "S", "K", "v");
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 50; ++i)
        WriteKey(directory / "a.ini", "S", "K", "v");
    EXPECT_EQ(HandleCount(), handles);
}

class CurrentDirectoryGuard
{
public:
    explicit CurrentDirectoryGuard(const std::string& directory) : before_(std::filesystem::current_path())
    {
        std::filesystem::current_path(directory);
    }

    ~CurrentDirectoryGuard() { std::filesystem::current_path(before_); }

    CurrentDirectoryGuard(const CurrentDirectoryGuard&) = delete;
    CurrentDirectoryGuard& operator=(const CurrentDirectoryGuard&) = delete;

private:
    std::filesystem::path before_;
};

TEST(Write, ABareNameServesOnlyWhereItExists)
{
    const TempDirectory directory;
    const CurrentDirectoryGuard current(directory.Path());
    ExpectThrowsText<std::runtime_error>([] { WriteKey("a.ini", "", "K", "1"); }, "CreateDir - empty path\n");
    EXPECT_TRUE(std::filesystem::is_empty(directory.Path()));
    MakeFile("a.ini", "K=1\r\n");
    WriteKey("a.ini", "", "K", "2");
    EXPECT_EQ(FileContentIfAny(directory / "a.ini"), "K=2\r\n");
    WriteKey("sub\\b.ini", "", "K", "3");
    EXPECT_EQ(FileContentIfAny(directory / "sub\\b.ini"), "K=3\r\n");
}

// --- refusals

TEST(Write, RefusesEmptyArgumentsTheFileNameFirst)
{
    ExpectThrowsText<std::runtime_error>([] { WriteKey("", "S", "", "v"); }, "Filename is empty");
    ExpectThrowsText<std::runtime_error>([] { WriteKey("missing\\a.ini", "S", "", "v"); }, "Key is empty");
    EXPECT_FALSE(KelInsIO::Exists("missing"));
}

/// The system would see the name before the NUL, so the temporary file would be another one.
TEST(Write, RefusesANameWithANul)
{
    const TempDirectory directory;
    const std::string name = directory / "file";
    ExpectThrowsText<std::runtime_error>(
        [&] { KelInsIniFile::Write(name + std::string("\0x", 2), "S", "K", "V", Where::Replace, ';', false); },
        "Failed to open " + name);
    EXPECT_FALSE(KelInsIO::Exists(name));
}

TEST(Write, RefusesAFileThatIsBeingWritten)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    std::ofstream writer = KelInsIO::GetOutputFileStream(file, std::ios_base::out);
    ExpectThrowsText<std::runtime_error>([&] { WriteKey(file, "S", "K", "v"); }, "Failed to open " + file);
    EXPECT_EQ(FileContentIfAny(file + "_TmpIniW"), "(no file)");
}

TEST(Write, LeavesAMalformedShellFileUntouched)
{
    const TempDirectory directory;
    const std::string file = directory / "a.sh";
    const auto expectRefusal = [&](const std::string& content, const std::string& text) {
        MakeFile(file, content);
        KelInsIO::SetReadOnly(file, true);
        ExpectThrowsText<std::runtime_error>([&] { WriteShell(file, "K", "2"); }, file + text);
        EXPECT_EQ(FileContentIfAny(file), content);
        EXPECT_TRUE(IsReadOnly(file));
        EXPECT_EQ(FileContentIfAny(file + "_TmpIniW"), "(no file)");
        KelInsIO::SetReadOnly(file, false);
    };
    expectRefusal("A=1\nK=1\n", R"(: bad format: missing "export K" at the end.)");
    expectRefusal("K=1\nA=1\n", ": bad format: missing \"export K\" after line\nK=1");
}

TEST(Write, ReportsADirectoryThatCannotBeMade)
{
    const TempDirectory directory;
    MakeFile(directory / "file", "x");
    ExpectThrowsText<std::runtime_error>([&] { WriteKey(directory / R"(file\a.ini)", "S", "K", "v"); },
                                         "CreateDir - " + (directory / "file") + " is not a directory.\n");
}

TEST(Write, CannotReplaceADirectory)
{
    const TempDirectory directory;
    const std::string name = directory / "a.ini";
    KelInsIO::CreateDir(name);
    ExpectThrowsText<std::runtime_error>([&] { WriteKey(name, "", "K", "v"); }, "Cannot write into " + name + " - " +
                                                                                    KelInsSys::GetErrnoMessage(EACCES) +
                                                                                    "\n");
    EXPECT_TRUE(KelInsIO::IsDirectory(name));
    EXPECT_EQ(FileContentIfAny(name + "_TmpIniW"), "K=v\r\n");
}

} // namespace
