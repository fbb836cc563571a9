#include "CommandLine.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
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

void ExpectFolders(const std::vector<std::string>& arguments, std::size_t count, const char* form)
{
    if (arguments.size() != count + 1)
        throw UsageError(std::string("This command is written: ") + form);
}

} // namespace

const char* const kHelp =
    "Installs a folder of files, and removes what it installed.\n"
    "\n"
    "  setup install <payload> <target>   copies the folder <payload> to <target>, which must be\n"
    "                                     new or empty, and configures it for its new place\n"
    "  setup uninstall <target>           removes what was installed there; files that were\n"
    "                                     added or changed since then stay\n"
    "  setup --help                       shows this text\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 the command line was not understood.\n";

CommandLine ParseCommandLine(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
        throw UsageError("No command was given.");
    const std::string& command = arguments.front();
    if (command == "--help" || command == "-h" || command == "/?")
        return {CommandLine::Action::Help, "", ""};
    if (command == "install") {
        ExpectFolders(arguments, 2, "setup install <payload> <target>");
        return {CommandLine::Action::Install, MakeAbsolute(arguments[1]), MakeAbsolute(arguments[2])};
    }
    if (command == "uninstall") {
        ExpectFolders(arguments, 1, "setup uninstall <target>");
        return {CommandLine::Action::Uninstall, "", MakeAbsolute(arguments[1])};
    }
    throw UsageError("\"" + command + "\" is not a command.");
}

} // namespace Setup
