// How ReplaceInLines and Write rewrite a file, with each of their system calls failing once. Both must leave, whatever
// fails, the old content or the whole new one: in the file, or in the temporary file beside it.

#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

namespace {

const std::wstring kCppRuntime = L"libstdc++-6.dll";
const std::wstring kCRuntime = L"msvcrt.dll";

using WsopenHook = ImportHook<int(int*, const wchar_t*, int, int, int)>;
using DescriptorHook = ImportHook<int(std::intptr_t, int)>;
using FdopenHook = ImportHook<void*(int, const char*)>;
using ReadHook = ImportHook<int(int, void*, unsigned)>;
using SeekHook = ImportHook<std::int64_t(int, std::int64_t, int)>;
using WriteHook = ImportHook<int(int, const void*, unsigned)>;
using WriteFileHook = ImportHook<BOOL(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*)>;
using ReadFileHook = ImportHook<BOOL(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*)>;
using CloseStreamHook = ImportHook<int(std::FILE*)>;
using DeleteFileHook = ImportHook<BOOL(LPCWSTR)>;
using GetAttributesHook = ImportHook<DWORD(LPCWSTR)>;
using SetAttributesHook = ImportHook<BOOL(LPCWSTR, DWORD)>;
using GetSizeHook = ImportHook<BOOL(HANDLE, PLARGE_INTEGER)>;
using StatHook = ImportHook<int(const wchar_t*, void*)>;
using CreateFileHook = ImportHook<HANDLE(LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)>;
using IdentifyHook = ImportHook<BOOL(HANDLE, void*)>;
using FileTimeHook = ImportHook<BOOL(HANDLE, FILETIME*, FILETIME*, FILETIME*)>;
using RecordHook = ImportHook<BOOL(LPCWSTR, GET_FILEEX_INFO_LEVELS, void*)>;

/// One of the two functions, at work on a file of its own.
struct Rewriter
{
    const char* label;
    const char* suffix; // of the temporary file
    const char* before; // what stands around the text of a failure
    const char* after;
    const char* finalLineEnd;
    void (*rewrite)(const std::string& file);

    friend void PrintTo(const Rewriter& r, std::ostream* out) { *out << r.label; }
};

const Rewriter kReplaceInLines{"ReplaceInLines",
                               "_TmpRIL",
                               "KelInsIO::ReplaceInLines: ",
                               "\nReplaced: old\nReplacing: new text",
                               "",
                               [](const std::string& file) { KelInsIO::ReplaceInLines(file, "old", "new text"); }};

const Rewriter kIniWrite{"IniWrite", "_TmpIniW", "", "", "\r\n", [](const std::string& file) {
                             KelInsIniFile::Write(file, "", "K", "new text", KelInsIniFile::Where::Replace, ';', false);
                         }};

/// More than two blocks of 64 KiB.
std::string Content(const std::string& value, const std::string& finalLineEnd)
{
    std::string text = "K=" + value;
    for (int i = 0; i < 3000; ++i)
        text += "\r\n; a line that is there to fill the file, number " + std::to_string(i);
    return text + finalLineEnd;
}

/// A file in a directory of its own, and what a rewriting makes of it.
class Scene
{
public:
    explicit Scene(const Rewriter& rewriter) : rewriter_(rewriter)
    {
        Rewrite(directory_ / "earlier", "K=old"); // what the system opens, and looks up, once for good
        MakeFile(File(), Old());
    }

    [[nodiscard]] std::string Directory() const { return directory_.Path(); }

    [[nodiscard]] std::string File() const { return directory_ / "file"; }

    [[nodiscard]] std::string Temporary() const { return File() + rewriter_.suffix; }

    [[nodiscard]] std::string Old() const { return Content("old", "\r\n"); }

    [[nodiscard]] std::string New() const { return Content("new text", rewriter_.finalLineEnd); }

    [[nodiscard]] std::string Framed(const std::string& text) const
    {
        return rewriter_.before + text + rewriter_.after;
    }

