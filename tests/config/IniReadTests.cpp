#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using KelInsIniFile::KeyNotFoundException;
using KelInsIniFile::ReadValueOfKey;

static_assert(std::is_base_of_v<std::runtime_error, KeyNotFoundException>);

struct ReadCase
{
    const char* label;
    std::string content;
    std::string section;
    std::string key;
    std::string value;

    friend void PrintTo(const ReadCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const ReadCase kReadCases[] = {
    {"EmptyValue", "[S]\r\nA=\r\n", "S", "A", ""},
    {"KeyWithBlank", "[S]\r\nA = 1\r\n", "S", "A ", " 1"},
    {"SecondEqualsSign", "[S]\r\nA=1=2\r\n", "S", "A", "1=2"},
    {"NoSection", "A=1\r\n[S]\r\nA=2\r\n", "", "A", "1"},
    {"FileWithoutHeaders", "A=1\r\nB=2\r\n", "", "B", "2"},
    {"BlanksAroundTheHeader", "\t [Main] \t\r\nA=1\r\n", "Main", "A", "1"},
    {"EmptyBracketsCloseNothing", "[S]\r\n[]\r\nA=1\r\n", "S", "A", "1"},
    {"CommentLookingKey", "[S]\r\n;A=1\r\n", "S", ";A", "1"},
    {"RepeatedSection", "[S]\r\nA=1\r\n[T]\r\n[S]\r\nB=2\r\n", "S", "B", "2"},
    {"FirstLineWins", "[S]\r\nA=1\r\nA=2\r\n", "S", "A", "1"},
    {"ShellFile", "K=1\r\nexport K\r\nL=2\r\nexport L\r\n", "", "L", "2"},
    {"LfOnly", "[S]\nA=1\n", "S", "A", "1"},
    {"NoFinalLineEnd", "[S]\r\nA=1", "S", "A", "1"},
    {"CrCrLf", "[S]\r\nA=1\r\r\n", "S", "A", "1\r"},
    {"CtrlZDoesNotEndTheFile", "[S]\r\n\x1A\r\nA=1\r\n", "S", "A", "1"},
    {"NonAscii", "[\xC3\x9C]\r\n\xC3\xA4=\xF0\x9F\x8D\x8E\r\n", "\xC3\x9C", "\xC3\xA4", "\xF0\x9F\x8D\x8E"},
    {"ByteOrderMark", "\xEF\xBB\xBF[S]\r\n[T]\r\nA=1\r\n", "T", "A", "1"},
};

class ReadValueOfKeyTable : public testing::TestWithParam<ReadCase>
{};

TEST_P(ReadValueOfKeyTable, GivesTheValue)
{
    const TempDirectory directory;
    MakeFile(directory / "a.ini", GetParam().content);
    EXPECT_EQ(ReadValueOfKey(directory / "a.ini", GetParam().section, GetParam().key), GetParam().value);
    EXPECT_EQ(FileContentIfAny(directory / "a.ini"), GetParam().content);
}

INSTANTIATE_TEST_SUITE_P(Table, ReadValueOfKeyTable, testing::ValuesIn(kReadCases),
                         [](const auto& test) { return std::string(test.param.label); });

struct NotFoundCase
{
    const char* label;
    std::string content;
    std::string section;
    std::string key;

    friend void PrintTo(const NotFoundCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const NotFoundCase kNotFoundCases[] = {
    {"KeyIsTakenVerbatim", "[S]\r\nA = 1\r\n", "S", "A"},
    {"HeaderWithComment", "[Main] ; note\r\nA=1\r\n", "Main", "A"},
    {"AfterTheFirstHeader", "[S]\r\nA=1\r\n", "", "A"},
    {"SectionCase", "[main]\r\nA=1\r\n", "Main", "A"},
    {"KeyCase", "[S]\r\na=1\r\n", "S", "A"},
    {"EmptyFile", "", "S", "A"},
    {"EmptyFileNoSection", "", "", "A"},
    {"ExportLine", "export K\r\n", "", "export K"},
    {"HeaderIsNoKeyLine", "[A=1]\r\n", "", "[A"},
    {"ByteOrderMarkHidesAHeader", "\xEF\xBB\xBF[S]\r\nA=1\r\n", "S", "A"},
    {"KeyWithEqualsSign", "A=B=1\r\n", "", "A=B"},
};

class KeyNotFound : public testing::TestWithParam<NotFoundCase>
{};

TEST_P(KeyNotFound, Throws)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    MakeFile(file, GetParam().content);
    const std::size_t handles = HandleCount();
    ExpectThrowsText<KeyNotFoundException>([&] { ReadValueOfKey(file, GetParam().section, GetParam().key); },
                                           "The key " + GetParam().key + " was not found in section " +
                                               GetParam().section + " in file " + file);
    EXPECT_EQ(HandleCount(), handles);
}

INSTANTIATE_TEST_SUITE_P(Table, KeyNotFound, testing::ValuesIn(kNotFoundCases),
                         [](const auto& test) { return std::string(test.param.label); });

/// Neither KeyNotFoundException nor anything else that derives from std::runtime_error.
void ExpectPlainError(const std::string& file, const std::string& key, const std::string& text)
{
    try {
        ReadValueOfKey(file, "S", key);
        ADD_FAILURE() << "threw nothing";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), text);
        EXPECT_EQ(typeid(error), typeid(std::runtime_error));
    }
}

TEST(ReadValueOfKey, RefusesEmptyArgumentsTheFileNameFirst)
{
    ExpectPlainError("", "", "Filename is empty");
    ExpectPlainError("", "A", "Filename is empty");
    ExpectPlainError("missing.ini", "", "Key is empty");
}

TEST(ReadValueOfKey, SaysWhichFileCannotBeOpened)
{
    const TempDirectory directory;
    ExpectPlainError(directory / "missing.ini", "A", "Failed to open " + (directory / "missing.ini"));
    ExpectPlainError(directory.Path(), "A", "Failed to open " + directory.Path());
    const std::ofstream writer = KelInsIO::GetOutputFileStream(directory / "a.ini", std::ios_base::out);
    ExpectPlainError(directory / "a.ini", "A", "Failed to open " + (directory / "a.ini"));
    MakeFile(directory / "b.ini", "[S]\r\nA=1\r\n");
    const std::string withNul = (directory / "b.ini") + std::string(1, '\0');
    ExpectPlainError(withNul, "A", ("Failed to open " + withNul).c_str());
}

TEST(ReadValueOfKey, ReadsReadOnlyFiles)
{
    const TempDirectory directory;
    MakeFile(directory / "a.ini", "A=1");
    ASSERT_TRUE(KelInsIO::SetReadOnly(directory / "a.ini", true));
    EXPECT_EQ(ReadValueOfKey(directory / "a.ini", "", "A"), "1");
    EXPECT_TRUE(IsReadOnly(directory / "a.ini"));
}

TEST(ReadValueOfKey, ReadsUnderNamesOfAnyLengthAndScript)
{
    const TempDirectory directory;
    std::string path = directory / "gr\xC3\xBC\xC3\x9F";
    while (path.size() < 400)
        path += '\\' + std::string(90, 'd');
    KelInsIO::CreateDir(path);
    path += "\\\xE6\x97\xA5.ini";
    KelInsIO::GetOutputFileStream(path, std::ios_base::out) << "A=1\n";
    EXPECT_EQ(ReadValueOfKey(path, "", "A"), "1");
    EXPECT_EQ(ReadValueOfKey(KelInsIO::Path::Slashify(path), "", "A"), "1");
    KelInsIO::Delete(directory / "gr\xC3\xBC\xC3\x9F");
}

TEST(ReadValueOfKey, ReadsHugeLines)
{
    const TempDirectory directory;
    const std::string huge(5'000'000, 'x');
    MakeFile(directory / "a.ini", huge + "\r\nA=" + huge + "\r\nB=2\r\n");
    EXPECT_TRUE(ReadValueOfKey(directory / "a.ini", "", "A") == huge);
    EXPECT_EQ(ReadValueOfKey(directory / "a.ini", "", "B"), "2");
}

TEST(ReadValueOfKey, StopsAtTheFirstMatch)
{
    const TempDirectory directory;
    MakeFile(directory / "a.ini", "A=1\r\n" + std::string(1'000'000, 'x'));
    const ImportHook<int(int, void*, unsigned)> hook("_read", {L"libstdc++-6.dll"});
    EXPECT_EQ(ReadValueOfKey(directory / "a.ini", "", "A"), "1");
    EXPECT_EQ(hook.Calls().size(), 1u);
}

/// The read that fails is the second one: the first 32 KiB are there.
TEST(ReadValueOfKey, AfterAReadErrorOnlyWholeLinesWereRead)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    const std::string filler = ";" + std::string(997, 'x') + "\r\n"; // 1,000 bytes
    std::string content;
    for (int i = 0; i < 20; ++i)
        content += filler;
    content += "Whole=1\r\n";
    for (int i = 0; i < 11; ++i)
        content += filler;
    MakeFile(file, content + "Cut=" + std::string(40'000, 'y') + "\r\nA=2\r\n");
    ASSERT_EQ(ReadValueOfKey(file, "", "A"), "2");
    ImportHook<int(int, void*, unsigned)> hook("_read", {L"libstdc++-6.dll"});
    hook.FailCall(2, -1, Errno(EIO));
    EXPECT_EQ(ReadValueOfKey(file, "", "Whole"), "1"); // before anything fails
    EXPECT_THROW(ReadValueOfKey(file, "", "Cut"), KelInsIniFile::KeyNotFoundException);
}

TEST(ReadValueOfKey, GivesItsHandleBack)
{
    const TempDirectory directory;
    MakeFile(directory / "a.ini", "A=1\r\n");
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 100; ++i)
        ReadValueOfKey(directory / "a.ini", "", "A");
    EXPECT_EQ(HandleCount(), handles);
}

TEST(ReadValueOfKey, MayReadOneFileFromSeveralThreads)
{
    const TempDirectory directory;
    const std::string file = directory / "a.ini";
    MakeFile(file, "[S]\r\nA=1\r\n");
    std::vector<int> found(4);
    {
        std::vector<std::jthread> threads;
        for (int& count : found)
            threads.emplace_back([&count, &file] {
                for (int i = 0; i < 100; ++i)
                    count += ReadValueOfKey(file, "S", "A") == "1";
            });
    }
    EXPECT_EQ(found, std::vector<int>(4, 100));
}

} // namespace
