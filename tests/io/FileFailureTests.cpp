#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <fstream>
#include <gtest/gtest.h>

namespace {

TEST(DeleteFileW, Fails)
{
    const TempDirectory directory;
    const std::string file = directory / "a";
    std::ofstream(file) << "x";
    EXPECT_THROW(KelInsIO::Delete(directory / "missing"), std::runtime_error); // what the system opens once for good
    const std::size_t handles = HandleCount();
    {
        ImportHook<BOOL(LPCWSTR)> hook("DeleteFileW");
        hook.FailCall(1, FALSE, LastError(32));
        ExpectThrowsText<std::runtime_error>([&] { KelInsIO::Delete(file); }, "DeleteFile - " + file + " - " +
                                                                                  KelInsSys::GetLastErrorMessage(32) +
                                                                                  "\n");
    }
    EXPECT_TRUE(KelInsIO::Exists(file));
    {
        ImportHook<int(const wchar_t*, int)> hook("_waccess_s");
        hook.FailCall(1, 13, NoCode());
        EXPECT_FALSE(KelInsIO::Exists(file));
        EXPECT_TRUE(KelInsIO::Exists(file));
        EXPECT_EQ(hook.Calls().size(), 2u);
    }
    KelInsIO::Delete(file);
    EXPECT_FALSE(KelInsIO::Exists(file));
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
