#include "Checks.h"
#include "CommandLine.h"
#include "Console.h"
#include "ErrorText.h"
#include "Install.h"
#include "Log.h"
#include "SystemFacts.h"
#include "Uninstall.h"
#include "Upgrade.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <iostream>

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

void Run(const Setup::CommandLine& commandLine, Setup::Log& log)
{
    using Action = Setup::CommandLine::Action;
    switch (commandLine.action) {
    case Action::Help:
        break; // needs no log
    case Action::Check:
        Setup::CheckInstallation(commandLine.payload, commandLine.target, commandLine.options, log);
        log.Tell("Everything is fine. Nothing was changed.");
        break;
    case Action::Install:
        Setup::Install(commandLine.payload, commandLine.target, commandLine.options, log);
        break;
    case Action::Upgrade:
        Setup::Upgrade(commandLine.payload, commandLine.target, commandLine.options, log);
        break;
    case Action::Uninstall:
        Setup::Uninstall(commandLine.target, log);
        break;
    }
}

void RunLogged(const Setup::CommandLine& commandLine)
{
    Setup::Log log(commandLine.log.empty() ? Setup::Log::DefaultFile() : commandLine.log);
    try {
        Setup::LogSystemFacts(log);
        Run(commandLine, log);
        log.Write("done");
    } catch (const std::exception& error) {
        log.Write("failed: " + Setup::TextOf(error));
        throw;
    }
}

} // namespace

extern "C" int wmain(int count, wchar_t** texts); // the start-up code looks for this name

int wmain(int count, wchar_t** texts)
{
    std::ios::sync_with_stdio(false); // whole lines to the console at once
    const Setup::Utf8Console utf8;
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(KelInsString::Narrow(texts[i]));
    try {
        const Setup::CommandLine commandLine = Setup::ParseCommandLine(arguments);
        if (commandLine.action == Setup::CommandLine::Action::Help)
            std::cout << Setup::kHelp << std::flush;
        else
            RunLogged(commandLine);
        return kDone;
    } catch (const Setup::UsageError& error) {
        std::cerr << "setup: " << error.what() << "\nThis tells what can be done: setup --help\n";
        return kUsage;
    } catch (const std::exception& error) {
        std::cerr << "setup: " << Setup::TextOf(error) << std::endl;
        return kFailed;
    }
}
