#pragma once

#include <cstdint>

namespace KelInsIO {

/// Times of a file or directory, in seconds since 1970-01-01 00:00:00 UTC.
struct FileTime
{
    std::int64_t accessTime;
    std::int64_t modificationTime;
    std::int64_t creationTime;

    constexpr FileTime(std::int64_t access, std::int64_t modification, std::int64_t creation)
        : accessTime(access), modificationTime(modification), creationTime(creation)
    {}
};

} // namespace KelInsIO
