#pragma once

#include <cstdint>
#include <string_view>

namespace JSON {

/// SipHash-1-3 (Aumasson and Bernstein) of a text under a random key of this process.
std::uint64_t KeyedHash(std::string_view text);

/// The same under a given key.
std::uint64_t SipHash13(std::uint64_t key0, std::uint64_t key1, std::string_view text);

} // namespace JSON
