#pragma once

#include <KelInsInfra/Export.h>
#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace KelInsHash {

struct Sha256Engines; // internal

/// SHA-256 digests (FIPS 180-4) of data given in pieces, of strings and of input streams, as lower-case hexadecimal
/// text.
///
/// @code
/// KelInsHash::SHA256 hash;
/// hash.Add(header);
/// hash.Add(stream);
/// const std::string digest = hash.GetHash();
/// @endcode
///
/// A small value: a copy goes on from where its original stood. Objects are independent of each other; one object that
/// several threads change needs the caller's lock. On processors with SHA instructions these do the work, found out
/// once per process; the digests are the same everywhere. Data of any alignment will do. A digest has no key: it shows
/// that data is what it was, not who made it, and it is no way to store passwords.
///
/// Nothing here reports an error, but Add of a stream may throw, as told there, and GetHash std::bad_alloc.
class SHA256
{
public:
    static constexpr std::int32_t _cChunkSize = 64; ///< size of a block, in bytes

    /// Fresh: the digest is that of no data.
    KELINS_API SHA256();

    /// Back to fresh; earlier data is forgotten.
    KELINS_API void Reset();

    /// Appends bytes. Whole blocks are hashed where they lie, without a copy.
    ///
    /// @param data    may be null: then nothing happens, whatever the length.
    /// @param length  in bytes; 0 does nothing.
    KELINS_API void Add(const char* data, std::uint64_t length);

    /// Appends all bytes of a string, zero bytes included.
    KELINS_API void Add(const std::string& data);

    /// Appends all that can still be read from a stream, in pieces of 64 KiB, the last, shorter one included.
    ///
    /// A stream that has already failed contributes nothing and is not touched. Afterwards the stream is as the reads
    /// left it: at its end, failed, not rewound. Where reading breaks off, what was read before counts, but for a piece
    /// in the middle of which the stream's buffer threw: ask the stream (bad()) whether all of it came. Open files in
    /// binary mode.
    ///
    /// @throws std::bad_alloc  when there is no memory for a piece; nothing was read then.
    /// @throws std::ios_base::failure, or what the stream's buffer threw: only from a stream whose owner turned
    ///         exceptions on (`exceptions()`), in the states that he chose, reaching the end (failbit, eofbit)
    ///         included. What was read is appended even then, as told above.
    KELINS_API void Add(std::istream& stream);

    /// The digest of all bytes appended since construction or the last Reset: 64 digits, 0-9 and a-f. Changes nothing:
    /// more can be appended, and the digest asked for again.
    KELINS_API std::string GetHash() const;

    /// The digest of a string's bytes, zero bytes included.
    KELINS_API static std::string GetHash(const std::string& data);

private:
    friend struct Sha256Engines;

    using Words = std::array<std::uint32_t, 8>;

    void Update(const unsigned char* blocks, std::uint64_t count);
    static std::uint32_t EndianSwap(std::uint32_t value);
    static std::uint64_t EndianSwap(std::uint64_t value);
    static std::uint32_t RightRotate(std::uint32_t value, int count);
    static void IntToHexa(std::uint32_t word, char* digits);

    Words chaining_;           // H0 to H7
    std::uint64_t compressed_; // bytes that went through Update, a multiple of 64
    std::array<unsigned char, _cChunkSize> block_;
    std::uint64_t waiting_; // bytes in block_, 0 to 63
};

} // namespace KelInsHash
