#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/io/FindFile.h>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using KelInsIO::FindFile;
using KelInsIO::Type;
using FindFirstHook = ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)>;
using FindNextHook = ImportHook<BOOL(HANDLE, LPWIN32_FIND_DATAW)>;
using FindCloseHook = ImportHook<BOOL(HANDLE)>;

const BitMask<Type> kAll = Type::Directory | Type::File;

/// "name:type" of every entry, sorted.
std::vector<std::string> Entries(FindFile search)
{
    std::vector<std::string> entries;
    for (; !search.End(); search.Next())
        entries.push_back(search.GetName() + ':' + std::to_string(search.GetType().GetValue()));
    std::sort(entries.begin(), entries.end());
    return entries;
}

class FindFileTest : public testing::Test
{
protected:
    FindFileTest()
    {
        MakeFile(directory / "a.txt");
        MakeFile(directory / "b");
        MakeDirectories(directory / "c");
        MakeFile(directory / "c\\inner");
        MakeDirectories(directory / "d.dir");
    }

    const TempDirectory directory;
};

using Names = std::vector<std::string>;

TEST_F(FindFileTest, ListsEveryEntryOnceButDotAndDotDot)
{
    EXPECT_EQ(Entries(FindFile(directory.Path(), kAll)), Names({"a.txt:2", "b:2", "c:1", "d.dir:1"}));
}

TEST_F(FindFileTest, FilterFileSkipsDirectories)
{
    EXPECT_EQ(Entries(FindFile(directory.Path(), Type::File)), Names({"a.txt:2", "b:2"}));
}

TEST_F(FindFileTest, FilterDirectorySkipsFiles)
{
    EXPECT_EQ(Entries(FindFile(directory.Path(), Type::Directory)), Names({"c:1", "d.dir:1"}));
}

TEST_F(FindFileTest, EmptyFilterFindsNothing)
{
    EXPECT_TRUE(FindFile(directory.Path(), BitMask<Type>()).End());
}

TEST_F(FindFileTest, LinkToADirectoryIsADirectoryAndAReparsePoint)
{
    const DirectoryLink link(directory / "link", directory / "c");
    EXPECT_EQ(Entries(FindFile(directory.Path(), Type::Directory)), Names({"c:1", "d.dir:1", "link:5"}));
    EXPECT_EQ(Entries(FindFile(directory.Path(), Type::ReparsePoint)), Names({"link:5"}));
    EXPECT_EQ(Entries(FindFile(directory.Path(), Type::File)), Names({"a.txt:2", "b:2"}));
    EXPECT_EQ(Entries(FindFile(directory / "link", kAll)), Names({"inner:2"}));
}

TEST_F(FindFileTest, FileThatIsAReparsePoint)
{
    FindFirstHook hook("FindFirstFileW", [&hook](LPCWSTR pattern, LPWIN32_FIND_DATAW record) {
        const HANDLE search = hook.CallOriginal(pattern, record);
        record->dwFileAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
        std::wcscpy(record->cFileName, L"placeholder");
        return search;
    });
    const FindFile search(directory.Path(), Type::ReparsePoint);
    ASSERT_FALSE(search.End());
    EXPECT_EQ(search.GetType(), Type::File | Type::ReparsePoint);
    EXPECT_TRUE(search.IsFile());
    EXPECT_FALSE(search.IsDirectory());
}

TEST_F(FindFileTest, TellsWhatTheEntryIs)
{
    FindFile file(directory.Path(), Type::File);
    EXPECT_TRUE(file.IsFile());
    EXPECT_FALSE(file.IsDirectory());
    FindFile subdirectory(directory.Path(), Type::Directory);
    EXPECT_FALSE(subdirectory.IsFile());
    EXPECT_TRUE(subdirectory.IsDirectory());
}

TEST_F(FindFileTest, NormalizesTheDirectory)
{
    std::string spelling = directory.Path() + "\\\\c\\";
    std::replace(spelling.begin(), spelling.end(), '\\', '/');
    const FindFile search('"' + spelling + '"', kAll);
    ASSERT_FALSE(search.End());
    EXPECT_EQ(search.GetPath(), directory / "c\\inner");
    EXPECT_EQ(search.GetName(), "inner");
}

TEST_F(FindFileTest, AsksForAllNamesOfTheNormalizedDirectory)
{
    FindFirstHook hook("FindFirstFileW");
    const FindFile search("C:/x//y/", kAll);
    ASSERT_EQ(hook.Calls().size(), 1u);
    EXPECT_EQ(std::get<0>(hook.Calls()[0]), LR"(C:\x\y\*)");
}

TEST_F(FindFileTest, DriveMeansItsRootDirectory)
{
    FindFirstHook hook("FindFirstFileW");
    const FindFile search("C:", kAll);
    ASSERT_EQ(hook.Calls().size(), 1u);
    EXPECT_EQ(std::get<0>(hook.Calls()[0]), LR"(C:\*)");
}

TEST_F(FindFileTest, NonAsciiNames)
{
    const std::string name = "gr\xC3\xBC\xC3\x9F \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8D\x8E";
    MakeDirectories(directory / name);
    MakeFile(directory / (name + '\\' + name));
    const FindFile search(directory / name, kAll);
    ASSERT_FALSE(search.End());
    EXPECT_EQ(search.GetName(), name);
    EXPECT_EQ(search.GetPath(), directory / (name + '\\' + name));
}

