#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KelInsIO {

/// A rewritten text and how many replacements it holds.
struct LineReplacement
{
    std::string text;
    std::int32_t count = 0;
};

/// The lines of a text with every occurrence of from (not empty) replaced in each, CR LF between them.
LineReplacement ReplaceInEachLine(std::string_view content, const std::string& from, const std::string& to);

} // namespace KelInsIO