    /// "" or the text of the exception.
    [[nodiscard]] std::string Rewrite() const
    {
        try {
            rewriter_.rewrite(File());
            return "";
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    /// In words, so that a failure can be read: the files are large.
    [[nodiscard]] std::string StateOf(const std::string& file) const
    {
        const std::string content = FileContentIfAny(file);
        if (content == "(no file)")
            return "missing";
        return content == Old() ? "old" : content == New() ? "new" : std::to_string(content.size()) + " bytes";
    }

private:
    void Rewrite(const std::string& file, const std::string& content) const
    {
        MakeFile(file, content);
        KelInsIO::SetReadOnly(file, true);
        rewriter_.rewrite(file);
        KelInsIO::SetReadOnly(file, false);
    }

    const Rewriter& rewriter_;
    TempDirectory directory_;
};

// --- leftovers of an earlier rewriting

class Leftover : public testing::TestWithParam<Rewriter>
{};

TEST_P(Leftover, IsReplaced)
{
    const Scene scene(GetParam());
    MakeFile(scene.Temporary(), std::string(1'000'000, 'x'));
    EXPECT_EQ(scene.Rewrite(), "");
    EXPECT_EQ(scene.StateOf(scene.File()), "new");
    EXPECT_EQ(scene.StateOf(scene.Temporary()), "missing");
}

TEST_P(Leftover, ThatIsALinkIsNotWrittenThrough)
{
    const Scene scene(GetParam());
    const std::string victim = scene.File() + "_victim";
    MakeFile(victim, "precious");
    std::filesystem::create_hard_link(victim, scene.Temporary());
    EXPECT_EQ(scene.Rewrite(), "");
    EXPECT_EQ(scene.StateOf(scene.File()), "new");
    EXPECT_EQ(FileContentIfAny(victim), "precious");
}

TEST_P(Leftover, ThatIsALinkToTheFileItselfIsRemoved)
{
    const Scene scene(GetParam());
    std::filesystem::create_hard_link(scene.File(), scene.Temporary());
    EXPECT_EQ(scene.Rewrite(), "");
    EXPECT_EQ(scene.StateOf(scene.File()), "new");
    EXPECT_EQ(scene.StateOf(scene.Temporary()), "missing");
}

TEST_P(Leftover, ThatIsADirectoryIsLeftAlone)
{
    const Scene scene(GetParam());
    KelInsIO::CreateDir(scene.Temporary());
    MakeFile(scene.Temporary() + "\\inside", "precious");
    EXPECT_EQ(scene.Rewrite(), scene.Framed("Failed to open " + scene.Temporary()));
    EXPECT_EQ(scene.StateOf(scene.File()), "old");
    EXPECT_EQ(FileContentIfAny(scene.Temporary() + "\\inside"), "precious");
}

TEST_P(Leftover, ThatIsAnEmptyDirectoryIsLeftAlone)
{
    const Scene scene(GetParam());
    KelInsIO::CreateDir(scene.Temporary());
    EXPECT_EQ(scene.Rewrite(), scene.Framed("Failed to open " + scene.Temporary()));
    EXPECT_EQ(scene.StateOf(scene.File()), "old");
    EXPECT_TRUE(KelInsIO::IsDirectory(scene.Temporary()));
}

TEST_P(Leftover, ThatIsInUseStopsTheRewriting)
{
    const Scene scene(GetParam());
    const std::ofstream user = KelInsIO::GetOutputFileStream(scene.Temporary(), std::ios_base::out);
    EXPECT_EQ(scene.Rewrite(), scene.Framed("Failed to open " + scene.Temporary()));
    EXPECT_EQ(scene.StateOf(scene.File()), "old");
}

INSTANTIATE_TEST_SUITE_P(Both, Leftover, testing::Values(kReplaceInLines, kIniWrite),
                         [](const auto& test) { return std::string(test.param.label); });

// --- failing calls, one after the other

using Failure = std::shared_ptr<void>; // a hook, alive while the rewriting runs

template <typename Hook, typename Result>
Failure FailNth(const std::string& function, std::size_t n, Result result, FailureCode code,
                const std::vector<std::wstring>& alsoIn = {})
{
    auto hook = std::make_shared<Hook>(function, alsoIn);
    hook->FailCall(n, result, code);
    return hook;
}

/// The nth call and all later ones.
template <typename Hook, typename Result>
Failure FailFrom(const std::string& function, std::size_t n, Result result, FailureCode code,
                 const std::vector<std::wstring>& alsoIn = {})
{
    auto hook = std::make_shared<Hook>(function, alsoIn);
    hook->FailFrom(n, result, code);
    return hook;
}

/// A hook of a call that succeeds but for what the function makes of its result.
template <typename Hook, typename Change>
Failure ChangeNth(const std::string& function, std::size_t n, Change change,
                  const std::vector<std::wstring>& alsoIn = {})
{
    struct Holder
    {
        std::unique_ptr<Hook> hook;
        std::size_t calls = 0;
    };

    auto holder = std::make_shared<Holder>();
    holder->hook = std::make_unique<Hook>(
        function,
        [raw = holder.get(), n, change](auto... arguments) {
            return change(*raw->hook, ++raw->calls == n, arguments...);
        },
        alsoIn);
    return holder;
}

enum class Text // of the exception; File and Temporary stand for the names
{
    None,
    FailedToOpenFile,
    FailedToReadFile,
    FailedToOpenTemporary,
    FailedToWriteTemporary,
    FailedToWriteFile,
    CannotAskTypeOfTemporary, // the rest are Copy's
    CannotCreateDirectory,    // taken as missing
    CannotStatTemporary,
    CannotReadTemporary,
    CannotOpenFile,
    CannotWriteFile,
};

struct FailureCase
{
    const char* label;
    std::function<Failure()> fail;
    Text text;
    std::string file;      // its state afterwards
    std::string temporary; // likewise
    bool readOnlyAfter;    // the file was read-only before

    friend void PrintTo(const FailureCase& c, std::ostream* out) { *out << c.label; }
};

std::string TextOf(Text text, const Scene& scene)
{
    const auto errnoText = [](int value) { return " - " + KelInsSys::GetErrnoMessage(value) + "\n"; };
    switch (text) {
    case Text::None:
        return "";
    case Text::FailedToOpenFile:
        return scene.Framed("Failed to open " + scene.File());
    case Text::FailedToReadFile:
        return scene.Framed("Failed to read " + scene.File());
    case Text::FailedToOpenTemporary:
        return scene.Framed("Failed to open " + scene.Temporary());
    case Text::FailedToWriteTemporary:
        return scene.Framed("Failed to write " + scene.Temporary());
    case Text::FailedToWriteFile:
        return scene.Framed("Failed to write " + scene.File());
    case Text::CannotAskTypeOfTemporary:
        return "GetType - " + scene.Temporary() + " - " + KelInsSys::GetLastErrorMessage(ERROR_ACCESS_DENIED) + "\n";
    case Text::CannotCreateDirectory:
        return "CreateDirectory - " + scene.Directory() + " - " + KelInsSys::GetLastErrorMessage(ERROR_ALREADY_EXISTS) +
               "\n";
    case Text::CannotStatTemporary:
        return "Cannot stat " + scene.Temporary() + errnoText(ENOENT);
    case Text::CannotReadTemporary:
        return "Cannot read " + scene.Temporary() + errnoText(EACCES);
    case Text::CannotOpenFile:
        return "Cannot write into " + scene.File() + errnoText(EACCES);
    case Text::CannotWriteFile:
        return "Cannot write into " + scene.File() + errnoText(ENOSPC);
    }
    return "?";
}

Failure FailOpen(std::size_t n)
{
    return FailNth<WsopenHook>("_wsopen_s", n, EACCES, Errno(EACCES));
}

Failure FailCreateFile(std::size_t n)
{
    return FailNth<CreateFileHook>("CreateFileW", n, INVALID_HANDLE_VALUE, LastError(ERROR_ACCESS_DENIED));
}

Failure FailAttributes(std::size_t n)
{
    return FailNth<GetAttributesHook>("GetFileAttributesW", n, INVALID_FILE_ATTRIBUTES, LastError(ERROR_ACCESS_DENIED));
}

Failure CloseWithFailure(std::size_t n)
{
    return ChangeNth<CloseStreamHook>("fclose", n,
                                      [](const CloseStreamHook& hook, bool now, std::FILE* file) {
                                          const int result = hook.CallOriginal(file);
                                          return now ? EOF : result;
                                      },
                                      {kCppRuntime});
}

/// The nth write of the copy (the library's own calls) writes half of what it should, and says so.
Failure CopyShort(std::size_t n)
{
    return ChangeNth<WriteHook>("_write", n,
                                [](const WriteHook& hook, bool now, int file, const void* bytes, unsigned size) {
                                    return hook.CallOriginal(file, bytes, now ? size / 2 : size);
                                });
}

/// The nth write of all, of which the first are those to the temporary file, writes half of what it should, and says
/// so.
Failure WriteShort(std::size_t n)
{
    return ChangeNth<WriteHook>("_write", n,
                                [](const WriteHook& hook, bool now, int file, const void* bytes, unsigned size) {
                                    return hook.CallOriginal(file, bytes, now ? size / 2 : size);
                                },
                                {kCppRuntime});
}

/// Files look like links, whose size is their own.
Failure ShowLinks()
{
    return ChangeNth<RecordHook>(
        "GetFileAttributesExW", 0,
        [](const RecordHook& hook, bool, LPCWSTR path, GET_FILEEX_INFO_LEVELS level, void* record) {
            const BOOL result = hook.CallOriginal(path, level, record);
            auto* data = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(record);
            data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
            data->nFileSizeLow = 0;
            return result;
        });
}

/// The file grows after its size was asked for.
Failure TellSmallerSize()
{
    return ChangeNth<SeekHook>("_lseeki64", 1,
                               [](const SeekHook& hook, bool now, int file, std::int64_t offset, int origin) {
                                   const std::int64_t place = hook.CallOriginal(file, offset, origin);
                                   return now ? place / 2 : place;
                               },
                               {kCppRuntime});
}

Failure Both(Failure first, Failure second)
{
    return std::make_shared<std::pair<Failure, Failure>>(std::move(first), std::move(second));
}

std::vector<FailureCase> FailureCases()
{
    return {
        // reading
        {"OpenFile", [] { return FailOpen(1); }, Text::FailedToOpenFile, "old", "missing", true},
        {"OpenFileAsStream", [] { return FailNth<FdopenHook>("_fdopen", 1, nullptr, Errno(EMFILE), {kCppRuntime}); },
         Text::FailedToOpenFile, "old", "missing", true},
        {"SeekBackBeforeReading",
         [] { return FailNth<SeekHook>("_lseeki64", 2, std::int64_t{-1}, Errno(EIO), {kCppRuntime}); },
         Text::FailedToReadFile, "old", "missing", true},
        {"ReadFile", [] { return FailNth<ReadHook>("_read", 1, -1, Errno(EIO), {kCppRuntime}); },
         Text::FailedToReadFile, "old", "missing", true},
        {"ReadLaterBlock", [] { return FailNth<ReadHook>("_read", 2, -1, Errno(EIO), {kCppRuntime}); },
         Text::FailedToReadFile, "old", "missing", true},
        {"ReadFileInTheSystem",
         [] { return FailNth<ReadFileHook>("ReadFile", 2, FALSE, LastError(ERROR_CRC), {kCRuntime}); },
         Text::FailedToReadFile, "old", "missing", true},
        {"SizeToldTooSmall", [] { return TellSmallerSize(); }, Text::None, "new", "missing", true},
        // writing the temporary file
        {"OpenTemporary",
         [] {
             return FailFrom<CreateFileHook>("CreateFileW", 1, INVALID_HANDLE_VALUE, LastError(ERROR_ACCESS_DENIED));
         },
         Text::FailedToOpenTemporary, "old", "missing", true},
        {"OpenTemporaryOnce", [] { return FailCreateFile(1); }, Text::None, "new", "missing", true},
        {"DescriptorOfTemporary", [] { return FailFrom<DescriptorHook>("_open_osfhandle", 1, -1, Errno(EMFILE)); },
         Text::FailedToOpenTemporary, "old", "0 bytes", true},
        {"DescriptorOfTemporaryOnce", [] { return FailNth<DescriptorHook>("_open_osfhandle", 1, -1, Errno(EMFILE)); },
         Text::None, "new", "missing", true},
        {"OpenTemporaryAsStream",
         [] { return FailFrom<FdopenHook>("_fdopen", 2, nullptr, Errno(EMFILE), {kCppRuntime}); },
         Text::FailedToOpenTemporary, "old", "0 bytes", true},
        {"WriteTemporary",
         [] { return FailNth<WriteFileHook>("WriteFile", 1, FALSE, LastError(ERROR_DISK_FULL), {kCRuntime}); },
         Text::FailedToWriteTemporary, "old", "0 bytes", true},
        {"WriteTemporaryLaterBlock",
         [] { return FailNth<WriteFileHook>("WriteFile", 2, FALSE, LastError(ERROR_DISK_FULL), {kCRuntime}); },
         Text::FailedToWriteTemporary, "old", "65536 bytes", true},
        {"WriteTemporaryShort", [] { return WriteShort(1); }, Text::None, "new", "missing", true},
        {"CloseTemporary", [] { return CloseWithFailure(2); }, Text::FailedToWriteTemporary, "old", "new", true},
        // the copy
        {"TypeOfTemporary", [] { return FailAttributes(2); }, Text::CannotAskTypeOfTemporary, "old", "new", false},
        {"RecordOfDirectory", [] { return FailNth<StatHook>("_wstat64", 1, -1, Errno(ENOENT)); },
         Text::CannotCreateDirectory, "old", "new", false},
        {"RecordOfTemporary", [] { return FailNth<StatHook>("_wstat64", 2, -1, Errno(ENOENT)); },
         Text::CannotStatTemporary, "old", "new", false},
        {"OpenToIdentify", [] { return FailCreateFile(2); }, Text::None, "new", "missing", true},
        {"IdentityOfFile",
         [] {
             return Both(FailNth<FileTimeHook>("GetFileTime", 1, FALSE, LastError(ERROR_ACCESS_DENIED)),
                         FailNth<IdentifyHook>("GetFileInformationByHandle", 2, FALSE, LastError(ERROR_ACCESS_DENIED)));
         },
         Text::None, "new", "missing", true},
        {"OpenTemporaryForCopy", [] { return FailOpen(2); }, Text::CannotReadTemporary, "old", "new", false},
        {"OpenFileForCopy", [] { return FailOpen(3); }, Text::CannotOpenFile, "old", "new", false},
        {"CopyReadsNothing", [] { return FailNth<ReadHook>("_read", 1, -1, Errno(EIO)); }, Text::FailedToWriteFile,
         "0 bytes", "new", false},
        {"CopyReadsOneBlock", [] { return FailNth<ReadHook>("_read", 2, -1, Errno(EIO)); }, Text::FailedToWriteFile,
         "65536 bytes", "new", false},
        {"CopyWritesNothing", [] { return FailNth<WriteHook>("_write", 1, -1, Errno(ENOSPC)); }, Text::CannotWriteFile,
         "0 bytes", "new", false},
        {"CopyWritesOneBlock", [] { return FailNth<WriteHook>("_write", 2, -1, Errno(ENOSPC)); }, Text::CannotWriteFile,
         "65536 bytes", "new", false},
        {"CopyWritesNothingAtAllUnnoticed", [] { return FailNth<WriteHook>("_write", 3, 0, NoCode()); },
         Text::FailedToWriteFile, "131072 bytes", "new", false},
        {"SizeAfterCopy",
         [] { return FailNth<RecordHook>("GetFileAttributesExW", 1, FALSE, LastError(ERROR_ACCESS_DENIED)); },
         Text::FailedToWriteFile, "new", "new", false},
        {"SizeOfALinkAfterCopy", [] { return ShowLinks(); }, Text::None, "new", "missing", true},
        {"SizeBehindALinkAfterCopy",
         [] {
             return Both(ShowLinks(), FailNth<GetSizeHook>("GetFileSizeEx", 1, FALSE, LastError(ERROR_ACCESS_DENIED)));
         },
         Text::FailedToWriteFile, "new", "new", false},
        {"OtherSizeBehindALinkAfterCopy",
         [] {
             return Both(ShowLinks(), ChangeNth<GetSizeHook>("GetFileSizeEx", 1,
                                                             [](const GetSizeHook&, bool, HANDLE, PLARGE_INTEGER size) {
                                                                 size->QuadPart = 1;
                                                                 return TRUE;
                                                             }));
         },
         Text::FailedToWriteFile, "new", "new", false},
        {"OpenForSizeBehindALinkAfterCopy", [] { return Both(ShowLinks(), FailCreateFile(3)); },
         Text::FailedToWriteFile, "new", "new", false},
        // tidying up
        {"TypeOfTemporaryAtTheEnd", [] { return FailAttributes(3); }, Text::None, "new", "new", true},
        {"DeleteTemporary",
         [] { return FailNth<DeleteFileHook>("DeleteFileW", 1, FALSE, LastError(ERROR_ACCESS_DENIED)); }, Text::None,
         "new", "new", true},
        {"ReadAttributesAtTheEnd", [] { return FailAttributes(4); }, Text::None, "new", "missing", false},
        {"SetAttributesAtTheEnd",
         [] { return FailNth<SetAttributesHook>("SetFileAttributesW", 2, FALSE, LastError(ERROR_ACCESS_DENIED)); },
         Text::None, "new", "missing", false},
    };
}

class RewriteFailure : public testing::TestWithParam<std::tuple<Rewriter, FailureCase>>
{};

TEST_P(RewriteFailure, LeavesOldOrNewContent)
{
    const auto& [rewriter, c] = GetParam();
    const Scene scene(rewriter);
    ASSERT_TRUE(KelInsIO::SetReadOnly(scene.File(), true));
    const std::size_t handles = HandleCount();
    Failure hook = c.fail();
    const std::string text = scene.Rewrite();
    hook.reset();
    EXPECT_EQ(HandleCount(), handles);
    EXPECT_EQ(text, TextOf(c.text, scene));
    EXPECT_EQ(scene.StateOf(scene.File()), c.file);
    EXPECT_EQ(scene.StateOf(scene.Temporary()), c.temporary);
    EXPECT_EQ(IsReadOnly(scene.File()), c.readOnlyAfter);
}

TEST_P(RewriteFailure, IsMendedByAnotherRewriting)
{
    const auto& [rewriter, c] = GetParam();
    const Scene scene(rewriter);
    Failure hook = c.fail();
    static_cast<void>(scene.Rewrite());
    hook.reset();
    if (c.file == "old" || c.file == "new") {
        EXPECT_EQ(scene.Rewrite(), "");
        EXPECT_EQ(scene.StateOf(scene.File()), "new");
        EXPECT_EQ(scene.StateOf(scene.Temporary()), "missing");
    } else {
        EXPECT_EQ(scene.StateOf(scene.Temporary()), "new"); // what is missing in the file lies here
    }
}

INSTANTIATE_TEST_SUITE_P(Each, RewriteFailure,
                         testing::Combine(testing::Values(kReplaceInLines, kIniWrite),
                                          testing::ValuesIn(FailureCases())),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param).label) + std::get<1>(test.param).label;
                         });

