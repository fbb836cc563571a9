#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Names = std::vector<std::string>;
using DeleteFileHook = ImportHook<BOOL(LPCWSTR)>;
using FindFirstHook = ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)>;

const std::string kNonAscii = "gr\xC3\xBC\xC3\x9F \xF0\x9F\x8D\x8E";

std::string SystemText(std::uint32_t code)
{
    return " - " + KelInsSys::GetLastErrorMessage(code) + "\n";
}

TEST(DeleteFileW, DeletesOneFile)
{
    const TempDirectory directory;
    MakeFile(directory / kNonAscii);
    KelInsIO::DeleteFileW(directory / kNonAscii);
    EXPECT_EQ(TreeNames(directory.Path()), Names());
}

TEST(DeleteFileW, RefusalsThrow)
{
    const TempDirectory directory;
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::DeleteFileW(directory / "missing"); },
                                         "DeleteFile - " + (directory / "missing") + SystemText(ERROR_FILE_NOT_FOUND));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::DeleteFileW(directory.Path()); },
                                         "DeleteFile - " + directory.Path() + SystemText(ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::DeleteFileW(""); },
                                         "DeleteFile - " + SystemText(ERROR_PATH_NOT_FOUND));
}

TEST(DeleteFileW, ReadOnlyFileIsRefused)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    const ReadOnlyGuard readOnly(directory / "file");
    const std::string text = "DeleteFile - " + (directory / "file") + SystemText(ERROR_ACCESS_DENIED);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::DeleteFileW(directory / "file"); }, text);
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(directory / "file"); }, text);
    EXPECT_EQ(TreeNames(directory.Path()), Names({"file"}));
}

TEST(Delete, Files)
{
    const TempDirectory directory;
    MakeFile(directory / "a");
    MakeFile(directory / "b");
    KelInsIO::Delete(directory / "a");
    EXPECT_EQ(TreeNames(directory.Path()), Names({"b"}));
}

TEST(Delete, DirectoriesWithAllInThem)
{
    const TempDirectory directory;
    MakeDirectories(directory / ("tree\\a\\" + kNonAscii));
    MakeDirectories(directory / "tree\\empty");
    MakeFile(directory / "tree\\1");
    MakeFile(directory / "tree\\a\\2");
    MakeFile(directory / ("tree\\a\\" + kNonAscii + "\\3"));
    MakeFile(directory / "beside");
    KelInsIO::Delete(directory.Path() + "/tree//");
    EXPECT_EQ(TreeNames(directory.Path()), Names({"beside"}));
}

TEST(Delete, LongPaths)
{
    const TempDirectory directory;
    const LongDirectory deep(directory.Path());
    MakeDirectories(deep.Path() + "\\a");
    MakeFile(deep.Path() + "\\a\\file");
    MakeFile(deep.Path() + "\\file");
    KelInsIO::Delete(deep.Path() + "\\file");
    KelInsIO::Delete(directory.Path() + '\\' + TreeNames(directory.Path()).front());
    EXPECT_EQ(TreeNames(directory.Path()), Names());
}

TEST(Delete, EmptyAndMissingPathsThrow)
{
    const TempDirectory directory;
    ExpectThrowsText<std::runtime_error>([] { KelInsIO::Delete(""); }, "Delete - empty path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(directory / "missing"); },
                                         "GetType - " + (directory / "missing") + SystemText(ERROR_FILE_NOT_FOUND));
}

TEST(Delete, RefusedFileInADirectoryThrowsAndKeepsWhatIsLeft)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a");
    MakeFile(directory / "tree\\a\\file");
    const ReadOnlyGuard readOnly(directory / "tree\\a\\file");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(directory.Path() + "//tree"); },
                                         "DeleteFile - " + (directory / "tree\\a\\file") +
                                             SystemText(ERROR_ACCESS_DENIED));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/", "tree/a/", "tree/a/file"}));
}

