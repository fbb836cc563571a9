#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <ctime>
#include <gtest/gtest.h>

namespace {

using KelInsIO::Type;

const std::string kNonAscii = "gr\xC3\xBC\xC3\x9F \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8D\x8E";

std::string SystemText(std::uint32_t code)
{
    return " - " + KelInsSys::GetLastErrorMessage(code) + "\n";
}

std::string RuntimeText(std::int32_t value)
{
    return " - " + KelInsSys::GetErrnoMessage(value) + "\n";
}

/// A file "abc" under a path of more than 400 characters.
struct LongFile
{
    explicit LongFile(const TempDirectory& parent) : directory(parent.Path()) { MakeFile(path, "abc"); }

    LongDirectory directory;
    std::string path = directory.Path() + "\\file";
};

TEST(GetType, TellsFilesFromDirectories)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    EXPECT_EQ(KelInsIO::GetType(directory / "file"), Type::File);
    EXPECT_EQ(KelInsIO::GetType(directory.Path()), Type::Directory);
    EXPECT_EQ(KelInsIO::GetType(directory.Path() + "\\"), Type::Directory);
    EXPECT_TRUE(KelInsIO::IsFile(directory / "file"));
    EXPECT_FALSE(KelInsIO::IsDirectory(directory / "file"));
    EXPECT_FALSE(KelInsIO::IsFile(directory.Path()));
    EXPECT_TRUE(KelInsIO::IsDirectory(directory.Path()));
}

TEST(GetType, LinkToADirectoryIsNotFollowed)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target");
    const DirectoryLink link(directory / "link", directory / "target");
    EXPECT_EQ(KelInsIO::GetType(directory / "link"), Type::Directory | Type::ReparsePoint);
    EXPECT_TRUE(KelInsIO::IsDirectory(directory / "link"));
    EXPECT_FALSE(KelInsIO::IsFile(directory / "link"));
}

struct AttributeCase
{
    const char* label;
    DWORD attributes;
    std::uint32_t type;

    friend void PrintTo(const AttributeCase& c, std::ostream* out) { *out << "attributes " << c.attributes; }
};

constexpr AttributeCase kAttributes[] = {
    {"Directory", FILE_ATTRIBUTE_DIRECTORY, 1},
    {"Normal", FILE_ATTRIBUTE_NORMAL, 2},
    {"None", 0, 2},
    {"DirectoryLink", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT, 5},
    {"FileLink", FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_ARCHIVE, 6},
    {"AllOthers", 0xFFFFFFFE & ~DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT}, 2},
};

class GetTypeOf : public testing::TestWithParam<AttributeCase>
{};

TEST_P(GetTypeOf, Attributes)
{
    ImportHook<DWORD(LPCWSTR)> hook("GetFileAttributesW", [](LPCWSTR) { return GetParam().attributes; });
    EXPECT_EQ(KelInsIO::GetType("any").GetValue(), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Table, GetTypeOf, testing::ValuesIn(kAttributes),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(GetType, MissingPathThrows)
{
    const TempDirectory directory;
    const std::string path = directory / "missing";
    const std::string text = "GetType - " + path + SystemText(ERROR_FILE_NOT_FOUND);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetType(path); }, text);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::IsFile(path); }, text);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::IsDirectory(path); }, text);
}

TEST(GetType, EmptyPathThrows)
{
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::GetType(""); }, "GetType - empty path\n");
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::IsFile(""); }, "GetType - empty path\n");
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::IsDirectory(""); }, "GetType - empty path\n");
}

TEST(GetType, NonAsciiAndLongNames)
{
    const TempDirectory directory;
    MakeFile(directory / kNonAscii);
    EXPECT_TRUE(KelInsIO::IsFile(directory / kNonAscii));
    EXPECT_TRUE(KelInsIO::IsFile(LongFile(directory).path));
}

