// Every call of the system that the file operations make is made to fail here: type and whole text of the exception,
// and no handle left behind.

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <sys/utime.h>

namespace {

using HookMaker = std::function<std::shared_ptr<void>()>;

using PathFunction = BOOL(LPCWSTR);
using AttributesFunction = DWORD(LPCWSTR);
using StatFunction = int(const wchar_t*, struct _stat64*);
using OpenFunction = errno_t(int*, const wchar_t*, int, int, int);
using ReadFunction = int(int, void*, unsigned);
using WriteFunction = int(int, const void*, unsigned);
using CloseFunction = int(int);
using CreateFileFunction = HANDLE(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
using IdentityFunction = BOOL(HANDLE, LPBY_HANDLE_FILE_INFORMATION);
using FindFirstFunction = HANDLE(LPCWSTR, LPWIN32_FIND_DATAW);

/// Lets the nth call of a function fail while the made hook lives.
template <typename Signature, typename Result>
HookMaker Failing(const char* function, std::size_t n, Result result, FailureCode code)
{
    return [=] {
        auto hook = std::make_shared<ImportHook<Signature>>(function);
        hook->FailCall(n, result, code);
        return hook;
    };
}

/// A file "file" and a tree "tree" with a file "tree\file" in a fresh directory.
struct Place
{
    Place()
    {
        MakeFile(File(), "content");
        MakeDirectories(Tree());
        MakeFile(Tree() + "\\file", "content");
    }

    [[nodiscard]] std::string File() const { return directory / "file"; }

    [[nodiscard]] std::string Tree() const { return directory / "tree"; }

    [[nodiscard]] std::string New() const { return directory / "new"; }

    TempDirectory directory;
};

struct FailureCase
{
    const char* label; // letters and digits only: it becomes the test's name
    HookMaker fail;
    std::function<void(const Place&)> call;
    std::function<std::string(const Place&)> text; // before " - " and the text of the code
    FailureCode code;

    friend void PrintTo(const FailureCase& c, std::ostream* out) { *out << c.label; }
};

FailureCase Case(const char* label, const HookMaker& fail, const std::function<void(const Place&)>& call,
                 const std::function<std::string(const Place&)>& text, FailureCode code)
{
    return {label, fail, call, text, code};
}

const FailureCase kFailures[] = {
    Case(
        "GetType", Failing<AttributesFunction>("GetFileAttributesW", 1, INVALID_FILE_ATTRIBUTES, LastError(5)),
        [](const Place& p) { KelInsIO::GetType(p.File()); }, [](const Place& p) { return "GetType - " + p.File(); },
        LastError(5)),
    Case(
        "GetFileSize", Failing<StatFunction>("_wstat64", 1, -1, Errno(EACCES)),
        [](const Place& p) { KelInsIO::GetFileSize(p.File()); },
        [](const Place& p) { return "GetFileSize - Cannot stat " + p.File(); }, Errno(EACCES)),
    Case(
        "GetTime", Failing<StatFunction>("_wstat64", 1, -1, Errno(EACCES)),
        [](const Place& p) { KelInsIO::GetTime(p.File()); }, [](const Place& p) { return "GetTime - " + p.File(); },
        Errno(EACCES)),
    Case(
        "SetTime", Failing<int(const wchar_t*, struct __utimbuf64*)>("_wutime64", 1, -1, Errno(EMFILE)),
        [](const Place& p) { KelInsIO::SetTime(p.File(), 1, 2); },
        [](const Place& p) { return "SetTime - " + p.File(); }, Errno(EMFILE)),
    Case(
        "CreateDir", Failing<BOOL(LPCWSTR, LPSECURITY_ATTRIBUTES)>("CreateDirectoryW", 1, FALSE, LastError(112)),
        [](const Place& p) { KelInsIO::CreateDir(p.New()); },
        [](const Place& p) { return "CreateDirectory - " + p.New(); }, LastError(112)),
    Case(
        "Rename", Failing<BOOL(LPCWSTR, LPCWSTR, DWORD)>("MoveFileExW", 1, FALSE, LastError(17)),
        [](const Place& p) { KelInsIO::Rename(p.File(), p.New()); },
        [](const Place& p) { return "MoveFile - " + p.File() + " to " + p.New(); }, LastError(17)),
    Case(
        "DeleteFileW", Failing<PathFunction>("DeleteFileW", 1, FALSE, LastError(32)),
        [](const Place& p) { KelInsIO::DeleteFileW(p.File()); },
        [](const Place& p) { return "DeleteFile - " + p.File(); }, LastError(32)),
    Case(
        "DeleteAttributes", Failing<AttributesFunction>("GetFileAttributesW", 1, INVALID_FILE_ATTRIBUTES, LastError(5)),
        [](const Place& p) { KelInsIO::Delete(p.File()); }, [](const Place& p) { return "GetType - " + p.File(); },
        LastError(5)),
    Case(
        "DeleteFileInTree", Failing<PathFunction>("DeleteFileW", 1, FALSE, LastError(32)),
        [](const Place& p) { KelInsIO::Delete(p.Tree()); },
        [](const Place& p) { return "DeleteFile - " + p.Tree() + "\\file"; }, LastError(32)),
    Case(
        "DeleteTree", Failing<PathFunction>("RemoveDirectoryW", 1, FALSE, LastError(145)),
        [](const Place& p) { KelInsIO::Delete(p.Tree()); },
        [](const Place& p) { return "RemoveDirectory - " + p.Tree(); }, LastError(145)),
    Case(
        "DeleteTreeThatCannotBeListed",
        Failing<FindFirstFunction>("FindFirstFileW", 1, INVALID_HANDLE_VALUE, LastError(5)),
        [](const Place& p) { KelInsIO::Delete(p.Tree()); },
        [](const Place& p) { return "RemoveDirectory - " + p.Tree(); }, LastError(ERROR_DIR_NOT_EMPTY)),
    Case(
        "CopyAttributes", Failing<AttributesFunction>("GetFileAttributesW", 1, INVALID_FILE_ATTRIBUTES, LastError(5)),
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New()); },
        [](const Place& p) { return "GetType - " + p.File(); }, LastError(5)),
    Case(
        "CopyDirectoryAbove",
        Failing<BOOL(LPCWSTR, LPSECURITY_ATTRIBUTES)>("CreateDirectoryW", 1, FALSE, LastError(112)),
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New() + "/x"); },
        [](const Place& p) { return "CreateDirectory - " + p.New(); }, LastError(112)),
    Case(
        "CopyStat", Failing<StatFunction>("_wstat64", 2, -1, Errno(EACCES)), // the first asks for the directory above
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New()); },
        [](const Place& p) { return "Cannot stat " + p.File(); }, Errno(EACCES)),
    Case(
        "CopyOpenSource", Failing<OpenFunction>("_wsopen_s", 1, EMFILE, NoCode()),
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New()); },
        [](const Place& p) { return "Cannot read " + p.File(); }, Errno(EMFILE)),
    Case(
        "CopyOpenDestination", Failing<OpenFunction>("_wsopen_s", 2, ENOSPC, NoCode()),
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New()); },
        [](const Place& p) { return "Cannot write into " + p.New(); }, Errno(ENOSPC)),
    Case(
        "CopyWrite", Failing<WriteFunction>("_write", 1, -1, Errno(ENOSPC)),
        [](const Place& p) { KelInsIO::Copy(p.File(), p.New()); },
        [](const Place& p) { return "Cannot write into " + p.New(); }, Errno(ENOSPC)),
    Case(
        "CopyTreeStat", Failing<StatFunction>("_wstat64", 3, -1, Errno(EACCES)), // after "new" and what is above it
        [](const Place& p) { KelInsIO::Copy(p.Tree(), p.New()); },
        [](const Place& p) { return "Cannot stat " + p.Tree() + "\\file"; }, Errno(EACCES)),
    Case(
        "CopyTreeWrite", Failing<WriteFunction>("_write", 1, -1, Errno(ENOSPC)),
        [](const Place& p) { KelInsIO::Copy(p.Tree(), p.New()); },
        [](const Place& p) { return "Cannot write into " + p.New() + "\\file"; }, Errno(ENOSPC)),
};

