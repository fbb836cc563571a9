#pragma once

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// The rules for INI files once more, written down as literally as can be, for comparison: slow, and sharing no code
/// with the library.
namespace IniModel {

struct NotFound
{};

inline std::vector<std::string> Lines(const std::string& content)
{
    std::vector<std::string> lines;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line[line.size() - 1] == '\r')
            line.erase(line.size() - 1);
        lines.push_back(line);
    }
    return lines;
}

inline bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

inline std::string SectionName(const std::string& line)
{
    std::size_t begin = 0;
    while (begin < line.size() && IsBlank(line[begin]))
        ++begin;
    std::size_t end = line.size();
    while (end > begin && IsBlank(line[end - 1]))
        --end;
    if (end - begin < 2 || line[begin] != '[' || line[end - 1] != ']')
        return "";
    return line.substr(begin + 1, end - begin - 2);
}

/// Whether a line assigns the key.
inline bool Assigns(const std::string& line, const std::string& key)
{
    for (std::size_t i = 0; i < line.size(); ++i)
        if (line[i] == '=')
            return line.substr(0, i) == key;
    return false;
}

inline std::string ValueOf(const std::string& line)
{
    return line.substr(line.find('=') + 1);
}

inline std::string Read(const std::string& content, const std::string& section, const std::string& key)
{
    bool inside = section.empty();
    for (const std::string& line : Lines(content)) {
        if (line.empty())
            continue;
        const std::string name = SectionName(line);
        if (!name.empty())
            inside = name == section;
        else if (inside && Assigns(line, key))
            return ValueOf(line);
    }
    throw NotFound();
}

struct Request
{
    std::string section{};
    std::string key{};
    std::string value{};
    int where = 0;
    char separator = ';';
    bool shellExport = false;
};

inline std::string Combine(const std::string& old, const Request& request)
{
    const std::string& value = request.value;
    const char separator = request.separator;
    std::string result;
    if (request.where == 1) {
        result = old;
        if (!old.empty() && old[old.size() - 1] != separator && !value.empty() && value[0] != separator)
            result += separator;
        result += value;
    } else if (request.where == 2) {
        result = value;
        if (!value.empty() && value[value.size() - 1] != separator && !old.empty() && old[0] != separator)
            result += separator;
        result += old;
    } else {
        result = value;
    }
    return result;
}

inline std::string Save(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

/// @throws std::runtime_error  what Write says after the name of the file.
inline std::string Write(const std::string& content, const Request& request)
{
    std::vector<std::string> lines = Lines(content);
    const std::string newLine = request.key + "=" + request.value;
    const std::string exportLine = "export " + request.key;
    std::size_t position = 0;
    if (!request.shellExport && !request.section.empty()) {
        while (position < lines.size() && SectionName(lines[position]) != request.section)
            ++position;
        if (position == lines.size()) {
            lines.push_back("[" + request.section + "]");
            lines.push_back(newLine);
            return Save(lines);
        }
        ++position;
    }
    for (; position < lines.size(); ++position) {
        std::string& line = lines[position];
        if (!request.shellExport && !SectionName(line).empty())
            break;
        if (!Assigns(line, request.key))
            continue;
        if (request.shellExport && position + 1 == lines.size())
            throw std::runtime_error(": bad format: missing \"" + exportLine + "\" at the end.");
        if (request.shellExport && lines[position + 1] != exportLine)
            throw std::runtime_error(": bad format: missing \"" + exportLine + "\" after line\n" + line);
        line = request.key + "=" + Combine(ValueOf(line), request);
        return Save(lines);
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(position), newLine);
    if (request.shellExport)
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(position) + 1, exportLine);
    return Save(lines);
}

} // namespace IniModel
