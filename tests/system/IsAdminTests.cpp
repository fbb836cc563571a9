// IsAdmin computes its answer once per process, hence one process for each test.

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/system/Child.h"
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace {

using VersionHook = ImportHook<BOOL(LPOSVERSIONINFOW)>;
using SidHook =
    ImportHook<BOOL(PSID_IDENTIFIER_AUTHORITY, BYTE, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, PSID*)>;
using FreeSidHook = ImportHook<PVOID(PSID)>;
using MembershipHook = ImportHook<BOOL(HANDLE, PSID, PBOOL)>;
using OpenTokenHook = ImportHook<BOOL(HANDLE, DWORD, PHANDLE)>;
using TokenHook = ImportHook<BOOL(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID, DWORD, PDWORD)>;
using CloseHook = ImportHook<BOOL(HANDLE)>;

constexpr const char* kOverride = "KelProcessNotAdmin";

/// Stands between IsAdmin and the system; answers as told, else as the system does.
class IsAdminIsolated : public testing::Test
{
protected:
    DWORD majorVersion_ = 10;
    BOOL versionIsKnown_ = TRUE;
    std::optional<BOOL> isMember_;
    std::optional<DWORD> isElevated_;

    VersionHook version_{"GetVersionExW", [this](LPOSVERSIONINFOW record) {
                             EXPECT_EQ(record->dwOSVersionInfoSize, 276U);
                             if (versionIsKnown_)
                                 record->dwMajorVersion = majorVersion_;
                             return versionIsKnown_;
                         }};
    SidHook sid_{"AllocateAndInitializeSid"};
    FreeSidHook freeSid_{"FreeSid"};
    MembershipHook membership_{"CheckTokenMembership", [this](HANDLE token, PSID sid, PBOOL isMember) {
                                   const BOOL answers = membership_.CallOriginal(token, sid, isMember);
                                   *isMember = isMember_.value_or(*isMember);
                                   return answers;
                               }};
    OpenTokenHook openToken_{"OpenProcessToken"};
    TokenHook token_{"GetTokenInformation",
                     [this](HANDLE token, TOKEN_INFORMATION_CLASS what, LPVOID answer, DWORD size, PDWORD needed) {
                         const BOOL answers = token_.CallOriginal(token, what, answer, size, needed);
                         auto* elevation = static_cast<TOKEN_ELEVATION*>(answer);
                         elevation->TokenIsElevated = isElevated_.value_or(elevation->TokenIsElevated);
                         return answers;
                     }};
    CloseHook close_{"CloseHandle"};
};

TEST_F(IsAdminIsolated, MemberElevated)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    EXPECT_TRUE(KelInsSys::IsAdmin());
}

TEST_F(IsAdminIsolated, MemberNotElevated)
{
    isMember_ = TRUE;
    isElevated_ = 0;
    EXPECT_FALSE(KelInsSys::IsAdmin());
}

TEST_F(IsAdminIsolated, NotAMemberIsNotAskedForElevation)
{
    isMember_ = FALSE;
    EXPECT_FALSE(KelInsSys::IsAdmin());
    EXPECT_TRUE(openToken_.Calls().empty());
    EXPECT_EQ(freeSid_.Calls().size(), 1U);
}

TEST_F(IsAdminIsolated, BeforeVistaMembershipDecides)
{
    majorVersion_ = 5;
    isMember_ = TRUE;
    isElevated_ = 0;
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_TRUE(openToken_.Calls().empty());
}

TEST_F(IsAdminIsolated, BeforeVistaNotAMember)
{
    majorVersion_ = 5;
    isMember_ = FALSE;
    EXPECT_FALSE(KelInsSys::IsAdmin());
}

TEST_F(IsAdminIsolated, FromVistaOnElevationDecides)
{
    majorVersion_ = 6;
    isMember_ = TRUE;
    isElevated_ = 0;
    EXPECT_FALSE(KelInsSys::IsAdmin());
    EXPECT_EQ(openToken_.Calls().size(), 1U);
}

TEST_F(IsAdminIsolated, VersionUntoldLeavesMembershipToDecide)
{
    versionIsKnown_ = FALSE;
    isMember_ = TRUE;
    isElevated_ = 0;
    EXPECT_TRUE(KelInsSys::IsAdmin());
}