TEST(Delete, RefusedDirectoryThrows)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a");
    DeleteFileHook hook("RemoveDirectoryW");
    hook.FailCall(2, FALSE, LastError(ERROR_SHARING_VIOLATION));
    const std::string asGiven = directory.Path() + "//tree"; // the caller's text, not its normalised form
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(asGiven); },
                                         "RemoveDirectory - " + asGiven + SystemText(ERROR_SHARING_VIOLATION));
    ASSERT_EQ(hook.Calls().size(), 2u);
    EXPECT_EQ(std::get<0>(hook.Calls()[0]), KelInsString::Widen(directory / "tree\\a"));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/"}));
}

TEST(Delete, LinkToADirectoryIsRemovedAndItsTargetLeftAlone)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target");
    MakeFile(directory / "target\\file");
    const DirectoryLink link(directory / "link", directory / "target");
    DeleteFileHook remove("RemoveDirectoryW", [](LPCWSTR) { return TRUE; }); // Wine would take the target
    DeleteFileHook deletion("DeleteFileW");
    FindFirstHook search("FindFirstFileW");
    KelInsIO::Delete(directory / "link");
    ASSERT_EQ(remove.Calls().size(), 1u);
    EXPECT_EQ(std::get<0>(remove.Calls()[0]), KelInsString::Widen(directory / "link"));
    EXPECT_TRUE(deletion.Calls().empty());
    EXPECT_TRUE(search.Calls().empty());
    EXPECT_EQ(FileContent(directory / "target\\file"), "x");
}

TEST(Delete, LinkInADirectoryIsRemovedAndItsTargetLeftAlone)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target");
    MakeFile(directory / "target\\file");
    MakeDirectories(directory / "tree");
    const DirectoryLink link(directory / "tree\\link", directory / "target");
    DeleteFileHook remove("RemoveDirectoryW", [](LPCWSTR) { return TRUE; });
    DeleteFileHook deletion("DeleteFileW");
    FindFirstHook search("FindFirstFileW");
    KelInsIO::Delete(directory / "tree");
    ASSERT_EQ(remove.Calls().size(), 2u);
    EXPECT_EQ(std::get<0>(remove.Calls()[0]), KelInsString::Widen(directory / "tree\\link"));
    EXPECT_EQ(std::get<0>(remove.Calls()[1]), KelInsString::Widen(directory / "tree"));
    EXPECT_TRUE(deletion.Calls().empty());
    EXPECT_EQ(search.Calls().size(), 1u);
    EXPECT_EQ(FileContent(directory / "target\\file"), "x");
}

/// An attacker puts a link in the place of a directory that was listed, just before it is entered.
TEST(Delete, LinkSwappedInIsNotFollowed)
{
    const TempDirectory directory;
    const std::string tree = directory / "tree";
    const std::string victim = directory / "victim";
    MakeDirectories(tree + "\\sub");
    MakeDirectories(victim);
    MakeFile(victim + "\\precious");
    std::unique_ptr<DirectoryLink> link;
    ImportHook<HANDLE(LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)> opening("CreateFileW");
    ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)> searching("FindFirstFileW");
    ImportHook<HANDLE(LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)> swapping(
        "CreateFileW",
        [&](LPCWSTR name, DWORD access, DWORD share, void* security, DWORD how, DWORD flags, HANDLE pattern) {
            if (std::wstring_view(name).ends_with(L"\\sub") && link == nullptr) {
                ::MoveFileW(name, KelInsString::Widen(directory / "moved").c_str());
                link = std::make_unique<DirectoryLink>(tree + "\\sub", victim);
            }
            return opening.CallOriginal(name, access, share, security, how, flags, pattern);
        });
    try {
        KelInsIO::Delete(tree); // removes the link; Wine refuses that for one whose target is not empty
    } catch (const std::runtime_error& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("RemoveDirectory - " + tree)) << error.what();
    }
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(TreeNames(victim), std::vector<std::string>{"precious"});
    for (const auto& call : searching.Calls())
        EXPECT_FALSE(std::get<0>(call).ends_with(L"sub\\*")) << "the link was entered";
}

