#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <share.h>
#include <sys/stat.h>

namespace {

using Names = std::vector<std::string>;
using OpenHook = ImportHook<errno_t(int*, const wchar_t*, int, int, int)>;
using ReadHook = ImportHook<int(int, void*, unsigned)>;
using WriteHook = ImportHook<int(int, const void*, unsigned)>;

std::string SystemText(std::uint32_t code)
{
    return " - " + KelInsSys::GetLastErrorMessage(code) + "\n";
}

std::string RuntimeText(std::int32_t value)
{
    return " - " + KelInsSys::GetErrnoMessage(value) + "\n";
}

class CopyTest : public testing::Test
{
protected:
    CopyTest()
    {
        MakeFile(source, "content");
        EXPECT_THROW(KelInsIO::Copy(directory / "missing", destination), std::runtime_error); // opens things for good
        handles = HandleCount();
    }

    ~CopyTest() override { EXPECT_EQ(HandleCount(), handles); }

    const TempDirectory directory;
    const std::string source = directory / "source";
    const std::string destination = directory / "destination";
    std::size_t handles = 0;
};

TEST_F(CopyTest, CopiesTheContent)
{
    std::string content;
    for (int i = 0; i < 200'000; ++i)
        content += static_cast<char>(i * 7919 >> 3); // NUL, CR, LF and 0x1A among them
    for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 131072u, 200000u}) {
        MakeFile(source, content.substr(0, size));
        KelInsIO::Copy(source, destination);
        EXPECT_EQ(FileContent(destination), content.substr(0, size)) << size;
    }
}

TEST_F(CopyTest, OverwritesAndTruncates)
{
    MakeFile(destination, "something that is longer than the source");
    KelInsIO::Copy(source, destination);
    EXPECT_EQ(FileContent(destination), "content");
    EXPECT_EQ(FileContent(source), "content");
}

TEST_F(CopyTest, CreatesTheDirectoriesAbove)
{
    KelInsIO::Copy(source, directory / "a/b//c");
    EXPECT_EQ(FileContent(directory / "a\\b\\c"), "content");
}

TEST_F(CopyTest, NonAsciiAndLongNames)
{
    const std::string name = "gr\xC3\xBC\xC3\x9F \xF0\x9F\x8D\x8E";
    const LongDirectory deep(directory.Path());
    KelInsIO::Copy(source, deep.Path() + "\\a\\" + name);
    KelInsIO::Copy(deep.Path() + "\\a\\" + name, directory / name);
    EXPECT_EQ(FileContent(directory / name), "content");
    KelInsIO::Copy(deep.Path() + "\\a", deep.Path() + "\\b");
    EXPECT_EQ(FileContent(deep.Path() + "\\b\\" + name), "content");
}

TEST_F(CopyTest, DoesNotCopyAttributesAndTimes)
{
    KelInsIO::SetTime(source, 1'000'000, 1'000'000);
    const ReadOnlyGuard readOnly(source);
    KelInsIO::Copy(source, destination);
    EXPECT_FALSE(KelInsIO::SetReadOnly(destination, false)); // is writable already
    EXPECT_NE(KelInsIO::GetTime(destination).modificationTime, 1'000'000);
}

TEST_F(CopyTest, IntoTheDriveRootTriesToWriteThere)
{
    OpenHook hook("_wsopen_s");
    hook.FailCall(2, EACCES, NoCode());
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, "C:\\kelins_never_written"); },
                                         "Cannot write into C:\\kelins_never_written" + RuntimeText(EACCES));
}

TEST_F(CopyTest, BareNamesNeedNoDirectory)
{
    OpenHook hook("_wsopen_s");
    hook.FailCall(2, EACCES, NoCode());
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, "kelins_never_written"); },
                                         "Cannot write into kelins_never_written" + RuntimeText(EACCES));
}

TEST_F(CopyTest, OpensAsOthersMayReadButNotWriteAndChildrenInheritNothing)
{
    OpenHook hook("_wsopen_s");
    KelInsIO::Copy(source, destination);
    ASSERT_EQ(hook.Calls().size(), 2u);
    const auto& [read, readPath, readFlags, readShare, readMode] = hook.Calls()[0];
    EXPECT_EQ(readPath, KelInsString::Widen(source));
    EXPECT_EQ(readFlags, _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    EXPECT_EQ(readShare, _SH_DENYWR);
    EXPECT_EQ(readMode, _S_IREAD | _S_IWRITE);
    const auto& [write, writePath, writeFlags, writeShare, writeMode] = hook.Calls()[1];
    EXPECT_EQ(writePath, KelInsString::Widen(destination));
    EXPECT_EQ(writeFlags, _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT);
    EXPECT_EQ(writeShare, _SH_DENYWR);
    EXPECT_EQ(writeMode, _S_IREAD | _S_IWRITE);
}

TEST_F(CopyTest, ReadsBlocksOf64KiB)
{
    MakeFile(source, std::string(100'000, 'x'));
    ReadHook hook("_read");
    KelInsIO::Copy(source, destination);
    ASSERT_EQ(hook.Calls().size(), 3u);
    for (const auto& call : hook.Calls())
        EXPECT_EQ(std::get<2>(call), 65536u);
}

TEST_F(CopyTest, EmptyPathsThrow)
{
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy("", destination); }, "Copy - empty source path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy("", ""); }, "Copy - empty source path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, ""); }, "Copy - empty destination path\n");
}