class RewriteProtocol : public testing::TestWithParam<Rewriter>
{};

TEST_P(RewriteProtocol, NoticesAShortWriteOfTheCopy)
{
    const Scene scene(GetParam());
    Failure hook = CopyShort(1);
    EXPECT_EQ(scene.Rewrite(), scene.Framed("Failed to write " + scene.File()));
    hook.reset();
    EXPECT_EQ(FileContentIfAny(scene.File()).size(), scene.New().size() - 32768);
    EXPECT_EQ(scene.StateOf(scene.Temporary()), "new");
}

/// Where the read-only attribute cannot be taken away, the copy decides: it is refused, but an administrator under Wine
/// is let through.
TEST_P(RewriteProtocol, AFileThatStaysReadOnlyIsNeverDamaged)
{
    for (const bool failReading : {true, false}) {
        const Scene scene(GetParam());
        ASSERT_TRUE(KelInsIO::SetReadOnly(scene.File(), true));
        Failure hook = failReading
                           ? FailAttributes(1)
                           : FailNth<SetAttributesHook>("SetFileAttributesW", 1, FALSE, LastError(ERROR_ACCESS_DENIED));
        const std::string text = scene.Rewrite();
        hook.reset();
        EXPECT_EQ(text, text.empty() ? "" : TextOf(Text::CannotOpenFile, scene));
        EXPECT_EQ(scene.StateOf(scene.File()), text.empty() ? "new" : "old");
        EXPECT_EQ(scene.StateOf(scene.Temporary()), text.empty() ? "missing" : "new");
        EXPECT_TRUE(IsReadOnly(scene.File()));
    }
}