class FileFailure : public testing::TestWithParam<FailureCase>
{
protected:
    void ExpectFailure(const Place& place) const
    {
        const auto hook = GetParam().fail();
        const auto call = [&] { GetParam().call(place); };
        const std::string text = GetParam().text(place) + " - ";
        if (GetParam().code.errnoValue)
            ExpectThrowsText<KelInsExceptionErrno>(
                call, text + KelInsSys::GetErrnoMessage(*GetParam().code.errnoValue) + "\n");
        else
            ExpectThrowsText<KelInsException>(call,
                                              text + KelInsSys::GetLastErrorMessage(*GetParam().code.lastError) + "\n");
    }
};

TEST_P(FileFailure, ThrowsAndLeavesNoHandleBehind)
{
    ExpectFailure(Place()); // opens what stays open for good
    const Place place;
    const std::size_t handles = HandleCount();
    ExpectFailure(place);
    EXPECT_EQ(HandleCount(), handles);
    EXPECT_EQ(FileContent(place.File()), "content");
}

INSTANTIATE_TEST_SUITE_P(Table, FileFailure, testing::ValuesIn(kFailures),
                         [](const auto& test) { return std::string(test.param.label); });

// Failures that are passed over.

TEST(CopyFailure, FilesThatCannotBeIdentifiedAreNotCompared)
{
    const Place place;
    const HookMaker failures[] = {
        Failing<CreateFileFunction>("CreateFileW", 1, INVALID_HANDLE_VALUE, LastError(5)),
        Failing<IdentityFunction>("GetFileInformationByHandle", 1, FALSE, LastError(5)),
        Failing<IdentityFunction>("GetFileInformationByHandle", 2, FALSE, LastError(5)),
    };
    EXPECT_THROW(KelInsIO::Copy(place.File(), place.File()), KelInsException); // opens what stays open for good
    const std::size_t handles = HandleCount();
    for (const HookMaker& fail : failures) {
        MakeFile(place.New(), "other");
        {
            const auto hook = fail();
            KelInsIO::Copy(place.File(), place.New());
        }
        EXPECT_EQ(FileContent(place.New()), "content");
        const auto hook = fail(); // onto itself: the file is open already, with writing denied
        ExpectThrowsText<KelInsExceptionErrno>([&] { KelInsIO::Copy(place.File(), place.File()); },
                                               "Cannot write into " + place.File() + " - " +
                                                   KelInsSys::GetErrnoMessage(EACCES) + "\n");
        EXPECT_EQ(FileContent(place.File()), "content");
    }
    EXPECT_EQ(HandleCount(), handles);
}