TEST_F(CopyTest, MissingSourceThrows)
{
    const std::string missing = directory / "missing";
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(missing, directory / "a\\b"); },
                                         "GetType - " + missing + SystemText(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(KelInsIO::Exists(directory / "a"));
}

TEST_F(CopyTest, OntoItselfThrowsAndKeepsTheContent)
{
    std::string spelling = source;
    spelling[0] = spelling[0] == 'C' ? 'c' : 'C';
    for (const std::string& same : {source, spelling, directory.Path() + "/./source"})
        ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, same); },
                                             "Cannot copy " + source + " to itself.\n");
    EXPECT_EQ(FileContent(source), "content");
}

TEST_F(CopyTest, OntoAHardLinkOfItselfThrowsAndKeepsTheContent)
{
    ASSERT_TRUE(
        ::CreateHardLinkW(KelInsString::Widen(destination).c_str(), KelInsString::Widen(source).c_str(), nullptr));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, destination); },
                                         "Cannot copy " + source + " to itself.\n");
    EXPECT_EQ(FileContent(source), "content");
}

using FileTimeFunction = BOOL(HANDLE, FILETIME*, FILETIME*, FILETIME*);

struct IdentityCase
{
    const char* label;
    DWORD volume, high, low; // of the second file; the first has 1, 2, 3
    bool same;

    friend void PrintTo(const IdentityCase& c, std::ostream* out) { *out << c.label; }
};

constexpr IdentityCase kIdentities[] = {
    {"Same", 1, 2, 3, true},
    {"OtherVolume", 9, 2, 3, false},
    {"OtherHighIndex", 1, 9, 3, false},
    {"OtherLowIndex", 1, 2, 9, false},
};

class CopyIdentity : public CopyTest, public testing::WithParamInterface<IdentityCase>
{};

TEST_P(CopyIdentity, IsVolumeAndBothHalvesOfTheIndex)
{
    MakeFile(destination);
    const ImportHook<FileTimeFunction> equalTimes("GetFileTime", [](HANDLE, FILETIME* creation, FILETIME*, FILETIME*) {
        *creation = {};
        return TRUE;
    });
    using Hook = ImportHook<BOOL(HANDLE, LPBY_HANDLE_FILE_INFORMATION)>;
    Hook hook("GetFileInformationByHandle", [&](HANDLE, LPBY_HANDLE_FILE_INFORMATION identity) {
        const IdentityCase& c = GetParam();
        const bool first = hook.Calls().size() == 1;
        identity->dwVolumeSerialNumber = first ? 1 : c.volume;
        identity->nFileIndexHigh = first ? 2 : c.high;
        identity->nFileIndexLow = first ? 3 : c.low;
        return TRUE;
    });
    if (GetParam().same)
        EXPECT_THROW(KelInsIO::Copy(source, destination), std::runtime_error);
    else
        EXPECT_NO_THROW(KelInsIO::Copy(source, destination));
}

INSTANTIATE_TEST_SUITE_P(Table, CopyIdentity, testing::ValuesIn(kIdentities),
                         [](const auto& test) { return std::string(test.param.label); });

TEST_F(CopyTest, TimesThatAreNotToldLeaveItToTheIdentity)
{
    for (const std::size_t untold : {1u, 2u}) {
        ImportHook<FileTimeFunction> times("GetFileTime");
        times.FailCall(untold, FALSE, LastError(ERROR_ACCESS_DENIED));
        EXPECT_THROW(KelInsIO::Copy(source, source), std::runtime_error);
        EXPECT_EQ(times.Calls().size(), untold);
    }
    EXPECT_EQ(FileContent(source), "content");
}

TEST_F(CopyTest, FilesMadeAtDifferentTimesAreDifferent)
{
    MakeFile(destination);
    ImportHook<FileTimeFunction> times("GetFileTime", [&](HANDLE, FILETIME* creation, FILETIME*, FILETIME*) {
        *creation = {static_cast<DWORD>(times.Calls().size()), 0};
        return TRUE;
    });
    const ImportHook<BOOL(HANDLE, LPBY_HANDLE_FILE_INFORMATION)> identities("GetFileInformationByHandle");
    KelInsIO::Copy(source, destination);
    EXPECT_EQ(times.Calls().size(), 2u);
    EXPECT_TRUE(identities.Calls().empty()); // takes the system longer
}