TEST_F(FindFileTest, LongPaths)
{
    const LongDirectory deep(directory.Path());
    MakeFile(deep.Path() + "\\file");
    const FindFile search(deep.Path(), kAll);
    ASSERT_FALSE(search.End());
    EXPECT_EQ(search.GetPath(), deep.Path() + "\\file");
}

TEST_F(FindFileTest, DirectoryOfDotsOnlyIsAtItsEnd)
{
    const FindFile search(directory / "d.dir", kAll);
    EXPECT_TRUE(search.End());
    EXPECT_EQ(search.GetName(), ".."); // the last entry read
    EXPECT_EQ(search.GetPath(), directory / "d.dir\\..");
    EXPECT_TRUE(search.IsDirectory());
    EXPECT_TRUE(FindFile::IsDirectoryEmpty(directory / "d.dir"));
}

TEST_F(FindFileTest, MissingDirectoryIsAtItsEndWithoutValues)
{
    FindFile search(directory / "missing", kAll);
    EXPECT_TRUE(search.End());
    EXPECT_EQ(search.GetName(), "");
    EXPECT_EQ(search.GetPath(), "");
    EXPECT_EQ(search.GetType(), BitMask<Type>());
    EXPECT_FALSE(search.IsDirectory());
    EXPECT_FALSE(search.IsFile());
    search.Next();
    EXPECT_TRUE(search.End());
    EXPECT_TRUE(FindFile::IsDirectoryEmpty(directory / "missing"));
}

TEST_F(FindFileTest, FileIsAtItsEnd)
{
    EXPECT_TRUE(FindFile(directory / "b", kAll).End());
    EXPECT_TRUE(FindFile::IsDirectoryEmpty(directory / "b"));
}

TEST_F(FindFileTest, EmptyPathsAreRefused)
{
    for (const char* path : {"", "\\", "///", "\"\"", "1:x", R"(\\server\)"}) {
        ExpectThrowsText<std::runtime_error>([&] { FindFile(path, kAll); }, "FindFirstFile - Path is empty\n");
        ExpectThrowsText<std::runtime_error>([&] { FindFile::IsDirectoryEmpty(path); },
                                             "FindFirstFile - Path is empty\n");
    }
}

TEST_F(FindFileTest, EmptinessIsOfFilesAndDirectories)
{
    EXPECT_FALSE(FindFile::IsDirectoryEmpty(directory.Path()));
    EXPECT_FALSE(FindFile::IsDirectoryEmpty(directory / "c"));
    MakeDirectories(directory / "e\\f");
    EXPECT_FALSE(FindFile::IsDirectoryEmpty(directory / "e"));
}

TEST_F(FindFileTest, NextAfterTheEndStaysThere)
{
    FindFile search(directory / "c", kAll);
    ASSERT_FALSE(search.End());
    for (int i = 0; i < 3; ++i) {
        search.Next();
        EXPECT_TRUE(search.End());
        EXPECT_EQ(search.GetName(), "inner");
    }
}

TEST_F(FindFileTest, UnreadableDirectoryIsAtItsEnd)
{
    FindFirstHook hook("FindFirstFileW");
    hook.FailCall(1, INVALID_HANDLE_VALUE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(FindFile(directory.Path(), kAll).End());
    EXPECT_FALSE(FindFile(directory.Path(), kAll).End());
}

TEST_F(FindFileTest, ErrorOnTheWayEndsTheSearch)
{
    for (std::size_t call = 1; call <= 5; ++call) { // the first record and the first call give the dots
        FindNextHook hook("FindNextFileW");
        hook.FailFrom(call, FALSE, LastError(ERROR_READ_FAULT));
        const std::size_t expected = call < 2 ? 0 : call - 2;
        EXPECT_EQ(Entries(FindFile(directory.Path(), kAll)).size(), expected) << "call " << call;
    }
}

TEST_F(FindFileTest, HandleIsClosedOnceAndOnlyAtDestruction)
{
    FindCloseHook hook("FindClose");
    {
        FindFile search(directory.Path(), kAll);
        while (!search.End())
            search.Next();
        EXPECT_TRUE(hook.Calls().empty());
    }
    EXPECT_EQ(hook.Calls().size(), 1u);
    FindFile(directory / "missing", kAll);
    EXPECT_EQ(hook.Calls().size(), 1u); // never started, hence nothing to close
}

TEST_F(FindFileTest, MovesKeepThePosition)
{
    FindCloseHook hook("FindClose");
    {
        FindFile source(directory / "c", kAll);
        FindFile constructed(std::move(source));
        FindFile assigned(directory.Path(), kAll);
        assigned = std::move(constructed);
        ASSERT_FALSE(assigned.End());
        EXPECT_EQ(assigned.GetName(), "inner");
        EXPECT_EQ(hook.Calls().size(), 1u); // of the search that was assigned over
    }
    EXPECT_EQ(hook.Calls().size(), 2u);
}

TEST_F(FindFileTest, LeavesNoHandleBehind)
{
    Entries(FindFile(directory.Path(), kAll));
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 10; ++i)
        Entries(FindFile(directory.Path(), kAll));
    EXPECT_EQ(HandleCount(), handles);
    const FindFile open(directory.Path(), kAll);
    EXPECT_GT(HandleCount(), handles);
}

} // namespace
