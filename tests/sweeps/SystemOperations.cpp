#include "Operation.h"

#include "tests/system/Child.h"
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <KelInsInfra/system/ProcessBuilder.h>

namespace Sweeps {
namespace {

const std::string kAccented(2000, '\xC3'); // longer than what is converted on the stack

void AddConversions(std::vector<Operation>& operations)
{
    operations.push_back({.name = "Widen",
                          .exports = {"KelInsString::Widen"},
                          .run = [](const Place&) { return std::to_string(KelInsString::Widen("caf\xC3\xA9").size()); },
                          .documented = IsZero});
    operations.push_back(
        {.name = "WidenLong",
         .exports = {"KelInsString::Widen"},
         .run = [](const Place&) { return std::to_string(KelInsString::Widen(kAccented.c_str()).size()); },
         .documented = IsZero});
    operations.push_back({.name = "Narrow",
                          .exports = {"KelInsString::Narrow"},
                          .run = [](const Place&) { return KelInsString::Narrow(L"caf\u00E9"); },
                          .documented = IsNothing});
    operations.push_back(
        {.name = "NarrowLong",
         .exports = {"KelInsString::Narrow"},
         .run = [](const Place&) { return std::to_string(KelInsString::Narrow(std::wstring(2000, L'\u00E9')).size()); },
         .documented = IsZero});
    operations.push_back({.name = "GetLastErrorMessage",
                          .exports = {"KelInsSys::GetLastErrorMessage"},
                          .run = [](const Place&) { return KelInsSys::GetLastErrorMessage(2); },
                          .documented = IsNothing});
    operations.push_back({.name = "GetErrnoMessage",
                          .exports = {"KelInsSys::GetErrnoMessage"},
                          .run = [](const Place&) { return KelInsSys::GetErrnoMessage(2); }});
}

void AddEnvironment(std::vector<Operation>& operations)
{
    operations.push_back({.name = "GetEnv",
                          .exports = {"KelInsEnv::GetEnv"},
                          .prepare = [](const Place&) { KelInsEnv::PutEnv("KELINS_SWEEP_\xC3\xA9", "caf\xC3\xA9"); },
                          .run = [](const Place&) { return KelInsEnv::GetEnv("KELINS_SWEEP_\xC3\xA9"); },
                          .documented = IsNothing});
    operations.push_back({.name = "PutEnv",
                          .exports = {"KelInsEnv::PutEnv"},
                          .prepare = [](const Place&) { KelInsEnv::PutEnv("KELINS_SWEEP_\xC3\xA9", "old"); },
                          .run =
                              [](const Place&) {
                                  KelInsEnv::PutEnv("KELINS_SWEEP_\xC3\xA9", "n\xC3\xA9w");
                                  return KelInsEnv::GetEnv("KELINS_SWEEP_\xC3\xA9");
                              },
                          .documented = [](std::string_view result, std::string_view) { // not reported
                              return result == "old" || result.empty();
                          }});
    operations.push_back({.name = "GetEnvironment",
                          .exports = {"KelInsSys::GetEnvironment"},
                          .run =
                              [](const Place&) {
                                  std::size_t named = 0;
                                  for (const std::string& entry : KelInsSys::GetEnvironment())
                                      named += entry.find('=') != std::string::npos ? 1U : 0U;
                                  return std::to_string(named);
                              },
                          .documented = [](std::string_view, std::string_view) { return true; }});
}

void AddVersionFacts(std::vector<Operation>& operations)
{
    operations.push_back({.name = "GetWindowsVersion",
                          .exports = {"KelInsSys::GetWindowsVersion"},
                          .run = [](const Place&) { return KelInsSys::GetWindowsVersion(); },
                          .documented = IsNothing});
    operations.push_back({.name = "IsClientOS",
                          .exports = {"KelInsSys::IsClientOS"},
                          .run = [](const Place&) { return InWords(KelInsSys::IsClientOS()); },
                          .documented = IsFalse});
    operations.push_back({.name = "IsWindows11",
                          .exports = {"KelInsSys::IsWindows11"},
                          .run = [](const Place&) { return InWords(KelInsSys::IsWindows11()); },
                          .documented = IsFalse});
    operations.push_back({.name = "IsWOW64",
                          .exports = {"KelInsSys::IsWOW64"},
                          .run = [](const Place&) { return InWords(KelInsSys::IsWOW64()); },
                          .documented = IsFalse});
    operations.push_back({.name = "IsRTOS64", .exports = {"KelInsSys::IsRTOS64"}, .run = [](const Place&) {
                              return InWords(KelInsSys::IsRTOS64());
                          }});
}

void AddProcessFacts(std::vector<Operation>& operations)
{
    operations.push_back({.name = "IsAdmin",
                          .exports = {"KelInsSys::IsAdmin"},
                          .run = [](const Place&) { return InWords(KelInsSys::IsAdmin()); },
                          .texts = {"AllocateAndInitializeSid failed. - ", "OpenProcessToken failed. - ",
                                    "GetTokenInformation failed. - "},
                          .documented = IsFalse,
                          .isKept = true});
    operations.push_back({.name = "GetHostname",
                          .exports = {"KelInsSys::GetHostname"},
                          .run = [](const Place&) { return KelInsSys::GetHostname(); },
                          .documented = IsNothing});
    operations.push_back({.name = "GetUsername",
                          .exports = {"KelInsSys::GetUsername"},
                          .run = [](const Place&) { return KelInsSys::GetUsername(); },
                          .documented = IsNothing});
    operations.push_back({.name = "GetArguments",
                          .exports = {"KelInsSys::GetArguments"},
                          .run = [](const Place&) { return std::to_string(KelInsSys::GetArguments().size()); },
                          .texts = {"CommandLineToArgv failed. - "}});
    operations.push_back({.name = "GetExecutablePath",
                          .exports = {"KelInsSys::GetExecutablePath"},
                          .run = [](const Place&) { return KelInsSys::GetExecutablePath(); },
                          .texts = {"GetModuleFileName failed. - "}});
    operations.push_back({.name = "GetExecutableDirPath",
                          .exports = {"KelInsSys::GetExecutableDirPath"},
                          .run = [](const Place&) { return KelInsSys::GetExecutableDirPath(); },
                          .texts = {"GetModuleFileName failed. - "}});
}

void AddProcesses(std::vector<Operation>& operations)
{
    operations.push_back(
        {.name = "StartAndWait",
         .exports = {"KelInsSys::ProcessBuilder::ProcessBuilder", "KelInsSys::ProcessBuilder::~ProcessBuilder",
                     "KelInsSys::ProcessBuilder::operator=", "KelInsSys::ProcessBuilder::SetInheritHandles",
                     "KelInsSys::ProcessBuilder::Start", "KelInsSys::ProcessBuilder::Wait"},
         .run =
             [](const Place&) {
                 KelInsSys::ProcessBuilder process("");
                 process = KelInsSys::ProcessBuilder(ChildCommand("exit 3 \xC3\xA9"));
                 process.SetInheritHandles(0);
                 return process.Start(false) ? std::to_string(process.Wait()) : std::string("false");
             },
         .documented =
             [](std::string_view result, std::string_view) {
                 return result == "false" || result == "0" ||
                        result == "259"; // the wait was refused, and the child still ran
             }});
}

} // namespace

void AddSystemOperations(std::vector<Operation>& operations)
{
    AddConversions(operations);
    AddEnvironment(operations);
    AddVersionFacts(operations);
    AddProcessFacts(operations);
    AddProcesses(operations);
}

} // namespace Sweeps