TEST_F(CopyTest, SourceThatNobodyElseMayOpenThrows)
{
    MakeFile(destination, "kept");
    const UniqueFileHandle user(::CreateFileW(KelInsString::Widen(source).c_str(), GENERIC_READ, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(user);
    ++handles; // ends after the fixture has looked
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, destination); },
                                         "Cannot read " + source + RuntimeText(EACCES));
    EXPECT_EQ(FileContent(destination), "kept");
    --handles;
}

TEST_F(CopyTest, SourceInUseByAWriterThrows)
{
    const UniqueFileHandle writer(::CreateFileW(KelInsString::Widen(source).c_str(), GENERIC_WRITE,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                                FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(writer);
    ++handles; // ends after the fixture has looked
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, destination); },
                                         "Cannot read " + source + RuntimeText(EACCES));
    EXPECT_FALSE(KelInsIO::Exists(destination));
    --handles;
}

TEST_F(CopyTest, DestinationThatIsADirectoryThrows)
{
    MakeDirectories(destination);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(source, destination); },
                                         "Cannot write into " + destination + RuntimeText(EACCES));
}

TEST_F(CopyTest, Directories)
{
    MakeDirectories(directory / "tree\\a\\b");
    MakeDirectories(directory / "tree\\empty\\deep");
    MakeFile(directory / "tree\\1", "one");
    MakeFile(directory / "tree\\a\\2", "two");
    MakeFile(directory / "tree\\a\\b\\3", "three");
    KelInsIO::Copy(directory / "tree", directory / "new\\copy");
    EXPECT_EQ(TreeNames(directory / "new\\copy"), TreeNames(directory / "tree"));
    EXPECT_EQ(TreeNames(directory / "new\\copy"), Names({"1", "a/", "a/2", "a/b/", "a/b/3", "empty/", "empty/deep/"}));
    EXPECT_EQ(FileContent(directory / "new\\copy\\a\\b\\3"), "three");
}

TEST_F(CopyTest, DirectoryIntoAnExistingOneMergesThem)
{
    MakeDirectories(directory / "tree");
    MakeFile(directory / "tree\\1", "new");
    MakeDirectories(destination);
    MakeFile(destination + "\\1", "old");
    MakeFile(destination + "\\2", "kept");
    KelInsIO::Copy(directory / "tree", destination);
    EXPECT_EQ(FileContent(destination + "\\1"), "new");
    EXPECT_EQ(FileContent(destination + "\\2"), "kept");
}

TEST_F(CopyTest, EmptyDirectory)
{
    MakeDirectories(directory / "empty");
    KelInsIO::Copy(directory / "empty", directory / "x\\y");
    EXPECT_EQ(TreeNames(directory / "x"), Names({"y/"}));
}

TEST(CopyLink, ToADirectoryIsFollowed)
{
    const TempDirectory directory;
    const std::string destination = directory / "destination";
    MakeDirectories(directory / "target");
    MakeFile(directory / "target\\1", "one");
    MakeDirectories(directory / "tree");
    const DirectoryLink link(directory / "tree\\link", directory / "target");
    KelInsIO::Copy(directory / "tree", destination);
    EXPECT_EQ(FileContent(destination + "\\link\\1"), "one");
    EXPECT_EQ(TreeNames(destination), Names({"link/", "link/1"}));
    KelInsIO::Copy(directory / "tree\\link", directory / "again");
    EXPECT_EQ(TreeNames(directory / "again"), Names({"1"}));
}

TEST_F(CopyTest, DirectoryOntoItselfThrowsAtItsFirstFile)
{
    MakeDirectories(directory / "tree");
    MakeFile(directory / "tree\\1", "one");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Copy(directory / "tree", directory / "tree"); },
                                         "Cannot copy " + (directory / "tree\\1") + " to itself.\n");
    EXPECT_EQ(FileContent(directory / "tree\\1"), "one");
}

TEST_F(CopyTest, FailureInADirectoryKeepsWhatWasDone)
{
    MakeDirectories(directory / "tree");
    MakeFile(directory / "tree\\1", "one");
    MakeFile(directory / "tree\\2", "two");
    OpenHook hook("_wsopen_s");
    hook.FailCall(4, EMFILE, NoCode());
    EXPECT_THROW(KelInsIO::Copy(directory / "tree", destination), std::runtime_error);
    EXPECT_EQ(TreeNames(destination).size(), 1u);
}

} // namespace
