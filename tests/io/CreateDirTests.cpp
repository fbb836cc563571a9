#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using CreateDirectoryHook = ImportHook<BOOL(LPCWSTR, LPSECURITY_ATTRIBUTES)>;
using StatHook = ImportHook<int(const wchar_t*, struct _stat64*)>;

std::string SystemText(std::uint32_t code)
{
    return " - " + KelInsSys::GetLastErrorMessage(code) + "\n";
}

std::vector<std::wstring> Created(const CreateDirectoryHook& hook)
{
    std::vector<std::wstring> paths;
    for (const auto& call : hook.Calls())
        paths.push_back(std::get<0>(call));
    return paths;
}

TEST(CreateDir, CreatesTheWholeChain)
{
    const TempDirectory directory;
    KelInsIO::CreateDir(directory / "a\\b\\c");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/", "a/b/", "a/b/c/"}));
    KelInsIO::CreateDir(directory / "a\\x");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/", "a/b/", "a/b/c/", "a/x/"}));
}

TEST(CreateDir, ExistingDirectoryIsSuccess)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    CreateDirectoryHook hook("CreateDirectoryW");
    KelInsIO::CreateDir(directory.Path());
    KelInsIO::CreateDir(directory.Path() + "\\");
    EXPECT_TRUE(hook.Calls().empty());
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"file"}));
}

TEST(CreateDir, NormalizesThePath)
{
    const TempDirectory directory;
    KelInsIO::CreateDir('"' + directory.Path() + "//a//b/\"");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/", "a/b/"}));
}

TEST(CreateDir, NonAsciiNames)
{
    const TempDirectory directory;
    const std::string name = "gr\xC3\xBC\xC3\x9F \xF0\x9F\x8D\x8E";
    KelInsIO::CreateDir(directory / (name + '\\' + name));
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{name + '/', name + '/' + name + '/'}));
}

TEST(CreateDir, LongPaths)
{
    const TempDirectory directory;
    const LongDirectory deep(directory.Path());
    KelInsIO::CreateDir(deep.Path() + "\\a/b");
    EXPECT_EQ(TreeNames(deep.Path()), (std::vector<std::string>{"a/", "a/b/"}));
}

TEST(CreateDir, RelativePaths)
{
    const TempDirectory directory;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(directory.Path());
    KelInsIO::CreateDir("a/b");
    KelInsIO::CreateDir("c");
    std::filesystem::current_path(before);
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/", "a/b/", "c/"}));
}

TEST(CreateDir, LastNameOfOneDotCreatesOnlyWhatIsAboveIt)
{
    const TempDirectory directory;
    CreateDirectoryHook hook("CreateDirectoryW");
    KelInsIO::CreateDir(directory / "a\\.");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/"}));
    EXPECT_EQ(hook.Calls().size(), 1u);
    KelInsIO::CreateDir(".");
    EXPECT_EQ(hook.Calls().size(), 1u);
}

TEST(CreateDir, DotsOnTheWay)
{
    const TempDirectory directory;
    KelInsIO::CreateDir(directory / "a\\.\\b");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/", "a/b/"}));
}

TEST(CreateDir, DriveIsAnExistingDirectory)
{
    CreateDirectoryHook hook("CreateDirectoryW");
    for (const char* drive : {"C:", "C:\\", "c:/"})
        EXPECT_NO_THROW(KelInsIO::CreateDir(drive)) << drive;
    EXPECT_TRUE(hook.Calls().empty());
}

TEST(CreateDir, ShareIsAskedForWithASeparatorToo)
{
    CreateDirectoryHook create("CreateDirectoryW");
    StatHook stat("_wstat64", [](const wchar_t* path, struct _stat64* record) {
        *record = {};
        record->st_mode = _S_IFDIR;
        return path == std::wstring(LR"(\\srv\share\)") ? 0 : -1;
    });
    EXPECT_NO_THROW(KelInsIO::CreateDir("//srv/share"));
    EXPECT_TRUE(create.Calls().empty());
}

TEST(CreateDir, MissingDriveThrows)
{
    if (KelInsIO::GetFreeSpaceOnDisk("Q:") != 0)
        GTEST_SKIP() << "there is a drive Q";
    EXPECT_THROW(KelInsIO::CreateDir("Q:"), std::runtime_error);
    EXPECT_THROW(KelInsIO::CreateDir("Q:\\x"), std::runtime_error);
}

TEST(CreateDir, EmptyPathsThrow)
{
    for (const char* path : {"", "\\", "///", "1:x", R"(\\server)"})
        ExpectThrowsText<std::runtime_error>([&] { KelInsIO::CreateDir(path); }, "CreateDir - empty path\n");
}

TEST(CreateDir, FileInThePlaceThrows)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::CreateDir(directory.Path() + "//file"); },
                                         "CreateDir - " + (directory / "file") + " is not a directory.\n");
}

TEST(CreateDir, FailureAboveIsSwallowedAndTheLastOneReported)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    const std::string path = directory / "file\\a\\b";
    CreateDirectoryHook hook("CreateDirectoryW");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::CreateDir(path); },
                                         "CreateDirectory - " + path + SystemText(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(hook.Calls().size(), 2u);
}

TEST(CreateDir, FailureAboveWithSuccessBelowIsSuccess)
{
    const TempDirectory directory;
    StatHook stat("_wstat64");
    stat.FailFrom(1, -1, Errno(EACCES)); // as where the directories above may not be read
    CreateDirectoryHook create("CreateDirectoryW");
    EXPECT_NO_THROW(KelInsIO::CreateDir(directory / "a"));
    EXPECT_GE(create.Calls().size(), 3u); // from the drive down
    EXPECT_EQ(Created(create).front(), L"C:");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/"}));
}

TEST(CreateDir, HighestDirectoryFirst)
{
    const std::vector<std::wstring> expected = {LR"(\\s\h)", LR"(\\s\h\a)", LR"(\\s\h\a\b)"};
    StatHook stat("_wstat64");
    stat.FailFrom(1, -1, Errno(ENOENT));
    CreateDirectoryHook create("CreateDirectoryW", [](LPCWSTR, LPSECURITY_ATTRIBUTES) { return TRUE; });
    KelInsIO::CreateDir("//s/h/a/b");
    EXPECT_EQ(Created(create), expected);
    for (const auto& call : create.Calls())
        EXPECT_EQ(std::get<1>(call), nullptr); // the security of the directory above
}

TEST(CreateDir, RefusalThrows)
{
    const TempDirectory directory;
    CreateDirectoryHook hook("CreateDirectoryW");
    hook.FailCall(2, FALSE, LastError(ERROR_DISK_FULL));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::CreateDir(directory / "a/b"); },
                                         "CreateDirectory - " + (directory / "a\\b") + SystemText(ERROR_DISK_FULL));
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"a/"})); // nothing is rolled back
}

TEST(CreateDir, NotADirectoryAboveIsSwallowedToo)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    const std::string path = directory / "file\\a";
    EXPECT_THROW(KelInsIO::CreateDir(path), std::runtime_error);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::CreateDir(path); },
                                         "CreateDirectory - " + path + SystemText(ERROR_PATH_NOT_FOUND));
}

} // namespace
