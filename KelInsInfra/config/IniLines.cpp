#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <stdexcept>

namespace KelInsIniFile {
namespace {

/// What the assignment leaves as it is, and the value of the line between the two, when they are not one behind the
/// other.
struct Place
{
    std::string_view before;
    std::string_view after;
    std::optional<std::string_view> oldValue;
};

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

void CheckExportFollows(std::string_view line, std::string_view rest, const KeyAssignment& assignment)
{
    if (rest.empty())
        FailMissingExport(assignment, " at the end.");
    if (KelInsIO::TakeLine(rest) != ExportLine(assignment.key))
        FailMissingExport(assignment, " after line\n" + std::string(line));
}

/// Takes all lines off up to the first header of the section.
/// @return false when there is no such section.
bool EnterSection(std::string_view& rest, const KeyAssignment& assignment)
{
    if (assignment.shellExport || assignment.section.empty())
        return true;
    while (!rest.empty())
        if (ExtractSectionName(KelInsIO::TakeLine(rest)) == assignment.section)
            return true;
    return false;
}

/// @param rest  of the content: where the search begins.
Place FindPlace(std::string_view content, std::string_view rest, const KeyAssignment& assignment)
{
    while (!rest.empty()) {
        const std::string_view after = rest;
        const std::string_view before = content.substr(0, content.size() - after.size());
        const std::string_view line = KelInsIO::TakeLine(rest);
        if (!assignment.shellExport && !ExtractSectionName(line).empty())
            return {before, after, {}};
        if (const auto oldValue = ExtractValue(line, assignment.key)) {
            if (assignment.shellExport)
                CheckExportFollows(line, rest, assignment);
            return {before, rest, oldValue};
        }
    }
    return {content, {}, {}};
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

std::string AssignKey(std::string content, const KeyAssignment& assignment)
{
    std::string_view rest = content;
    std::string newLines;
    if (!EnterSection(rest, assignment))
        newLines.append("[").append(assignment.section).append("]\r\n");
    const Place place = FindPlace(content, rest, assignment);
    newLines.append(assignment.key).append("=");
    newLines.append(place.oldValue ? NewValue(*place.oldValue, assignment) : assignment.value).append("\r\n");
    if (assignment.shellExport && !place.oldValue)
        newLines.append(ExportLine(assignment.key)).append("\r\n");

    if (KelInsIO::IsEachLineEndCrLf(content)) {
        content.replace(place.before.size(), content.size() - place.before.size() - place.after.size(), newLines);
        return content;
    }
    KelInsIO::TextBuilder text(content.size() + newLines.size());
    KelInsIO::AppendLines(text, place.before);
    text.Append(newLines);
    KelInsIO::AppendLines(text, place.after);
    return text.Take();
}

} // namespace KelInsIniFile