/// Also when it cannot be opened for copying, a file is recognised.
TEST(CopyFailure, SourceThatCannotBeOpenedIsComparedAllTheSame)
{
    const Place place;
    ImportHook<OpenFunction> hook("_wsopen_s");
    hook.FailFrom(1, EACCES, Errno(EACCES));
    ExpectThrowsText<KelInsException>([&] { KelInsIO::Copy(place.File(), place.File()); },
                                      "Cannot copy " + place.File() + " to itself.\n");
    MakeFile(place.New(), "other");
    ExpectThrowsText<KelInsExceptionErrno>([&] { KelInsIO::Copy(place.File(), place.New()); },
                                           "Cannot read " + place.File() + " - " + KelInsSys::GetErrnoMessage(EACCES) +
                                               "\n");
    EXPECT_EQ(FileContent(place.New()), "other");
}

TEST(CopyFailure, IdentifiesWithoutWritingAndSharesReadAndWrite)
{
    const Place place;
    MakeFile(place.New(), "other");
    ImportHook<CreateFileFunction> hook("CreateFileW");
    KelInsIO::Copy(place.File(), place.New());
    ImportHook<OpenFunction> source("_wsopen_s");
    source.FailCall(1, EACCES, Errno(EACCES));
    EXPECT_THROW(KelInsIO::Copy(place.File(), place.New()), KelInsExceptionErrno);
    ASSERT_EQ(hook.Calls().size(), 3u); // where the source is open already, the destination alone
    for (const auto& call : hook.Calls()) {
        EXPECT_EQ(std::get<1>(call), DWORD{GENERIC_READ});
        EXPECT_EQ(std::get<2>(call), DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE});
        EXPECT_EQ(std::get<3>(call), nullptr);
        EXPECT_EQ(std::get<4>(call), DWORD{OPEN_EXISTING});
        EXPECT_EQ(std::get<5>(call), DWORD{FILE_ATTRIBUTE_NORMAL});
    }
}

