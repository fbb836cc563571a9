#include "Properties.h"

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Setup {
namespace {

using Line = std::vector<std::string>::const_iterator;

constexpr const char* kBlanks = " \t\f";

std::vector<std::string> ReadLines(const std::string& file)
{
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    std::vector<std::string> lines;
    for (std::string line; KelInsIO::GetLine(stream, line);)
        lines.push_back(line);
    if (!stream.eof() || stream.bad())
        throw std::runtime_error("Failed to read " + file);
    return lines;
}

void WriteLines(const std::string& file, const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    const bool wasReadOnly = KelInsIO::SetReadOnly(file, false);
    std::ofstream stream = KelInsIO::GetOutputFileStream(file, {});
    stream << text << std::flush;
    if (!stream)
        throw std::runtime_error("Failed to write " + file);
    stream.close();
    if (wasReadOnly)
        KelInsIO::SetReadOnly(file, true);
}

/// Whether the property goes on in the next line: an odd number of backslashes ends this one.
bool IsContinued(const std::string& line)
{
    const std::size_t last = line.find_last_not_of('\\');
    const std::size_t count = line.size() - (last == std::string::npos ? 0 : last + 1);
    return count % 2 == 1;
}

/// The key of a line, without its escapes; empty for comments and blank lines. It ends at the first '=', ':' or blank
/// that no backslash stands before.
std::string KeyOf(const std::string& line)
{
    const std::size_t begin = line.find_first_not_of(kBlanks);
    if (begin == std::string::npos || line[begin] == '#' || line[begin] == '!')
        return "";
    std::size_t end = begin;
    while (end < line.size() && std::string("=: \t\f").find(line[end]) == std::string::npos)
        end += line[end] == '\\' ? 2U : 1U; // an escaped character does not end it
    return KelInsJavaProperties::loadConvert(line.substr(begin, end - begin));
}

/// The line after a property, a comment or a blank line.
Line EndOfProperty(Line line, Line end)
{
    const bool isProperty = !KeyOf(*line).empty();
    while (isProperty && IsContinued(*line) && line + 1 != end)
        ++line;
    return line + 1;
}

} // namespace

void SetProperty(const std::string& file, const std::string& key, const std::string& value)
{
    const std::vector<std::string> lines = ReadLines(file);
    const std::string newLine =
        KelInsJavaProperties::saveConvert(key, true) + '=' + KelInsJavaProperties::saveConvert(value, false);
    std::vector<std::string> result;
    bool found = false;
    for (auto line = lines.begin(); line != lines.end();) {
        const auto next = EndOfProperty(line, lines.end());
        if (KeyOf(*line) != key)
            result.insert(result.end(), line, next);
        else if (!std::exchange(found, true)) // a second place would win over the first: it goes
            result.push_back(newLine);
        line = next;
    }
    if (!found)
        result.push_back(newLine);
    WriteLines(file, result);
}

} // namespace Setup
