#include "Package.h"

#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <stdexcept>
#include <windows.h> // codes of Windows Installer, GetLastError

namespace Setup {
namespace {

/// As msiexec wants values of properties: in double quotes, and those inside doubled.
std::string Quote(std::string value)
{
    KelInsString::ReplaceAll(value, "\"", "\"\"");
    return '"' + value + '"';
}

/// By its whole path, so that no program of that name somewhere else is started.
std::string Msiexec()
{
    return '"' + KelInsEnv::GetEnv("SystemRoot") + R"(\System32\msiexec.exe")";
}

std::string MsiLog(const Log& log)
{
    return log.GetFile() + ".msi.txt";
}

std::uint32_t Run(const std::string& command, Log& log)
{
    log.Write("starting: " + command);
    KelInsSys::ProcessBuilder process(command);
    process.SetInheritHandles(0);
    if (!process.Start(false)) {
        const DWORD error = ::GetLastError();
        throw std::runtime_error("Windows Installer cannot be started: " + KelInsSys::GetLastErrorMessage(error) +
                                 "\nSee whether its service is disabled: " + command);
    }
    const auto code = static_cast<std::uint32_t>(process.Wait());
    log.Write("ended with " + std::to_string(code) + ' ' + KelInsSys::GetLastErrorMessage(code));
    return code;
}

[[noreturn]] void Fail(const std::string& what, std::uint32_t code, const Log& log)
{
    throw std::runtime_error(what + " failed with " + std::to_string(code) + ": " +
                             KelInsSys::GetLastErrorMessage(code) + "\nLook for the reason in " + MsiLog(log));
}

} // namespace

std::string InstallCommand(const std::string& package, const Properties& properties, const std::string& msiLog)
{
    std::string command = Msiexec() + " /i " + Quote(package) + " /qn /norestart /L*v " + Quote(msiLog);
    for (const auto& [name, value] : properties)
        command += ' ' + name + '=' + Quote(value);
    return command;
}

void InstallPackage(const std::string& package, const Properties& properties, Log& log)
{
    const std::uint32_t code = Run(InstallCommand(package, properties, MsiLog(log)), log);
    if (code == ERROR_SUCCESS_REBOOT_REQUIRED)
        log.Tell("Restart the computer before you use the server.");
    else if (code != ERROR_SUCCESS)
        Fail("The installation of the package " + package, code, log);
}

void InstallServer(const std::string& package, const std::string& target, Properties options, Log& log)
{
    log.Tell("Installing the server");
    options.emplace_back("INSTALLDIR", target + R"(\server)");
    InstallPackage(package, options, log);
}

void RemovePackage(const std::string& productCode, Log& log)
{
    const std::uint32_t code =
        Run(Msiexec() + " /x " + productCode + " /qn /norestart /L*v " + Quote(MsiLog(log)), log);
    if (code == ERROR_SUCCESS_REBOOT_REQUIRED)
        log.Tell("Restart the computer to remove the last files of the server.");
    else if (code != ERROR_SUCCESS && code != ERROR_UNKNOWN_PRODUCT)
        Fail("The removal of the package " + productCode, code, log);
}

} // namespace Setup