TEST(CopyFailure, ReadErrorEndsTheCopyLikeTheEndOfTheFile)
{
    const Place place;
    MakeFile(place.File(), std::string(150'000, 'x'));
    ImportHook<ReadFunction> hook("_read");
    hook.FailCall(2, -1, Errno(EIO));
    KelInsIO::Copy(place.File(), place.New());
    EXPECT_EQ(FileContent(place.New()), std::string(65536, 'x'));
    EXPECT_EQ(hook.Calls().size(), 2u);
}

TEST(CopyFailure, ShortWriteIsPassedOver)
{
    const Place place;
    ImportHook<WriteFunction> hook("_write", [&](int descriptor, const void* block, unsigned count) {
        return hook.CallOriginal(descriptor, block, count - 3);
    });
    KelInsIO::Copy(place.File(), place.New());
    EXPECT_EQ(FileContent(place.New()), "cont");
    EXPECT_EQ(hook.Calls().size(), 1u);
}

TEST(CopyFailure, LaterWriteErrorLeavesWhatWasWritten)
{
    const Place place;
    MakeFile(place.File(), std::string(150'000, 'x'));
    ImportHook<WriteFunction> hook("_write");
    hook.FailFrom(2, -1, Errno(ENOSPC));
    ExpectThrowsText<KelInsExceptionErrno>([&] { KelInsIO::Copy(place.File(), place.New()); },
                                           "Cannot write into " + place.New() + " - " +
                                               KelInsSys::GetErrnoMessage(ENOSPC) + "\n");
    EXPECT_EQ(FileContent(place.New()).size(), 65536u);
}

TEST(CopyFailure, BothFilesAreClosedBeforeTheTextIsMade)
{
    const Place place;
    ImportHook<CloseFunction> close("_close", [&](int descriptor) {
        const int result = close.CallOriginal(descriptor);
        errno = EBADF; // must not replace the code of the failed write
        return result;
    });
    ImportHook<WriteFunction> write("_write");
    write.FailCall(1, -1, Errno(ENOSPC));
    ExpectThrowsText<KelInsExceptionErrno>([&] { KelInsIO::Copy(place.File(), place.New()); },
                                           "Cannot write into " + place.New() + " - " +
                                               KelInsSys::GetErrnoMessage(ENOSPC) + "\n");
    EXPECT_EQ(close.Calls().size(), 2u);
}

TEST(RemoveEmptyDirectoriesFailure, IsFalse)
{
    const TempDirectory directory;
    MakeDirectories(directory / "a\\b");
    const HookMaker failures[] = {
        Failing<AttributesFunction>("GetFileAttributesW", 1, INVALID_FILE_ATTRIBUTES, LastError(5)),
        Failing<AttributesFunction>("GetFileAttributesW", 2, INVALID_FILE_ATTRIBUTES, LastError(5)), // of a\b
        Failing<PathFunction>("RemoveDirectoryW", 1, FALSE, LastError(5)),
        Failing<FindFirstFunction>("FindFirstFileW", 1, INVALID_HANDLE_VALUE, LastError(5)),
    };
    for (const HookMaker& fail : failures) {
        MakeDirectories(directory / "a\\b");
        const auto hook = fail();
        const bool removed = KelInsIO::RemoveEmptyDirectories(directory / "a");
        EXPECT_EQ(removed, TreeNames(directory.Path()).empty());
    }
}

TEST(ExceptionTypes, OfRefusedArguments)
{
    ExpectThrowsText<KelInsException>([] { KelInsIO::GetType(""); }, "GetType - empty path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::GetFileSize(""); }, "GetFileSize -  does not exist.\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::GetFileSize("C:\\"); }, "GetFileSize - C:\\ is not a file.\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::CreateDir(""); }, "CreateDir - empty path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::Copy("", "x"); }, "Copy - empty source path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::Copy("x", ""); }, "Copy - empty destination path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::Delete(""); }, "Delete - empty path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::Rename("", "x"); }, "Rename - empty source path\n");
    ExpectThrowsText<KelInsException>([] { KelInsIO::Rename("x", ""); }, "Rename - empty destination path\n");
}

TEST(ExceptionTypes, OfConditionsThatTheLibraryFinds)
{
    const Place place;
    ExpectThrowsText<KelInsException>([&] { KelInsIO::CreateDir(place.File()); },
                                      "CreateDir - " + place.File() + " is not a directory.\n");
    ExpectThrowsText<KelInsException>([&] { KelInsIO::Copy(place.File(), place.File()); },
                                      "Cannot copy " + place.File() + " to itself.\n");
}

} // namespace
