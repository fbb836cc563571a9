#include "FaultTable.h"

#include <algorithm>
#include <map>

namespace Sweeps {
namespace {

using Kind = Fault::Kind;
using Faults = std::vector<Fault>;

constexpr Word kMinusOne = ~Word{0}; // also INVALID_HANDLE_VALUE, and INVALID_FILE_ATTRIBUTES in its lower half

// Codes that nothing here comes by on its own: a text with another one has lost the failing call's.
constexpr DWORD kBusy = ERROR_NO_SYSTEM_RESOURCES;
constexpr DWORD kBroken = ERROR_IO_DEVICE;

Fault False(DWORD lastError = kBroken)
{
    return {Kind::Refuse, 0, LastError(lastError)};
}

Fault Invalid(DWORD lastError = kBroken)
{
    return {Kind::Refuse, kMinusOne, LastError(lastError)};
}

/// Functions that return their code.
Fault Status(DWORD status = kBusy)
{
    return {Kind::Refuse, status, NoCode()};
}

Fault MinusOne(int errnoValue)
{
    return {Kind::Refuse, kMinusOne, Errno(errnoValue)};
}

Fault ReturnsErrno(int errnoValue)
{
    return {Kind::Refuse, static_cast<Word>(errnoValue), Errno(errnoValue)};
}

Fault Released(Word result, DWORD lastError = ERROR_INVALID_HANDLE)
{
    return {Kind::DoAndReport, result, LastError(lastError)};
}

Fault Half()
{
    return {Kind::Half, 0, NoCode()};
}

const std::map<std::string_view, Faults>& FailingFunctions()
{
    static const std::map<std::string_view, Faults> functions = {
        // advapi32: registry
        {"RegCloseKey", {Released(ERROR_INVALID_HANDLE)}},
        {"RegCreateKeyExW", {Status()}},
        {"RegDeleteKeyExW", {Status()}},
        {"RegDeleteKeyW", {Status()}},
        {"RegDeleteValueW", {Status()}},
        {"RegEnumKeyExW", {Status(), Status(ERROR_MORE_DATA)}},
        {"RegEnumValueW", {Status(), Status(ERROR_MORE_DATA)}},
        {"RegOpenKeyExW", {Status()}},
        {"RegQueryValueExW", {Status(), Status(ERROR_MORE_DATA)}},
        {"RegSetValueExW", {Status()}},
        // advapi32: rights
        {"AllocateAndInitializeSid", {False(kBusy)}},
        {"CheckTokenMembership", {False(kBusy)}},
        {"FreeSid", {Released(1)}},
        {"GetTokenInformation", {False(kBusy)}},
        {"OpenProcessToken", {False(kBusy)}},
        // kernel32: files
        {"CreateDirectoryW", {False()}},
        {"CreateFileW", {Invalid()}},
        {"DeleteFileW", {False()}},
        {"FindClose", {Released(0)}},
        {"FindFirstFileW", {Invalid()}},
        {"FindNextFileW", {False()}},
        {"GetDiskFreeSpaceExW", {False()}},
        {"GetFileAttributesW", {Invalid(), Invalid(ERROR_SHARING_VIOLATION)}}, // the second is asked about elsewhere
        {"GetFileAttributesExW", {False()}},
        {"GetFileInformationByHandle", {False()}},
        {"GetFileSizeEx", {False()}},
        {"GetFileTime", {False()}},
        {"GetFullPathNameW", {False()}},
        {"MoveFileExW", {False()}},
        {"ReadFile", {False(), Half()}},
        {"RemoveDirectoryW", {False()}},
        {"SetFileAttributesW", {False()}},
        {"SetFileTime", {False()}},
        {"WriteFile", {False(), False(ERROR_DISK_FULL), Half()}},
        // kernel32: processes, facts, texts, libraries
        {"CloseHandle", {Released(0)}},
        {"CreateProcessW", {False(kBusy)}},
        {"FormatMessageW", {False(kBusy)}},
        {"FreeEnvironmentStringsW", {Released(0)}},
        {"GetComputerNameW", {False(kBusy)}},
        {"GetEnvironmentStringsW", {False(kBusy)}},
        {"GetExitCodeProcess", {False(kBusy)}},
        {"GetModuleFileNameW", {False(kBusy)}},
        {"GetModuleHandleW", {False(ERROR_MOD_NOT_FOUND)}},
        {"GetProcAddress", {False(ERROR_PROC_NOT_FOUND)}},
        {"GetVersionExW", {False(kBusy)}},
        {"LoadLibraryExW", {False(ERROR_MOD_NOT_FOUND)}},
        {"LocalFree", {Released(1)}},
        {"MultiByteToWideChar", {False(ERROR_NO_UNICODE_TRANSLATION)}},
        {"WaitForSingleObject", {Invalid(kBusy)}},
        {"WideCharToMultiByte", {False(ERROR_NO_UNICODE_TRANSLATION)}},
        // shell32, and what is looked up by name
        {"CommandLineToArgvW", {False(kBusy)}},
        {"GetUserNameExW", {False(ERROR_MORE_DATA)}},
        {"IsWow64Process", {False(kBusy)}},
        {"MsiEnumRelatedProductsW", {Status(ERROR_BAD_CONFIGURATION), Status(ERROR_INVALID_PARAMETER), Status()}},
        {"MsiGetProductInfoW", {Status(ERROR_UNKNOWN_PRODUCT), Status(ERROR_UNKNOWN_PROPERTY), Status()}},
        // C runtime
        {"_close", {{Kind::DoAndReport, kMinusOne, Errno(EIO)}}},
        {"_fdopen", {{Kind::Refuse, 0, Errno(EMFILE)}}},
        {"_get_osfhandle", {MinusOne(EBADF)}},
        {"_lseeki64", {MinusOne(EIO)}},
        {"_open_osfhandle", {MinusOne(EMFILE)}},
        {"_read", {MinusOne(EIO), Half()}},
        {"_waccess", {MinusOne(EACCES)}},
        {"_waccess_s", {ReturnsErrno(EACCES), ReturnsErrno(ENOENT)}},
        {"_wgetenv", {{Kind::Refuse, 0, NoCode()}}},
        {"_wputenv_s", {ReturnsErrno(EINVAL)}},
        {"_write", {MinusOne(ENOSPC), Half()}},
        {"_wsopen_s", {ReturnsErrno(EACCES), ReturnsErrno(ENOENT)}},
        {"_wstat64", {MinusOne(EACCES), MinusOne(ENOENT)}},
        {"_wutime64", {MinusOne(EACCES)}},
        {"fclose", {{Kind::DoAndReport, kMinusOne, Errno(EIO)}}},
        {"malloc", {{Kind::Refuse, 0, Errno(ENOMEM)}}},
        {"realloc", {{Kind::Refuse, 0, Errno(ENOMEM)}}},
    };
    return functions;
}

/// Functions that do not fail, or not for the library.
const std::vector<std::string_view>& HarmlessFunctions()
{
    static const std::vector<std::string_view> functions = {
        // answer from the process's own memory, and have no way to report a failure
        "CompareFileTime", "GetCommandLineW", "GetCurrentProcess", "GetLastError", "GetNativeSystemInfo",
        "GetSystemInfo", "SetLastError",
        // called by the compiler's start-up code alone, before and after the library's own
        "DeleteCriticalSection", "EnterCriticalSection", "InitializeCriticalSection", "LeaveCriticalSection", "Sleep",
        "TlsGetValue", "VirtualProtect", "VirtualQuery", "__iob_func", "_amsg_exit", "_initterm", "_lock", "_unlock",
        "abort", "calloc", "exit", "fwrite", "vfprintf",
        // called by the compiler's own scanning and printing of numbers, on characters in memory
        "IsDBCSLeadByteEx", "___lc_codepage_func", "___mb_cur_max_func", "getc", "islower", "isspace", "isupper",
        "isxdigit", "localeconv", "tolower", "ungetc",
        // memory that is there
        "_errno", "free", "memchr", "memcmp", "memcpy", "memmove", "memset", "strchr", "strerror", "strlen", "strncmp",
        "strtol", "strtoul", "wcslen"};
    return functions;
}

} // namespace

std::optional<std::vector<Fault>> FaultsOf(std::string_view function)
{
    const auto failing = FailingFunctions().find(function);
    if (failing != FailingFunctions().end())
        return failing->second;
    const auto& harmless = HarmlessFunctions();
    if (std::find(harmless.begin(), harmless.end(), function) != harmless.end())
        return Faults();
    return std::nullopt;
}

bool IsReachedByNone(std::string_view function)
{
    return function == "_waccess"                            // instead of _waccess_s, where that cannot be looked up
           || function == "GetFileSizeEx"                    // of a link alone: failed in the tests of rewriting
           || function == "malloc" || function == "realloc"; // for the compiler's scanning of numbers, unused so far
}

bool IsLanguageRuntime(std::string_view module)
{
    return module.starts_with("libstdc++") || module.starts_with("libgcc") || module.starts_with("libwinpthread");
}

const std::vector<std::string>& FunctionsLookedUp()
{
    static const std::vector<std::string> functions = {
        "_waccess_s",     "CommandLineToArgvW",      "GetUserNameExW",
        "IsWow64Process", "MsiEnumRelatedProductsW", "MsiGetProductInfoW"};
    return functions;
}

const std::vector<std::string>& FileFunctionsOfCppRuntime()
{
    static const std::vector<std::string> functions = {"_fdopen", "_lseeki64", "_read", "_write", "fclose"};
    return functions;
}

const std::vector<std::string>& FileFunctionsOfCRuntime()
{
    static const std::vector<std::string> functions = {
        "CloseHandle", "CreateFileW", "GetFileAttributesW", "GetFileInformationByHandle",
        "ReadFile",    "SetFileTime", "WriteFile"}; // what fails in seeking it passes over
    return functions;
}

} // namespace Sweeps
