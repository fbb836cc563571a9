#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/system/KelInsSys.h>

namespace KelInsSys {
namespace {

using UniqueSid = UniqueHandle<PSID, ::FreeSid>;
using UniqueToken = UniqueHandle<HANDLE, ::CloseHandle>;

constexpr DWORD kWindowsVista = 6; // the first version whose tokens are elevated or not

DWORD GetMajorVersion()
{
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    ::GetVersionExW(&version); // when it fails the version stays 0, and group membership alone decides
    return version.dwMajorVersion;
}

bool IsAdministratorsGroupEnabled()
{
    SID_IDENTIFIER_AUTHORITY ntAuthority = {SECURITY_NT_AUTHORITY};
    PSID administrators = nullptr;
    if (!::AllocateAndInitializeSid(&ntAuthority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0,
                                    0, 0, &administrators)) {
        const DWORD error = ::GetLastError();
        throw KelInsException("AllocateAndInitializeSid failed.", error);
    }
    const UniqueSid owner(administrators);
    BOOL isEnabled = FALSE;
    return ::CheckTokenMembership(nullptr, administrators, &isEnabled) && isEnabled;
}

bool IsTokenElevated()
{
    HANDLE handle = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_READ, &handle)) {
        const DWORD error = ::GetLastError();
        throw KelInsException("OpenProcessToken failed.", error);
    }
    const UniqueToken token(handle);
    TOKEN_ELEVATION elevation{};
    DWORD byteCount = 0;
    if (!::GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof(elevation), &byteCount)) {
        const DWORD error = ::GetLastError();
        throw KelInsException("GetTokenInformation failed.", error);
    }
    return elevation.TokenIsElevated != 0;
}

bool FindOutWhetherAdmin()
{
    if (!KelInsEnv::GetEnv("KelProcessNotAdmin").empty())
        return false;
    const DWORD majorVersion = GetMajorVersion();
    const bool isEnabled = IsAdministratorsGroupEnabled();
    if (!isEnabled || majorVersion < kWindowsVista)
        return isEnabled;
    return IsTokenElevated();
}

} // namespace

bool IsAdmin()
{
    static const bool isAdmin = FindOutWhetherAdmin(); // when it throws, the next call tries again
    return isAdmin;
}

} // namespace KelInsSys