/// What a rewriting opens, deletes and protects, in order.
std::vector<std::string> CallsOf(const Scene& scene)
{
    std::vector<std::string> order;
    const auto note = [&order](const char* what, const wchar_t* path) {
        order.push_back(std::string(what) +
                        (std::wstring_view(path).find(L"_Tmp") != std::wstring_view::npos ? " temporary" : " file"));
    };
    const auto deletion = ChangeNth<DeleteFileHook>("DeleteFileW", 0, [note](auto& hook, bool, LPCWSTR path) {
        note("delete", path);
        return hook.CallOriginal(path);
    });
    const auto opening = ChangeNth<WsopenHook>(
        "_wsopen_s", 0, [note](auto& hook, bool, int* file, const wchar_t* path, int flags, int share, int mode) {
            note("open", path);
            return hook.CallOriginal(file, path, flags, share, mode);
        });
    const auto creation =
        ChangeNth<CreateFileHook>("CreateFileW", 0,
                                  [note](auto& hook, bool, LPCWSTR path, DWORD access, DWORD share, void* security,
                                         DWORD how, DWORD flags, HANDLE model) {
                                      if (how == CREATE_NEW)
                                          note("create", path);
                                      return hook.CallOriginal(path, access, share, security, how, flags, model);
                                  });
    const auto attributes =
        ChangeNth<SetAttributesHook>("SetFileAttributesW", 0, [note](auto& hook, bool, LPCWSTR path, DWORD value) {
            note((value & FILE_ATTRIBUTE_READONLY) != 0 ? "protect" : "unprotect", path);
            return hook.CallOriginal(path, value);
        });
    EXPECT_EQ(scene.Rewrite(), "");
    return order;
}