/// A directory that is being emptied cannot be exchanged any more.
TEST(Delete, DirectoryIsPinnedWhileItIsEmptied)
{
    const TempDirectory directory;
    const std::string tree = directory / "tree";
    MakeDirectories(tree + "\\sub");
    MakeFile(tree + "\\sub\\file");
    ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)> plain("FindFirstFileW");
    std::vector<DWORD> refusals;
    ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)> searching("FindFirstFileW", [&](LPCWSTR name, auto* record) {
        const std::wstring searched = std::wstring(name).substr(0, std::wstring_view(name).size() - 2);
        EXPECT_FALSE(::MoveFileW(searched.c_str(), KelInsString::Widen(directory / "moved").c_str()));
        refusals.push_back(::GetLastError());
        return plain.CallOriginal(name, record);
    });
    KelInsIO::Delete(tree);
    EXPECT_EQ(refusals, (std::vector<DWORD>{ERROR_SHARING_VIOLATION, ERROR_SHARING_VIOLATION}));
    EXPECT_FALSE(KelInsIO::Exists(tree));
}

/// Another process holds it open for deletion, say.
TEST(Delete, DirectoryThatCannotBeHeldIsRemovedOnlyIfEmpty)
{
    const TempDirectory directory;
    MakeDirectories(directory / "empty");
    MakeDirectories(directory / "full");
    MakeFile(directory / R"(full\file)");
    ImportHook<HANDLE(LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)> opening("CreateFileW");
    opening.FailFrom(1, INVALID_HANDLE_VALUE, LastError(ERROR_SHARING_VIOLATION));
    KelInsIO::Delete(directory / "empty");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(directory / "full"); },
                                         "RemoveDirectory - " + (directory / "full") + " - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_DIR_NOT_EMPTY) + "\n");
    EXPECT_EQ(TreeNames(directory.Path()), (std::vector<std::string>{"full/", "full/file"}));
}

TEST(Delete, RefusedLinkThrows)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target");
    const DirectoryLink link(directory / "link", directory / "target");
    DeleteFileHook remove("RemoveDirectoryW");
    remove.FailCall(1, FALSE, LastError(ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(directory / "link"); },
                                         "RemoveDirectory - " + (directory / "link") + SystemText(ERROR_ACCESS_DENIED));
}

TEST(Delete, FileThatIsAReparsePointIsDeletedAsAFile)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    ImportHook<DWORD(LPCWSTR)> attributes("GetFileAttributesW", [](LPCWSTR) { return FILE_ATTRIBUTE_REPARSE_POINT; });
    KelInsIO::Delete(directory / "file");
    EXPECT_EQ(TreeNames(directory.Path()), Names());
}

TEST(Rename, FilesAndDirectories)
{
    const TempDirectory directory;
    MakeFile(directory / "file", "content");
    MakeDirectories(directory / "tree\\a");
    KelInsIO::Rename(directory / "file", directory / kNonAscii);
    KelInsIO::Rename(directory / "tree", directory / "moved");
    EXPECT_EQ(FileContent(directory / kNonAscii), "content");
    EXPECT_EQ(TreeNames(directory.Path()), Names({kNonAscii, "moved/", "moved/a/"}));
}

TEST(Rename, OntoAnExistingFileThrows)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "1");
    MakeFile(directory / "b", "2");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Rename(directory / "a", directory / "b"); },
                                         "MoveFile - " + (directory / "a") + " to " + (directory / "b") +
                                             SystemText(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(FileContent(directory / "a"), "1");
    EXPECT_EQ(FileContent(directory / "b"), "2");
}

