#pragma once

#include <string_view>

namespace KelInsIO {

/// Takes the next line off a text that is not empty, as GetLine takes it off a stream: without its line feed, and
/// without the one carriage return before that. No further line follows a final line feed.
inline std::string_view TakeLine(std::string_view& rest)
{
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace KelInsIO
