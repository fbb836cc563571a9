#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h" // <windows.h> first: none of its macros may rename what is called here

#define SECURITY_WIN32
#include <security.h>

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <array>
#include <cwchar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using VersionHook = ImportHook<BOOL(LPOSVERSIONINFOW)>;
using ComputerNameHook = ImportHook<BOOL(LPWSTR, LPDWORD)>;
using LoadHook = ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)>;
using EntryHook = ImportHook<FARPROC(HMODULE, LPCSTR)>;

struct VersionCase
{
    const char* label;
    std::array<DWORD, 3> version;
    const wchar_t* servicePack;
    BYTE productType;
    const char* text;
    bool isClient;
    bool isWindows11;

    friend void PrintTo(const VersionCase& c, std::ostream* out) { *out << c.text; }
};

constexpr VersionCase kVersionCases[] = {
    {"Windows10", {10, 0, 19045}, L"", VER_NT_WORKSTATION, "10.0.19045 Client", true, false},
    {"Windows7ServicePack",
     {6, 1, 7601},
     L"Service Pack 1",
     VER_NT_WORKSTATION,
     "6.1.7601 Service Pack 1 Client",
     true,
     false},
    {"Server2008R2", {6, 1, 7601}, L"Service Pack 1", VER_NT_SERVER, "6.1.7601 Service Pack 1 Server", false, false},
    {"Server2022", {10, 0, 20348}, L"", VER_NT_SERVER, "10.0.20348 Server", false, false},
    {"DomainController", {10, 0, 17763}, L"", VER_NT_DOMAIN_CONTROLLER, "10.0.17763 Server", false, false},
    {"UnknownProductType", {10, 0, 19045}, L"", 0, "10.0.19045 Server", false, false},
    {"LastBuildBeforeWindows11", {10, 0, 21999}, L"", VER_NT_WORKSTATION, "10.0.21999 Client", true, false},
    {"FirstBuildOfWindows11", {10, 0, 22000}, L"", VER_NT_WORKSTATION, "10.0.22000 Client", true, true},
    {"Windows11", {10, 0, 22631}, L"", VER_NT_WORKSTATION, "10.0.22631 Client", true, true},
    {"Server2025HasItsBuild", {10, 0, 26100}, L"", VER_NT_SERVER, "10.0.26100 Server", false, true},
    {"CompatibilityVersion", {6, 2, 9200}, L"", VER_NT_WORKSTATION, "6.2.9200 Client", true, false},
    {"Zeros", {0, 0, 0}, L"", VER_NT_WORKSTATION, "0.0.0 Client", true, false},
    {"LargestNumbers",
     {4294967295U, 4294967295U, 4294967295U},
     L"",
     VER_NT_WORKSTATION,
     "4294967295.4294967295.4294967295 Client",
     true,
     true},
    {"ServicePackOutsideAscii",
     {6, 1, 7601},
     L"Gr\u00FC\u00DFe \U0001F34E",
     VER_NT_SERVER,
     "6.1.7601 Gr\xC3\xBC\xC3\x9F"
     "e \xF0\x9F\x8D\x8E Server",
     false,
     false},
    {"ServicePackOfSpaces", {6, 1, 7601}, L" ", VER_NT_WORKSTATION, "6.1.7601   Client", true, false},
};

class Version : public testing::TestWithParam<VersionCase>
{};

