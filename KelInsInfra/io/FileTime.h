#pragma once

#include <cstdint>

namespace KelInsIO {

/// Times of a file or directory, in seconds since 1970-01-01 00:00:00 UTC.
struct FileTime
{
    std::int64_t accessTime;       ///< last reading, as far as the system keeps it
    std::int64_t modificationTime; ///< last change of the content
    std::int64_t creationTime;     ///< never set by this library

    /// The three in the order of the members.
    constexpr FileTime(std::int64_t access, std::int64_t modification, std::int64_t creation)
        : accessTime(access), modificationTime(modification), creationTime(creation)
    {}
};

} // namespace KelInsIO
