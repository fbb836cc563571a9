#pragma once

#include <KelInsInfra/json/Value.h>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace JSON {

enum class Form
{
    Compact,
    Indented
};

/// Writes a value and all below it, without recursion.
/// @param level  of the value itself, for the indented form.
void WriteTree(const Value& value, Form form, std::int32_t level, std::ostream& out);

/// The compact form as a string.
std::string CompactText(const Value& value);

} // namespace JSON