TEST(GetType, ListedAttributesServeForAFileInExclusiveUse)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    ImportHook<DWORD(LPCWSTR)> attributes("GetFileAttributesW");
    attributes.FailFrom(1, INVALID_FILE_ATTRIBUTES, LastError(ERROR_SHARING_VIOLATION));
    ImportHook<BOOL(HANDLE)> close("FindClose");
    EXPECT_EQ(KelInsIO::GetType(directory / "file"), Type::File);
    EXPECT_EQ(close.Calls().size(), 1u);
    EXPECT_EQ(KelInsIO::GetType(directory.Path()), Type::Directory);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetType(directory / "missing"); },
                                         "GetType - " + (directory / "missing") + SystemText(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(close.Calls().size(), 2u);
}

TEST(GetType, ListedAttributesOfALink)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target");
    const DirectoryLink link(directory / "link", directory / "target");
    ImportHook<DWORD(LPCWSTR)> attributes("GetFileAttributesW");
    attributes.FailFrom(1, INVALID_FILE_ATTRIBUTES, LastError(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(KelInsIO::GetType(directory / "link"), Type::Directory | Type::ReparsePoint);
}

TEST(GetType, OtherErrorsDoNotAskTheDirectory)
{
    ImportHook<DWORD(LPCWSTR)> attributes("GetFileAttributesW");
    attributes.FailFrom(1, INVALID_FILE_ATTRIBUTES, LastError(ERROR_ACCESS_DENIED));
    ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)> search("FindFirstFileW");
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::GetType("C:\\windows"); },
                                         "GetType - C:\\windows" + SystemText(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(search.Calls().empty());
}

TEST(Exists, FilesAndDirectories)
{
    const TempDirectory directory;
    MakeFile(directory / kNonAscii);
    EXPECT_TRUE(KelInsIO::Exists(directory / kNonAscii));
    EXPECT_TRUE(KelInsIO::Exists(directory.Path()));
    EXPECT_TRUE(KelInsIO::Exists(LongFile(directory).path));
    EXPECT_FALSE(KelInsIO::Exists(directory / "missing"));
    EXPECT_FALSE(KelInsIO::Exists(directory / "missing\\file"));
    EXPECT_FALSE(KelInsIO::Exists(""));
    const ReadOnlyGuard readOnly(directory / kNonAscii);
    EXPECT_TRUE(KelInsIO::Exists(directory / kNonAscii));
}

TEST(Exists, AsksForExistenceAlone)
{
    KelInsIO::Exists("x"); // the compiler's stub looks the function up on first use
    ImportHook<int(const wchar_t*, int)> hook("_waccess_s");
    hook.FailCall(2, EACCES, NoCode());
    EXPECT_TRUE(KelInsIO::Exists("C:\\"));
    EXPECT_FALSE(KelInsIO::Exists("C:\\"));
    EXPECT_FALSE(KelInsIO::Exists("")); // without asking
    ASSERT_EQ(hook.Calls().size(), 2u);
    EXPECT_EQ(hook.Calls()[0], std::make_tuple(std::wstring(L"C:\\"), 0));
}

TEST(GetFileSize, OfFiles)
{
    const TempDirectory directory;
    MakeFile(directory / "empty", "");
    MakeFile(directory / kNonAscii, "abc");
    EXPECT_EQ(KelInsIO::GetFileSize(directory / "empty"), 0u);
    EXPECT_EQ(KelInsIO::GetFileSize(directory / kNonAscii), 3u);
    EXPECT_EQ(KelInsIO::GetFileSize(LongFile(directory).path), 3u);
}

TEST(GetFileSize, BeyondFourGigabytes)
{
    ImportHook<int(const wchar_t*, struct _stat64*)> hook("_wstat64", [](const wchar_t*, struct _stat64* record) {
        *record = {};
        record->st_size = 0x123456789A;
        return 0;
    });
    const TempDirectory directory;
    MakeFile(directory / "file");
    EXPECT_EQ(KelInsIO::GetFileSize(directory / "file"), 0x123456789Au);
}

