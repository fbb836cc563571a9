#pragma once

#include <exception>
#include <string>

namespace Setup {

/// What an exception says, without the line feed that ends most texts of the library.
inline std::string TextOf(const std::exception& error)
{
    std::string text = error.what();
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

} // namespace Setup
