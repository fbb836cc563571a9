#pragma once

#include <KelInsInfra/registry/KelInsMSI.h>
#include <gtest/gtest.h>
#include <ostream>
#include <tuple>
#include <vector>

namespace KelInsMSI {

/// All four fields count.
inline bool operator==(const Version& a, const Version& b)
{
    return std::tie(a.version, a.message, a.detail, a.errorCode) ==
           std::tie(b.version, b.message, b.detail, b.errorCode);
}

inline void PrintTo(const Version& v, std::ostream* out)
{
    *out << '"' << v.version << "\", \"" << v.message << "\", \"" << v.detail << "\", " << v.errorCode;
}

} // namespace KelInsMSI

using Versions = std::vector<KelInsMSI::Version>;
