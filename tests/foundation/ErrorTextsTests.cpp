#include "../support/ExpectThrowsText.h"

#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

namespace {

constexpr std::uint32_t kCodeWithoutText = 0x2FFFFFFF;

TEST(GetLastErrorMessage, CodeZeroIsEmpty)
{
    EXPECT_EQ(KelInsSys::GetLastErrorMessage(0), "");
}

TEST(GetLastErrorMessage, FileNotFoundEndsInItsFullStop)
{
    const std::string text = KelInsSys::GetLastErrorMessage(ERROR_FILE_NOT_FOUND);
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '.');
}

TEST(GetLastErrorMessage, UnknownCodeIsEmpty)
{
    EXPECT_EQ(KelInsSys::GetLastErrorMessage(kCodeWithoutText), "");
}

TEST(GetErrnoMessage, IsTheRuntimesText)
{
    EXPECT_EQ(KelInsSys::GetErrnoMessage(ENOENT), std::strerror(ENOENT));
    EXPECT_EQ(KelInsSys::GetErrnoMessage(0), std::strerror(0));
    EXPECT_EQ(KelInsSys::GetErrnoMessage(99999), std::strerror(99999));
}

TEST(KelInsException, MessageAloneGainsOneLineFeed)
{
    EXPECT_STREQ(KelInsException("Delete - empty path").what(), "Delete - empty path\n");
}

TEST(KelInsException, CodeAddsTheSystemsText)
{
    EXPECT_EQ(KelInsException("DeleteFile - x", ERROR_FILE_NOT_FOUND).what(),
              "DeleteFile - x - " + KelInsSys::GetLastErrorMessage(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST(KelInsException, SeparatorStaysWithoutSystemText)
{
    EXPECT_STREQ(KelInsException("x", kCodeWithoutText).what(), "x - \n");
    EXPECT_STREQ(KelInsException("x", 0U).what(), "x - \n");
}

TEST(KelInsExceptionErrno, AddsTheRuntimesText)
{
    EXPECT_EQ(KelInsExceptionErrno("SetTime - x", ENOENT).what(),
              std::string("SetTime - x - ") + std::strerror(ENOENT) + "\n");
}

TEST(Exceptions, AreSiblings)
{
    static_assert(std::is_base_of_v<std::runtime_error, KelInsException>);
    static_assert(std::is_base_of_v<std::runtime_error, KelInsExceptionErrno>);
    static_assert(!std::is_base_of_v<KelInsException, KelInsExceptionErrno>);
    static_assert(!std::is_base_of_v<KelInsExceptionErrno, KelInsException>);
    static_assert(sizeof(KelInsException) == sizeof(std::runtime_error));
    static_assert(sizeof(KelInsExceptionErrno) == sizeof(std::runtime_error));
    const auto throwErrno = [] { throw KelInsExceptionErrno("x", ENOENT); };
    EXPECT_THROW(throwErrno(), std::runtime_error);
    EXPECT_THROW(
        {
            try {
                throwErrno();
            } catch (const KelInsException&) { // not this one
            }
        },
        KelInsExceptionErrno);
}

} // namespace