TEST(GetFileSize, NormalizesThePathThatItAsksFor)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    const std::string spelling = directory.Path() + "//file";
    ImportHook<int(const wchar_t*, struct _stat64*)> hook("_wstat64");
    EXPECT_EQ(KelInsIO::GetFileSize(spelling), 1u);
    hook.FailCall(2, -1, Errno(EACCES));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetFileSize(spelling); },
                                         "GetFileSize - Cannot stat " + (directory / "file") + RuntimeText(EACCES));
}

TEST(GetFileSize, MissingPathsAndDirectoriesThrow)
{
    const TempDirectory directory;
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetFileSize(directory / "missing"); },
                                         "GetFileSize - " + (directory / "missing") + " does not exist.\n");
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::GetFileSize(""); }, "GetFileSize -  does not exist.\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetFileSize(directory.Path()); },
                                         "GetFileSize - " + directory.Path() + " is not a file.\n");
}

TEST(GetFreeSpaceOnDisk, AsksForTheRoot)
{
    using Hook = ImportHook<BOOL(LPCWSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER)>;
    Hook hook("GetDiskFreeSpaceExW", [](LPCWSTR, PULARGE_INTEGER available, PULARGE_INTEGER, PULARGE_INTEGER) {
        available->QuadPart = 0x123456789A;
        return TRUE;
    });
    EXPECT_EQ(KelInsIO::GetFreeSpaceOnDisk("c:/any/where"), 0x123456789Au);
    EXPECT_EQ(KelInsIO::GetFreeSpaceOnDisk("//srv/share/x"), 0x123456789Au);
    hook.FailFrom(3, FALSE, LastError(ERROR_NOT_READY));
    EXPECT_EQ(KelInsIO::GetFreeSpaceOnDisk("c:"), 0u);
    ASSERT_EQ(hook.Calls().size(), 3u);
    EXPECT_EQ(std::get<0>(hook.Calls()[0]), L"c:");
    EXPECT_EQ(std::get<0>(hook.Calls()[1]), L"\\\\srv\\share\\"); // as documented for shares
}

TEST(GetFreeSpaceOnDisk, IsMoreThanNothingOnARealDriveAndNothingElsewhere)
{
    EXPECT_GT(KelInsIO::GetFreeSpaceOnDisk("C:\\any\\where"), 0u);
    for (const char* path : {"", "relative", "\\x", "1:\\x"})
        EXPECT_EQ(KelInsIO::GetFreeSpaceOnDisk(path), 0u) << path;
}

TEST(GetTime, TellsWhatSetTimeSet)
{
    const TempDirectory directory;
    MakeFile(directory / kNonAscii);
    constexpr std::int64_t access = 4'000'000'000; // beyond 32 bits
    constexpr std::int64_t modification = 4'100'000'000;
    KelInsIO::SetTime(directory / kNonAscii, access, modification);
    const KelInsIO::FileTime time = KelInsIO::GetTime(directory / kNonAscii);
    EXPECT_EQ(time.accessTime, access);
    EXPECT_EQ(time.modificationTime, modification);
}

TEST(GetTime, OfANewFileIsNow)
{
    const TempDirectory directory;
    const std::int64_t before = std::time(nullptr);
    MakeFile(directory / "file");
    const KelInsIO::FileTime time = KelInsIO::GetTime(directory / "file");
    for (const std::int64_t t : {time.accessTime, time.modificationTime, time.creationTime}) {
        EXPECT_GE(t, before - 2);
        EXPECT_LE(t, std::time(nullptr) + 2);
    }
}

TEST(GetTime, OfDirectoriesAndLongPaths)
{
    const TempDirectory directory;
    EXPECT_GT(KelInsIO::GetTime(directory.Path()).modificationTime, 0);
    const LongFile file(directory);
    KelInsIO::SetTime(file.path, 1000, 2000);
    EXPECT_EQ(KelInsIO::GetTime(file.path).modificationTime, 2000);
}

TEST(GetTime, TakesThePartsInTheirOrder)
{
    ImportHook<int(const wchar_t*, struct _stat64*)> hook("_wstat64", [](const wchar_t*, struct _stat64* record) {
        *record = {};
        record->st_atime = 1;
        record->st_mtime = 2;
        record->st_ctime = 3;
        return 0;
    });
    const KelInsIO::FileTime time = KelInsIO::GetTime("any");
    EXPECT_EQ(time.accessTime, 1);
    EXPECT_EQ(time.modificationTime, 2);
    EXPECT_EQ(time.creationTime, 3);
}

