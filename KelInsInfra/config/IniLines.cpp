#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <algorithm>
#include <stdexcept>
#include <vector>

namespace KelInsIniFile {
namespace {

using Lines = std::vector<std::string_view>;

/// Where the assignment takes effect: at a line that assigns the key already, or before a line.
struct Place
{
    std::size_t index;
    std::optional<std::string_view> oldValue;
};

Lines SplitLines(std::string_view content)
{
    Lines lines;
    while (!content.empty())
        lines.push_back(KelInsIO::TakeLine(content));
    return lines;
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

std::string ExportLine(std::string_view key)
{
    return std::string("export ").append(key);
}

[[noreturn]] void FailMissingExport(const KeyAssignment& assignment, const std::string& place)
{
    throw std::runtime_error(std::string(assignment.fileName) + ": bad format: missing \"" +
                             ExportLine(assignment.key) + '"' + place);
}

void CheckExportFollows(const Lines& lines, std::size_t index, const KeyAssignment& assignment)
{
    if (index + 1 == lines.size())
        FailMissingExport(assignment, " at the end.");
    if (lines[index + 1] != ExportLine(assignment.key))
        FailMissingExport(assignment, " after line\n" + std::string(lines[index]));
}

/// Index of the first line of the section; nothing when there is no such section.
std::optional<std::size_t> FindSectionBegin(const Lines& lines, const KeyAssignment& assignment)
{
    if (assignment.shellExport || assignment.section.empty())
        return 0;
    const auto header = std::find_if(lines.begin(), lines.end(), [&assignment](std::string_view line) {
        return ExtractSectionName(line) == assignment.section;
    });
    if (header == lines.end())
        return {};
    return static_cast<std::size_t>(header - lines.begin()) + 1;
}

Place FindPlace(const Lines& lines, std::size_t begin, const KeyAssignment& assignment)
{
    for (std::size_t i = begin; i < lines.size(); ++i) {
        if (!assignment.shellExport && !ExtractSectionName(lines[i]).empty())
            return {i, {}};
        if (const auto oldValue = ExtractValue(lines[i], assignment.key)) {
            if (assignment.shellExport)
                CheckExportFollows(lines, i, assignment);
            return {i, oldValue};
        }
    }
    return {lines.size(), {}};
}

/// Two values one after the other; the separator between them only where both are there and neither brings it.
std::string Join(std::string_view first, std::string_view second, char separator)
{
    std::string joined(first);
    if (!first.empty() && !first.ends_with(separator) && !second.empty() && !second.starts_with(separator))
        joined += separator;
    return joined.append(second);
}

std::string NewValue(std::string_view oldValue, const KeyAssignment& assignment)
{
    switch (assignment.where) {
    case Where::Append:
        return Join(oldValue, assignment.value, assignment.separator);
    case Where::Prepend:
        return Join(assignment.value, oldValue, assignment.separator);
    case Where::Replace:
    default: // any other number: kept for callers that pass one
        return std::string(assignment.value);
    }
}

std::string JoinLines(const Lines& lines, std::size_t contentSize)
{
    std::string text;
    text.reserve(contentSize + 2 * lines.size());
    for (const std::string_view line : lines)
        text.append(line).append("\r\n");
    return text;
}

} // namespace

std::string_view ExtractSectionName(std::string_view line)
{
    while (!line.empty() && IsBlank(line.front()))
        line.remove_prefix(1);
    if (!line.starts_with('['))
        return {};
    while (IsBlank(line.back()))
        line.remove_suffix(1);
    return line.ends_with(']') ? line.substr(1, line.size() - 2) : std::string_view();
}

std::optional<std::string_view> ExtractValue(std::string_view line, std::string_view key)
{
    if (line.size() <= key.size() || line[key.size()] != '=' || !line.starts_with(key) ||
        key.find('=') != std::string_view::npos)
        return {};
    return line.substr(key.size() + 1);
}

std::optional<std::string_view> KeySearch::Examine(std::string_view line)
{
    const std::string_view name = ExtractSectionName(line);
    if (!name.empty()) {
        insideSection_ = name == section_;
        return {};
    }
    return insideSection_ ? ExtractValue(line, key_) : std::nullopt;
}

std::string AssignKey(std::string_view content, const KeyAssignment& assignment)
{
    Lines lines = SplitLines(content);
    const std::string header = '[' + std::string(assignment.section) + ']';
    const std::string exportLine = ExportLine(assignment.key);
    std::string line = std::string(assignment.key) + '=';
    const std::optional<std::size_t> begin = FindSectionBegin(lines, assignment);
    if (!begin)
        lines.push_back(header);
    const Place place = FindPlace(lines, begin.value_or(lines.size()), assignment);
    const auto position = lines.begin() + static_cast<std::ptrdiff_t>(place.index);
    if (place.oldValue) {
        *position = line += NewValue(*place.oldValue, assignment);
    } else {
        line += assignment.value;
        const auto inserted = lines.insert(position, line);
        if (assignment.shellExport)
            lines.insert(inserted + 1, exportLine);
    }
    return JoinLines(lines, content.size() + header.size() + line.size() + exportLine.size());
}

} // namespace KelInsIniFile
