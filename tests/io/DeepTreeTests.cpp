// Deep trees, walked on a thread with a stack of 256 KiB.

#include "tests/support/Files.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <algorithm>
#include <cwchar>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using Function = std::function<void()>;
using UniqueThread = UniqueHandle<HANDLE, ::CloseHandle>;

DWORD RunFunction(void* function)
{
    try {
        (*static_cast<Function*>(function))();
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    return 0;
}

void RunOnSmallStack(Function function)
{
    constexpr SIZE_T stackSize = 256 * 1024;
    const UniqueThread thread(
        ::CreateThread(nullptr, stackSize, RunFunction, &function, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    ASSERT_TRUE(thread);
    ::WaitForSingleObject(thread.Get(), INFINITE);
}

/// A chain of directories T:\d\d\d... of any depth, which only the patched imports know: a real one takes minutes.
class DeepTree : public testing::Test
{
protected:
    static constexpr std::size_t kLevels = 1000;
    static constexpr const char* kTop = R"(T:\d)";

    static std::size_t Depth(const std::wstring& path)
    {
        return static_cast<std::size_t>(std::count(path.begin(), path.end(), L'd'));
    }

    static void Deliver(const wchar_t* name, LPWIN32_FIND_DATAW record)
    {
        *record = {};
        record->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
        std::wcscpy(record->cFileName, name);
    }

    std::size_t levels = kLevels; ///< how many still exist
    std::size_t openSearches = 0;
    std::size_t created = 0;

    ImportHook<DWORD(LPCWSTR)> attributes{"GetFileAttributesW", [](LPCWSTR) { return FILE_ATTRIBUTE_DIRECTORY; }};

    ImportHook<HANDLE(LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)> pin{
        "CreateFileW", [](LPCWSTR, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
            return ::GetCurrentThread(); // one that need not be closed
        }};

    ImportHook<HANDLE(LPCWSTR, LPWIN32_FIND_DATAW)> first{
        "FindFirstFileW", [this](LPCWSTR pattern, LPWIN32_FIND_DATAW record) {
            ++openSearches;
            const bool hasChild = Depth(pattern) < levels;
            Deliver(hasChild ? L"d" : L"..", record);
            return ::GetCurrentThread(); // any handle that is not the invalid one
        }};

    ImportHook<BOOL(HANDLE, LPWIN32_FIND_DATAW)> next{"FindNextFileW",
                                                      [](HANDLE, LPWIN32_FIND_DATAW) { return FALSE; }};

    ImportHook<BOOL(HANDLE)> close{"FindClose", [this](HANDLE) {
                                       --openSearches;
                                       return TRUE;
                                   }};

    ImportHook<BOOL(LPCWSTR)> remove{"RemoveDirectoryW", [this](LPCWSTR path) {
                                         EXPECT_EQ(Depth(path), levels); // the deepest first
                                         --levels;
                                         return TRUE;
                                     }};

    ImportHook<int(const wchar_t*, struct _stat64*)> stat{"_wstat64", [](const wchar_t*, struct _stat64*) {
                                                              errno = ENOENT;
                                                              return -1;
                                                          }};

    ImportHook<BOOL(LPCWSTR, LPSECURITY_ATTRIBUTES)> create{"CreateDirectoryW", [this](LPCWSTR, LPSECURITY_ATTRIBUTES) {
                                                                ++created;
                                                                return TRUE;
                                                            }};
};

TEST_F(DeepTree, IsDeleted)
{
    RunOnSmallStack([] { KelInsIO::Delete(kTop); });
    EXPECT_EQ(levels, 0u);
    EXPECT_EQ(openSearches, 0u);
}

TEST_F(DeepTree, IsRemovedWhereItHoldsNoFile)
{
    bool removed = false;
    RunOnSmallStack([&] { removed = KelInsIO::RemoveEmptyDirectories(kTop); });
    EXPECT_TRUE(removed);
    EXPECT_EQ(levels, 0u);
    EXPECT_EQ(openSearches, 0u);
}

TEST_F(DeepTree, IsCopiedAndItsChainCreated)
{
    RunOnSmallStack([] { KelInsIO::Copy(kTop, "U:"); }); // the deepest directory brings all above it
    EXPECT_EQ(created, kLevels);                         // U: and all below it but the top, which U: stands for
    EXPECT_EQ(openSearches, 0u);
}

TEST(DeepTreeOnDisk, IsCopiedAndDeleted)
{
    const TempDirectory directory;
    const LongDirectory deep(directory.Path());
    std::string path = deep.Path() + "\\tree";
    for (int i = 0; i < 50; ++i)
        path += "\\d";
    RunOnSmallStack([&] {
        KelInsIO::CreateDir(path);
        KelInsIO::Copy(deep.Path() + "\\tree", deep.Path() + "\\copy");
        EXPECT_EQ(TreeNames(deep.Path() + "\\copy").size(), 50u);
        EXPECT_TRUE(KelInsIO::RemoveEmptyDirectories(deep.Path() + "\\tree"));
        KelInsIO::Delete(deep.Path() + "\\copy");
    });
    EXPECT_TRUE(TreeNames(deep.Path()).empty());
}

} // namespace
