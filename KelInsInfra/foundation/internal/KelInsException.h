#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

// Not exported: callers catch both as std::runtime_error. Neither derives from the other, so that a handler can tell a
// failed system call or refused argument from a failed C runtime call.

/// A Windows call failed, or an argument was refused. The text ends in exactly one line feed.
class KelInsException : public std::runtime_error
{
public:
    /// Text: message + "\n".
    explicit KelInsException(const std::string& message);

    /// Text: message + " - " + the system's text for the code (none: the separator stays) + "\n".
    KelInsException(const std::string& message, std::uint32_t lastError);
};

/// A C runtime call failed. The text ends in exactly one line feed.
class KelInsExceptionErrno : public std::runtime_error
{
public:
    /// Text: message + " - " + the C runtime's text for the value + "\n".
    KelInsExceptionErrno(const std::string& message, std::int32_t errnoValue);
};
