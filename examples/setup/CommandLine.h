#pragma once

#include "Package.h"
#include <stdexcept>
#include <string>
#include <vector>

namespace Setup {

struct CommandLine
{
    enum class Action
    {
        Help,
        Check,
        Install,
        Upgrade,
        Uninstall,
    };

    Action action = Action::Help;
    std::string payload; // absolute; empty for Help and Uninstall
    std::string target;  // absolute; empty for Help
    std::string log;     // absolute; empty where none was named
    Properties options;  // of the package
};

/// The command line cannot be understood.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

extern const char* const kHelp;

/// @param arguments  UTF-8, without the program's name.
/// @throws UsageError
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

} // namespace Setup
