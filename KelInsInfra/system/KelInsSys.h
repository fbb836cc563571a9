#pragma once

#include <KelInsInfra/Export.h>
#include <string>
#include <vector>

/// Facts about the running system and about this process. All text is UTF-8; any thread may call any of these.
///
/// Failures are std::runtime_error with the text given at each function: <system text> stands for the system's message
/// (KelInsSys::GetLastErrorMessage), "\n" for the one line feed that ends these texts. Functions without such a text
/// throw nothing, except std::bad_alloc.
namespace KelInsSys {

/// @name The system
/// Versions are those that Windows reports to this process: a program whose manifest does not declare compatibility
/// with Windows 10 is told 6.2.9200 there, and on Windows 11 too, or 6.3.9600 if it declares that with Windows 8.1.
/// @{

/// "<major>.<minor>.<build>[ <service pack>] Client" or "... Server": "10.0.19045 Client",
/// "6.1.7601 Service Pack 1 Server". Empty when the system does not tell.
KELINS_API std::string GetWindowsVersion();

/// Whether this is a workstation edition; false for servers and domain controllers, and when the system does not tell.
KELINS_API bool IsClientOS();

/// Whether the reported build number is 22000 or higher, which servers since 2025 have too; false when the system does
/// not tell.
KELINS_API bool IsWindows11();

/// Whether the system that this process sees is 64-bit x86. Windows on 64-bit Arm shows itself as such to the x86-64
/// programs that it emulates, so true there too.
KELINS_API bool IsRTOS64();

/// NetBIOS name of this computer, at most 15 characters; empty when the system does not tell.
KELINS_API std::string GetHostname();
/// @}

/// @name This process and its user
/// @{

/// Whether this process has administrator rights: its token holds the Administrators group, enabled, and from Windows
/// Vista on is elevated too.
///
/// Found out by the first call and kept: later changes of the environment have no effect. An environment variable
/// KelProcessNotAdmin with any value but the empty one makes the answer false, whatever the rights. It is inherited, or
/// set by KelInsEnv::PutEnv: what the program's own runtime or SetEnvironmentVariable sets is not seen.
/// @throws "AllocateAndInitializeSid failed. - <system text>\n"; "OpenProcessToken failed. - <system text>\n";
///         "GetTokenInformation failed. - <system text>\n". The next call then tries again.
KELINS_API bool IsAdmin();

/// Whether this is a 32-bit process on a 64-bit system; false when the system does not tell.
KELINS_API bool IsWOW64();

/// The user as "<domain or computer>\<account>"; empty when the system does not tell, so also for names of more than
/// 256 characters.
KELINS_API std::string GetUsername();

/// The command line of this process, split by the system's own rules (CommandLineToArgvW). The first element is the
/// program as it was written there, not its path.
///
/// Split by the first call and kept; each call returns a copy.
/// @throws "CommandLineToArgv failed. - <system text>\n". The next call then tries again.
KELINS_API std::vector<std::string> GetArguments();

/// The environment as it is now, in the system's order, one "<name>=<value>" each. The entries that the system keeps
/// for the current directory of each drive ("=C:=C:\Tools") are among them. Empty when the system does not tell.
KELINS_API std::vector<std::string> GetEnvironment();

/// Full path of this process's program (not of this library), as the system spells it.
///
/// A path of 260 or more characters is cut off: the system gives the first 259, or 260. Asked by the first call and
/// kept; each call returns a copy.
/// @throws "GetModuleFileName failed. - <system text>\n". The next call then tries again.
KELINS_API std::string GetExecutablePath();

/// Directory that holds this process's program: the parent, as KelInsIO::Path::GetParent says it, of
/// GetExecutablePath(). "C:\Tools\setup.exe" gives "C:\Tools", "C:\setup.exe" gives "C:".
///
/// Kept; each call returns a copy. @throws as GetExecutablePath.
KELINS_API std::string GetExecutableDirPath();
/// @}

} // namespace KelInsSys
