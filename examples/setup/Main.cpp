#include "CommandLine.h"
#include "Console.h"
#include "ErrorText.h"
#include "Install.h"
#include "Uninstall.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <iostream>

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

void Run(const Setup::CommandLine& commandLine)
{
    using Action = Setup::CommandLine::Action;
    switch (commandLine.action) {
    case Action::Help:
        std::cout << Setup::kHelp;
        break;
    case Action::Install:
        Setup::Install(commandLine.payload, commandLine.target);
        break;
    case Action::Uninstall:
        Setup::Uninstall(commandLine.target);
        break;
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
        Run(Setup::ParseCommandLine(arguments));
        std::cout << std::flush;
        return kDone;
    } catch (const Setup::UsageError& error) {
        std::cerr << "setup: " << error.what() << "\nThis tells what can be done: setup --help\n";
        return kUsage;
    } catch (const std::exception& error) {
        std::cerr << "setup: " << Setup::TextOf(error) << std::endl;
        return kFailed;
    }
}