TEST(GetTime, MissingPathsThrow)
{
    const TempDirectory directory;
    const std::string path = directory / "missing";
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetTime(path); }, "GetTime - " + path + RuntimeText(ENOENT));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::SetTime(path, 1, 2); },
                                         "SetTime - " + path + RuntimeText(ENOENT));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::GetTime(""); }, "GetTime - " + RuntimeText(ENOENT));
}

TEST(FileTime, HoldsItsThreePartsAndIsAssigned)
{
    KelInsIO::FileTime time(1, 2, 3);
    const KelInsIO::FileTime other(4, 5, 6);
    EXPECT_EQ(time.accessTime, 1);
    EXPECT_EQ(time.modificationTime, 2);
    EXPECT_EQ(time.creationTime, 3);
    time = other;
    EXPECT_EQ(time.creationTime, 6);
    time = KelInsIO::FileTime(7, 8, 9);
    EXPECT_EQ(time.accessTime, 7);
}

TEST(GetChmod, IsAlwaysTheSame)
{
    for (const char* path : {"", "missing", "C:\\"})
        EXPECT_EQ(KelInsIO::GetChmod(path), 777);
    EXPECT_EQ(KelInsIO::GetChmod("x"), 0x309);
}

TEST(Chmod, ChangesNothing)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    for (const std::int32_t mode : {0, 777, 0444, -1})
        KelInsIO::Chmod(directory / "file", mode);
    MakeFile(directory / "file"); // still writable
    EXPECT_NO_THROW(KelInsIO::Chmod("", 0));
}

TEST(SetReadOnly, TellsWhetherItChangedSomething)
{
    const TempDirectory directory;
    const std::string file = directory / kNonAscii;
    MakeFile(file);
    EXPECT_FALSE(KelInsIO::SetReadOnly(file, false));
    EXPECT_TRUE(KelInsIO::SetReadOnly(file, true));
    EXPECT_FALSE(KelInsIO::SetReadOnly(file, true));
    EXPECT_THROW(KelInsIO::DeleteFileW(file), std::runtime_error);
    EXPECT_TRUE(KelInsIO::SetReadOnly(file, false));
    EXPECT_FALSE(KelInsIO::SetReadOnly(file, false));
    EXPECT_NO_THROW(KelInsIO::DeleteFileW(file));
}

TEST(SetReadOnly, KeepsTheOtherAttributes)
{
    ImportHook<BOOL(LPCWSTR, DWORD)> set("SetFileAttributesW", [](LPCWSTR, DWORD) { return TRUE; });
    DWORD attributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    ImportHook<DWORD(LPCWSTR)> get("GetFileAttributesW", [&](LPCWSTR) { return attributes; });
    EXPECT_TRUE(KelInsIO::SetReadOnly("x", true));
    attributes |= FILE_ATTRIBUTE_READONLY;
    EXPECT_TRUE(KelInsIO::SetReadOnly("x", false));
    ASSERT_EQ(set.Calls().size(), 2u);
    EXPECT_EQ(std::get<1>(set.Calls()[0]), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(std::get<1>(set.Calls()[1]), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
}

TEST(SetReadOnly, FailuresAreFalse)
{
    const TempDirectory directory;
    EXPECT_FALSE(KelInsIO::SetReadOnly(directory / "missing", true));
    EXPECT_FALSE(KelInsIO::SetReadOnly(directory / "missing", false));
    EXPECT_FALSE(KelInsIO::SetReadOnly("", true));
    MakeFile(directory / "file");
    ImportHook<BOOL(LPCWSTR, DWORD)> hook("SetFileAttributesW");
    hook.FailFrom(1, FALSE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(KelInsIO::SetReadOnly(directory / "file", true));
    EXPECT_EQ(hook.Calls().size(), 1u);
}

} // namespace
