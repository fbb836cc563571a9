#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Setup {

struct CommandLine
{
    enum class Action
    {
        Help,
        Install,
        Uninstall,
    };

    Action action;
    std::string payload; // absolute; empty but for Install
    std::string target;  // absolute; empty for Help
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
