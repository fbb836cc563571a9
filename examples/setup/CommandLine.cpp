#include "CommandLine.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
#include <algorithm>
#include <filesystem>

namespace Setup {
namespace {

/// The installation records where it stands and asks drives for their space: both need a full path. Quotes and slashes
/// of any kind are welcome.
std::string MakeAbsolute(const std::string& argument)
{
    // Path takes a text in backslashes for a quoted one: without the last it understands "\\server\share\" and "\x\"
    const KelInsIO::Path path(argument.substr(0, argument.find_last_not_of("\\/") + 1));
    if (path.IsEmpty())
        throw UsageError("\"" + argument + "\" is not the name of a folder.");
    if (path.GetRoot().starts_with(R"(\\)"))
        return path.GetPath(); // a share: full already, and MinGW's std::filesystem does not know shares
    const std::filesystem::path spelled = KelInsString::Widen(path.GetPath() + KelInsIO::Path::Sep);
    const std::filesystem::path absolute = std::filesystem::absolute(spelled.lexically_normal());
    return KelInsIO::Path(KelInsString::Narrow(absolute.wstring())).GetPath();
}

struct Command
{
    const char* name;
    CommandLine::Action action;
    bool takesPayload;
};

constexpr Command kCommands[] = {
    {"check", CommandLine::Action::Check, true},
    {"install", CommandLine::Action::Install, true},
    {"upgrade", CommandLine::Action::Upgrade, true},
    {"uninstall", CommandLine::Action::Uninstall, false},
};

const Command& FindCommand(const std::string& name)
{
    for (const Command& command : kCommands)
        if (name == command.name)
            return command;
    throw UsageError("\"" + name + "\" is not a command.");
}

/// Takes an option with its value out of the arguments, as often as it is there.
std::vector<std::string> TakeOption(std::vector<std::string>& arguments, const std::string& option)
{
    std::vector<std::string> values;
    for (auto found = arguments.begin();
         (found = std::find(arguments.begin(), arguments.end(), option)) != arguments.end();) {
        if (found + 1 == arguments.end())
            throw UsageError(option + " needs a value behind it.");
        values.push_back(found[1]);
        arguments.erase(found, found + 2);
    }
    return values;
}

/// NAME=VALUE. Windows Installer takes only names in capital letters from a command line.
std::pair<std::string, std::string> ParseSetting(const std::string& text)
{
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    if (equals == std::string::npos || name.empty() ||
        name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") != std::string::npos)
        throw UsageError("An option is written --set NAME=VALUE, not --set " + text);
    return {name, text.substr(equals + 1)};
}

} // namespace

const char* const kHelp =
    "Installs Orchard Server from a folder, and removes what it installed.\n"
    "\n"
    "  setup check <payload> <target>     makes all checks of an installation, and changes nothing\n"
    "  setup install <payload> <target>   copies the folder <payload> to <target>, which must be\n"
    "                                     new or empty, and configures it for its new place\n"
    "  setup upgrade <payload> <target>   replaces the server there by the newer one of <payload>\n"
    "  setup uninstall <target>           removes what was installed there; files that were\n"
    "                                     added or changed since then stay\n"
    "  setup --help                       shows this text\n"
    "\n"
    "  --set NAME=VALUE                   an option of the server, several times if need be;\n"
    "                                     an upgrade takes over those of the installation\n"
    "  --log <file>                       where to log; otherwise orchard-setup.log in the folder\n"
    "                                     for temporary files\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 the command line was not understood.\n";

CommandLine ParseCommandLine(const std::vector<std::string>& given)
{
    if (given.empty())
        throw UsageError("No command was given.");
    if (given.front() == "--help" || given.front() == "-h" || given.front() == "/?")
        return {};

    std::vector<std::string> arguments = given;
    CommandLine result;
    for (const std::string& text : TakeOption(arguments, "--set"))
        result.options.push_back(ParseSetting(text));
    for (const std::string& file : TakeOption(arguments, "--log"))
        result.log = MakeAbsolute(file);

    const Command& command = FindCommand(arguments.empty() ? "" : arguments.front());
    if (arguments.size() != (command.takesPayload ? 3 : 2))
        throw UsageError(std::string("This command is written: setup ") + command.name +
                         (command.takesPayload ? " <payload> <target>" : " <target>"));
    result.action = command.action;
    if (command.takesPayload)
        result.payload = MakeAbsolute(arguments[1]);
    result.target = MakeAbsolute(arguments.back());
    return result;
}

} // namespace Setup
