#pragma once

#include <KelInsInfra/config/KelInsIniFile.h>
#include <optional>
#include <string>
#include <string_view>

namespace KelInsIniFile {

/// Name of the section that a line opens; empty for any other line, so also for "[]".
std::string_view ExtractSectionName(std::string_view line);

/// Value of a line that assigns the key; nothing for any other line. Whether it is a header is not asked.
std::optional<std::string_view> ExtractValue(std::string_view line, std::string_view key);

/// Looks for one key in lines that are shown to it in the order of the file.
class KeySearch
{
public:
    /// An empty section means the lines before the first header. The texts must outlive the search.
    KeySearch(std::string_view section, std::string_view key)
        : section_(section), key_(key), insideSection_(section.empty())
    {}

    /// Value of the key when this is its line.
    std::optional<std::string_view> Examine(std::string_view line);

private:
    std::string_view section_;
    std::string_view key_;
    bool insideSection_;
};

/// What Write is asked for.
struct KeyAssignment
{
    std::string_view fileName; ///< for the messages
    std::string_view section;
    std::string_view key;
    std::string_view value;
    Where where = Where::Replace;
    char separator = '\0';
    bool shellExport = false;
};

/// Content of a file after the assignment, CR LF after each line.
/// @throws std::runtime_error  when a shell file lacks the line that exports the key.
std::string AssignKey(std::string content, const KeyAssignment& assignment);

} // namespace KelInsIniFile