TEST_P(Version, IsReported)
{
    const VersionCase& expected = GetParam();
    VersionHook hook("GetVersionExW", [&](LPOSVERSIONINFOW shortRecord) {
        EXPECT_EQ(shortRecord->dwOSVersionInfoSize, 284U);
        auto* record = reinterpret_cast<LPOSVERSIONINFOEXW>(shortRecord);
        record->dwMajorVersion = expected.version[0];
        record->dwMinorVersion = expected.version[1];
        record->dwBuildNumber = expected.version[2];
        std::wcscpy(&record->szCSDVersion[0], expected.servicePack);
        record->wProductType = expected.productType;
        return TRUE;
    });
    EXPECT_EQ(KelInsSys::GetWindowsVersion(), expected.text);
    EXPECT_EQ(KelInsSys::IsClientOS(), expected.isClient);
    EXPECT_EQ(KelInsSys::IsWindows11(), expected.isWindows11);
    EXPECT_EQ(hook.Calls().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(Table, Version, testing::ValuesIn(kVersionCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(VersionUntold, IsEmptyAndFalse)
{
    const VersionHook hook("GetVersionExW", [](LPOSVERSIONINFOW record) {
        reinterpret_cast<LPOSVERSIONINFOEXW>(record)->wProductType = VER_NT_WORKSTATION;
        record->dwBuildNumber = 22631;
        return FALSE;
    });
    EXPECT_EQ(KelInsSys::GetWindowsVersion(), "");
    EXPECT_FALSE(KelInsSys::IsClientOS());
    EXPECT_FALSE(KelInsSys::IsWindows11());
}

TEST(VersionReal, IsWhatTheSystemSays)
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    ASSERT_TRUE(::GetVersionExW(reinterpret_cast<LPOSVERSIONINFOW>(&version)));
    const std::string text = KelInsSys::GetWindowsVersion();
    EXPECT_THAT(text, testing::StartsWith(std::to_string(version.dwMajorVersion) + "." +
                                          std::to_string(version.dwMinorVersion) + "." +
                                          std::to_string(version.dwBuildNumber) + " "));
    EXPECT_THAT(text, testing::EndsWith(version.wProductType == VER_NT_WORKSTATION ? " Client" : " Server"));
    EXPECT_EQ(KelInsSys::IsClientOS(), version.wProductType == VER_NT_WORKSTATION);
}

TEST(Hostname, IsWhatTheSystemSays)
{
    std::array<wchar_t, 16> name{};
    DWORD units = 16;
    ASSERT_TRUE(::GetComputerNameW(name.data(), &units));
    EXPECT_EQ(KelInsSys::GetHostname(), KelInsString::Narrow(name.data()));
    EXPECT_NE(KelInsSys::GetHostname(), "");
}

TEST(Hostname, FifteenCharactersFit)
{
    const ComputerNameHook hook("GetComputerNameW", [](LPWSTR buffer, LPDWORD units) {
        EXPECT_EQ(*units, 16U);
        std::wcscpy(buffer, L"\u00C4BCDEFGHIJKLMN\u00D6");
        *units = 15;
        return TRUE;
    });
    EXPECT_EQ(KelInsSys::GetHostname(), "\xC3\x84"
                                        "BCDEFGHIJKLMN\xC3\x96");
}

TEST(Hostname, EmptyWhenTheSystemRefuses)
{
    ComputerNameHook hook("GetComputerNameW");
    hook.FailCall(1, FALSE, LastError(ERROR_BUFFER_OVERFLOW));
    EXPECT_EQ(KelInsSys::GetHostname(), "");
    EXPECT_NE(KelInsSys::GetHostname(), "");
}

/// The user name through a function of ours in the place of the system's.
struct UserNameFake
{
    static inline std::wstring name;
    static inline BOOLEAN succeeds = TRUE;

    static BOOLEAN WINAPI GetUserNameEx(EXTENDED_NAME_FORMAT format, LPWSTR buffer, PULONG units)
    {
        EXPECT_EQ(format, 2);
        EXPECT_EQ(*units, 257U);
        std::wcscpy(buffer, name.c_str());
        return succeeds;
    }

    EntryHook hook{"GetProcAddress", [this](HMODULE library, LPCSTR entry) {
                       if (std::string(entry) == "GetUserNameExW")
                           return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&GetUserNameEx));
                       return hook.CallOriginal(library, entry);
                   }};
};

TEST(UsernameIsolated, IsWhatTheSystemSays)
{
    std::array<wchar_t, 257> name{};
    ULONG units = 257;
    const std::string username = KelInsSys::GetUsername(); // first: it must load the library itself
    const FARPROC entry = ::GetProcAddress(::LoadLibraryW(L"secur32.dll"), "GetUserNameExW");
    const auto getUserNameEx = reinterpret_cast<decltype(&::GetUserNameExW)>(reinterpret_cast<void*>(entry));
    ASSERT_TRUE(getUserNameEx(NameSamCompatible, name.data(), &units));
    EXPECT_EQ(username, KelInsString::Narrow(name.data()));
    EXPECT_THAT(KelInsSys::GetUsername(), testing::ContainsRegex(R"(.+\\.+)"));
}

TEST(UsernameIsolated, LibraryComesFromTheSystemDirectoryAlone)
{
    const LoadHook hook("LoadLibraryExW");
    const std::string name = KelInsSys::GetUsername();
    EXPECT_EQ(KelInsSys::GetUsername(), name);
    EXPECT_THAT(hook.Calls(), testing::ElementsAre(LoadHook::Call(L"secur32.dll", nullptr, 0x800)));
}

TEST(UsernameIsolated, EmptyWithoutTheLibrary)
{
    LoadHook hook("LoadLibraryExW");
    hook.FailCall(1, nullptr, LastError(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(KelInsSys::GetUsername(), "");
    EXPECT_NE(KelInsSys::GetUsername(), ""); // tried again
}

TEST(UsernameIsolated, EmptyWithoutTheEntry)
{
    EntryHook hook("GetProcAddress", [&](HMODULE library, LPCSTR entry) {
        return std::string(entry) == "GetUserNameExW" ? FARPROC{} : hook.CallOriginal(library, entry);
    });
    EXPECT_EQ(KelInsSys::GetUsername(), "");
}

TEST(UsernameIsolated, LongestNameFits)
{
    const UserNameFake fake;
    UserNameFake::name = L"D\\" + std::wstring(253, L'\u00E9') + L"z";
    std::string expected = "D\\";
    for (int i = 0; i < 253; ++i)
        expected += "\xC3\xA9";
    EXPECT_EQ(KelInsSys::GetUsername(), expected + "z");
}

TEST(UsernameIsolated, EmptyWhenTheSystemRefuses)
{
    const UserNameFake fake;
    UserNameFake::name = L"PEARTREE\\partridge";
    UserNameFake::succeeds = FALSE;
    EXPECT_EQ(KelInsSys::GetUsername(), "");
    UserNameFake::succeeds = TRUE;
    EXPECT_EQ(KelInsSys::GetUsername(), "PEARTREE\\partridge");
}

TEST(SystemFactsHandles, ThousandCallsLeaveNone)
{
    const auto askAll = [] {
        KelInsSys::GetWindowsVersion();
        KelInsSys::IsClientOS();
        KelInsSys::IsWindows11();
        KelInsSys::IsAdmin();
        KelInsSys::IsWOW64();
        KelInsSys::IsRTOS64();
        KelInsSys::GetHostname();
        KelInsSys::GetUsername();
        KelInsSys::GetArguments();
        KelInsSys::GetEnvironment();
        KelInsSys::GetExecutablePath();
        KelInsSys::GetExecutableDirPath();
    };
    askAll(); // what the system opens once for good
    const std::size_t before = HandleCount();
    for (int i = 0; i < 1000; ++i)
        askAll();
    EXPECT_EQ(HandleCount(), before);
}

} // namespace
