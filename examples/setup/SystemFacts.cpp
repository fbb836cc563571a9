#include "SystemFacts.h"

#include <KelInsInfra/system/KelInsSys.h>
#include <stdexcept>

namespace Setup {
namespace {

const char* YesOrNo(bool answer)
{
    return answer ? "yes" : "no";
}

std::string CommandLineText()
{
    std::string text;
    for (const std::string& argument : KelInsSys::GetArguments())
        text += (text.empty() ? "[" : " [") + argument + "]";
    return text;
}

} // namespace

void LogSystemFacts(Log& log)
{
    log.Write("Windows: " + KelInsSys::GetWindowsVersion());
    log.Write(std::string("Windows 11: ") + YesOrNo(KelInsSys::IsWindows11()));
    log.Write(std::string("workstation: ") + YesOrNo(KelInsSys::IsClientOS()));
    log.Write(std::string("64-bit Windows: ") + YesOrNo(KelInsSys::IsRTOS64()));
    log.Write(std::string("32-bit process on it: ") + YesOrNo(KelInsSys::IsWOW64()));
    log.Write("computer: " + KelInsSys::GetHostname());
    log.Write("user: " + KelInsSys::GetUsername());
    log.Write(std::string("administrator: ") + YesOrNo(KelInsSys::IsAdmin()));
    log.Write("program: " + KelInsSys::GetExecutablePath());
    log.Write("arguments: " + CommandLineText());
}

void ExpectAdministrator()
{
    if (!KelInsSys::IsAdmin())
        throw std::runtime_error("This installs for all users of the computer, which needs an administrator's rights.\n"
                                 "Open the command prompt with \"Run as administrator\", and start setup there.");
}

} // namespace Setup