TEST(Rename, EmptyAndMissingPathsThrow)
{
    const TempDirectory directory;
    const std::string a = directory / "a";
    const std::string b = directory / "b";
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Rename("", b); }, "Rename - empty source path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Rename("", ""); }, "Rename - empty source path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Rename(a, ""); }, "Rename - empty destination path\n");
    ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Rename(a, b); },
                                         "MoveFile - " + a + " to " + b + SystemText(ERROR_FILE_NOT_FOUND));
}

TEST(Rename, MayCopyToAnotherVolumeAndNothingElse)
{
    using Hook = ImportHook<BOOL(LPCWSTR, LPCWSTR, DWORD)>;
    Hook hook("MoveFileExW", [](LPCWSTR, LPCWSTR, DWORD) { return TRUE; });
    KelInsIO::Rename("C:/a", "D:\\b");
    ASSERT_EQ(hook.Calls().size(), 1u);
    EXPECT_EQ(hook.Calls()[0], std::make_tuple(std::wstring(L"C:/a"), std::wstring(L"D:\\b"), DWORD{2}));
}

TEST(RemoveEmptyDirectories, RemovesATreeWithoutFiles)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a\\b");
    MakeDirectories(directory / ("tree\\c\\" + kNonAscii));
    EXPECT_TRUE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(TreeNames(directory.Path()), Names());
}

TEST(RemoveEmptyDirectories, OneFileKeepsTheBranchAboveIt)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a\\b\\c");
    MakeDirectories(directory / "tree\\a\\d");
    MakeDirectories(directory / "tree\\e\\f");
    MakeFile(directory / "tree\\a\\d\\file");
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/", "tree/a/", "tree/a/d/", "tree/a/d/file"}));
}

TEST(RemoveEmptyDirectories, FileInTheDirectoryItself)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a");
    MakeDirectories(directory / "tree\\z");
    MakeFile(directory / "tree\\file");
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/", "tree/file"}));
}

TEST(RemoveEmptyDirectories, NormalizesThePath)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a");
    EXPECT_TRUE(KelInsIO::RemoveEmptyDirectories(directory.Path() + "//tree/"));
    EXPECT_EQ(TreeNames(directory.Path()), Names());
}

/// The search takes the quotes away, but the deletion of the directory itself gets the path as it was given.
TEST(RemoveEmptyDirectories, InQuotesOnlyWhatIsBelowIsRemoved)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a\\b");
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories('"' + (directory / "tree") + '"'));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/"}));
}

TEST(RemoveEmptyDirectories, WhatIsNoDirectoryIsLeftAlone)
{
    const TempDirectory directory;
    MakeFile(directory / "file");
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "file"));
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "missing"));
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(""));
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories("\\"));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"file"}));
}

TEST(RemoveEmptyDirectories, RefusedDirectoryCountsAsNotEmpty)
{
    const TempDirectory directory;
    MakeDirectories(directory / "tree\\a");
    MakeDirectories(directory / "tree\\b");
    DeleteFileHook remove("RemoveDirectoryW");
    remove.FailCall(1, FALSE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(remove.Calls().size(), 2u); // the other branch was removed
    EXPECT_EQ(TreeNames(directory / "tree").size(), 1u);
    remove.FailCall(4, FALSE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(TreeNames(directory.Path()), Names({"tree/"}));
}

TEST(RemoveEmptyDirectories, LinkIsFollowed)
{
    const TempDirectory directory;
    MakeDirectories(directory / "target\\empty");
    MakeDirectories(directory / "target\\full");
    MakeFile(directory / "target\\full\\file");
    MakeDirectories(directory / "tree");
    const DirectoryLink link(directory / "tree\\link", directory / "target");
    EXPECT_FALSE(KelInsIO::RemoveEmptyDirectories(directory / "tree"));
    EXPECT_EQ(TreeNames(directory.Path()),
              Names({"target/", "target/full/", "target/full/file", "tree/", "tree/link/"}));
}

} // namespace