TEST_F(IsAdminIsolated, MembershipUntoldIsNone)
{
    isMember_ = TRUE; // must not be looked at
    membership_.FailCall(1, FALSE, LastError(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(KelInsSys::IsAdmin());
    EXPECT_EQ(freeSid_.Calls().size(), 1U);
}

TEST_F(IsAdminIsolated, AsksForTheAdministratorsOfTheEffectiveToken)
{
    isMember_ = TRUE;
    SID_IDENTIFIER_AUTHORITY authority{};
    const SidHook sid("AllocateAndInitializeSid", [&](PSID_IDENTIFIER_AUTHORITY given, auto... others) {
        authority = *given;
        return sid_.CallOriginal(given, others...);
    });
    KelInsSys::IsAdmin();
    EXPECT_THAT(authority.Value, testing::ElementsAre(0, 0, 0, 0, 0, 5));
    ASSERT_EQ(sid.Calls().size(), 1U);
    EXPECT_EQ(std::get<1>(sid.Calls()[0]), 2);
    EXPECT_EQ(std::get<2>(sid.Calls()[0]), 32U);
    EXPECT_EQ(std::get<3>(sid.Calls()[0]), 544U);
    EXPECT_EQ(std::get<0>(membership_.Calls().at(0)), nullptr);
    EXPECT_THAT(freeSid_.Calls(), testing::ElementsAre(std::get<1>(membership_.Calls().at(0))));
}

TEST_F(IsAdminIsolated, AsksThisProcessForItsElevation)
{
    isMember_ = TRUE;
    KelInsSys::IsAdmin();
    ASSERT_EQ(openToken_.Calls().size(), 1U);
    EXPECT_EQ(std::get<0>(openToken_.Calls()[0]), ::GetCurrentProcess());
    EXPECT_EQ(std::get<1>(openToken_.Calls()[0]), 0x20008U);
    ASSERT_EQ(token_.Calls().size(), 1U);
    EXPECT_EQ(std::get<1>(token_.Calls()[0]), 20);
    EXPECT_EQ(std::get<3>(token_.Calls()[0]), 4U);
    EXPECT_THAT(close_.Calls(), testing::ElementsAre(std::get<0>(token_.Calls()[0])));
}

TEST_F(IsAdminIsolated, ComputedOnce)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    EXPECT_TRUE(KelInsSys::IsAdmin());
    isElevated_ = 0;
    KelInsEnv::PutEnv(kOverride, "1");
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_EQ(version_.Calls().size(), 1U);
    EXPECT_EQ(token_.Calls().size(), 1U);
}

TEST_F(IsAdminIsolated, ComputedOnceByManyThreads)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    const FreeSidHook slow("FreeSid", [this](PSID sid) {
        ::Sleep(100);
        return freeSid_.CallOriginal(sid);
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] { EXPECT_TRUE(KelInsSys::IsAdmin()); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(slow.Calls().size(), 1U);
    EXPECT_EQ(sid_.Calls().size(), 1U);
}

TEST_F(IsAdminIsolated, OverrideIsFalseWithoutAskingTheSystem)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    KelInsEnv::PutEnv(kOverride, "0"); // any value but the empty one
    EXPECT_FALSE(KelInsSys::IsAdmin());
    EXPECT_TRUE(sid_.Calls().empty());
    KelInsEnv::PutEnv(kOverride, "");
    EXPECT_FALSE(KelInsSys::IsAdmin()); // kept
}

TEST_F(IsAdminIsolated, SidFailsThenTriesAgain)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    sid_.FailCall(1, FALSE, LastError(ERROR_NOT_ENOUGH_MEMORY));
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::IsAdmin(); },
                                         "AllocateAndInitializeSid failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_NOT_ENOUGH_MEMORY) + "\n");
    EXPECT_TRUE(freeSid_.Calls().empty());
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_EQ(sid_.Calls().size(), 2U);
}

TEST_F(IsAdminIsolated, OpeningTheTokenFailsThenTriesAgain)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    openToken_.FailCall(1, FALSE, LastError(ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::IsAdmin(); },
                                         "OpenProcessToken failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_ACCESS_DENIED) + "\n");
    EXPECT_TRUE(close_.Calls().empty());
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_EQ(openToken_.Calls().size(), 2U);
    EXPECT_EQ(freeSid_.Calls().size(), 2U);
}

TEST_F(IsAdminIsolated, AskingTheTokenFailsThenTriesAgain)
{
    isMember_ = TRUE;
    isElevated_ = 1;
    token_.FailCall(1, FALSE, LastError(ERROR_BAD_LENGTH));
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::IsAdmin(); },
                                         "GetTokenInformation failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_BAD_LENGTH) + "\n");
    EXPECT_EQ(close_.Calls().size(), 1U);
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_TRUE(KelInsSys::IsAdmin());
    EXPECT_EQ(token_.Calls().size(), 2U);
    EXPECT_EQ(close_.Calls().size(), 2U);
}

TEST_F(IsAdminIsolated, ThousandFailuresLeaveNoHandles)
{
    isMember_ = TRUE;
    token_.FailFrom(1, FALSE, LastError(ERROR_BAD_LENGTH));
    EXPECT_THROW(KelInsSys::IsAdmin(), std::runtime_error);
    const std::size_t before = HandleCount();
    for (int i = 0; i < 1000; ++i)
        EXPECT_THROW(KelInsSys::IsAdmin(), std::runtime_error);
    EXPECT_EQ(HandleCount(), before);
}

std::int32_t IsAdminInChild()
{
    KelInsSys::ProcessBuilder child(ChildCommand("admin"));
    EXPECT_TRUE(child.Start(false));
    return child.Wait();
}

TEST(IsAdminChild, OverrideBeforeTheFirstCall)
{
    const std::int32_t withoutOverride = IsAdminInChild();
    EXPECT_EQ(withoutOverride, KelInsSys::IsAdmin() ? 1 : 0);
    for (const char* value : {"1", "0", "false", " "}) {
        KelInsEnv::PutEnv(kOverride, value);
        EXPECT_EQ(IsAdminInChild(), 0) << value;
    }
    KelInsEnv::PutEnv(kOverride, "");
    EXPECT_EQ(IsAdminInChild(), withoutOverride);
}

TEST(IsAdminChild, OverrideSetToTheEmptyTextHasNoEffect)
{
    const std::int32_t withoutOverride = IsAdminInChild();
    ::SetEnvironmentVariableW(L"KelProcessNotAdmin", L""); // set, where PutEnv would remove it
    EXPECT_EQ(IsAdminInChild(), withoutOverride);
    ::SetEnvironmentVariableW(L"KelProcessNotAdmin", nullptr);
}

} // namespace
