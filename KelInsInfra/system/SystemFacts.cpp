#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/SystemLibrary.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

// secext.h needs to be told for whom it is
#define SECURITY_WIN32
#include <security.h>

namespace KelInsSys {
namespace {

constexpr DWORD kFirstBuildOfWindows11 = 22000;

std::optional<OSVERSIONINFOEXW> AskVersion()
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (!::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version))) // the longer record begins with the shorter one
        return std::nullopt;
    return version;
}

} // namespace

std::string GetWindowsVersion()
{
    const std::optional<OSVERSIONINFOEXW> version = AskVersion();
    if (!version)
        return {};
    std::string text = std::to_string(version->dwMajorVersion) + "." + std::to_string(version->dwMinorVersion) + "." +
                       std::to_string(version->dwBuildNumber);
    const std::string servicePack = KelInsString::Narrow(&version->szCSDVersion[0]);
    if (!servicePack.empty())
        text += " " + servicePack;
    return text + (version->wProductType == VER_NT_WORKSTATION ? " Client" : " Server");
}

bool IsClientOS()
{
    const std::optional<OSVERSIONINFOEXW> version = AskVersion();
    return version && version->wProductType == VER_NT_WORKSTATION;
}

bool IsWindows11()
{
    const std::optional<OSVERSIONINFOEXW> version = AskVersion();
    return version && version->dwBuildNumber >= kFirstBuildOfWindows11;
}

bool IsWOW64()
{
    static const auto isWow64Process =
        FindEntry<decltype(&::IsWow64Process)>(::GetModuleHandleW(L"kernel32"), "IsWow64Process");
    BOOL isWow64 = FALSE;
    return isWow64Process != nullptr && isWow64Process(::GetCurrentProcess(), &isWow64) && isWow64;
}

bool IsRTOS64()
{
    static const auto getNativeSystemInfo =
        FindEntry<decltype(&::GetNativeSystemInfo)>(::GetModuleHandleW(L"kernel32"), "GetNativeSystemInfo");
    SYSTEM_INFO info{};
    if (IsWOW64() && getNativeSystemInfo != nullptr)
        getNativeSystemInfo(&info);
    else
        ::GetSystemInfo(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
}

std::string GetHostname()
{
    std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> buffer{};
    auto units = static_cast<DWORD>(buffer.size());
    if (!::GetComputerNameW(buffer.data(), &units))
        return {};
    return KelInsString::Narrow(buffer.data());
}

std::string GetUsername()
{
    static std::atomic<decltype(&::GetUserNameExW)> entry; // found once; a failure is tried again at the next call
    if (entry == nullptr)
        entry = FindEntry<decltype(&::GetUserNameExW)>(LoadSystemLibrary(L"secur32.dll"), "GetUserNameExW");
    const auto getUserNameEx = entry.load();
    std::array<wchar_t, 257> buffer{};
    auto units = static_cast<ULONG>(buffer.size());
    if (getUserNameEx == nullptr || !getUserNameEx(NameSamCompatible, buffer.data(), &units))
        return {};
    return KelInsString::Narrow(buffer.data());
}

} // namespace KelInsSys