TEST_P(RewriteProtocol, MakesItsCallsInTheirOrder)
{
    const Scene scene(GetParam());
    ASSERT_TRUE(KelInsIO::SetReadOnly(scene.File(), true));
    const std::vector<std::string> expected = {"open file", "create temporary", "unprotect file", "open temporary",
                                               "open file", "delete temporary", "protect file"};
    EXPECT_EQ(CallsOf(scene), expected);
}

/// It may be a link, to a file or to nothing.
TEST_P(RewriteProtocol, LeavesALeftoverThatCannotBeRemovedAsItIs)
{
    const Scene scene(GetParam());
    MakeFile(scene.Temporary(), "precious");
    Failure hook = FailNth<DeleteFileHook>("DeleteFileW", 1, FALSE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_EQ(scene.Rewrite(), scene.Framed("Failed to open " + scene.Temporary()));
    hook.reset();
    EXPECT_EQ(scene.StateOf(scene.File()), "old");
    EXPECT_EQ(FileContentIfAny(scene.Temporary()), "precious");
}

/// The system would otherwise create what a link names that leads to nothing.
TEST_P(RewriteProtocol, CreatesTheTemporaryFileAsNewWithoutFollowingALink)
{
    const Scene scene(GetParam());
    std::vector<DWORD> flags;
    const auto creation =
        ChangeNth<CreateFileHook>("CreateFileW", 0,
                                  [&flags](auto& hook, bool, LPCWSTR path, DWORD access, DWORD share, void* security,
                                           DWORD how, DWORD attributes, HANDLE model) {
                                      if (how == CREATE_NEW)
                                          flags.push_back(attributes);
                                      return hook.CallOriginal(path, access, share, security, how, attributes, model);
                                  });
    EXPECT_EQ(scene.Rewrite(), "");
    EXPECT_EQ(flags, std::vector<DWORD>{FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT});
}

/// One that cannot be asked about is not taken for a missing one, and overwritten.
TEST(WriteOfAnExistingFile, KeepsItsLinesThoughItSeemsMissing)
{
    const Scene scene(kIniWrite);
    ASSERT_TRUE(KelInsIO::Exists(scene.File())); // which looks the call up
    for (const int error : {EACCES, ENOENT}) {
        ImportHook<errno_t(const wchar_t*, int)> access("_waccess_s");
        access.FailFrom(1, error, Errno(error));
        EXPECT_EQ(scene.Rewrite(), "");
        EXPECT_EQ(scene.StateOf(scene.File()), "new");
    }
}

INSTANTIATE_TEST_SUITE_P(Both, RewriteProtocol, testing::Values(kReplaceInLines, kIniWrite),
                         [](const auto& test) { return std::string(test.param.label); });

} // namespace
