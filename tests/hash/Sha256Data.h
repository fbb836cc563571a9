#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Bytes that repeat only after 64 KiB, so that a block taken from the wrong place is seen.
inline std::string Pattern(std::size_t length)
{
    std::string bytes(length, '\0');
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<char>(static_cast<unsigned char>((i * 31 + 7) ^ (i >> 8)));
    return bytes;
}

/// Lengths that add up to `total`; the lengths around a block and none at all are the most frequent.
inline std::vector<std::size_t> RandomSplit(std::mt19937& random, std::size_t total)
{
    constexpr std::size_t kUsual[] = {0, 1, 8, 55, 56, 63, 64, 65, 127, 128, 129, 256, 1000};
    std::vector<std::size_t> lengths;
    while (total > 0) {
        std::size_t length = random() % 4 == 0 ? random() % 4096 : kUsual[random() % std::size(kUsual)];
        length = length < total ? length : total;
        lengths.push_back(length);
        total -= length;
    }
    return lengths;
}
