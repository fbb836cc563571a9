#pragma once

#include <stdexcept>
#include <string>

namespace XML {

/// A text that Parser does not accept. what() is "<message> (line <line>)\n".
class Exception : public std::runtime_error
{
public:
    /// @param line  1 for the first.
    Exception(const std::string& message, unsigned line)
        : std::runtime_error(message + " (line " + std::to_string(line) + ")\n")
    {}
};

} // namespace XML
