// Random data in random pieces: the digest must be that of the whole, and all engines must agree on its blocks. The
// first eight bytes of the input choose the pieces, in turn; the rest is the data.

#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <algorithm>
#include <cstdlib>
#include <openssl/sha.h>
#include <sstream>

namespace {

constexpr std::size_t kPieceBytes = 8;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

std::string OpenSslDigest(const std::string& data)
{
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest);
    std::string text;
    for (const unsigned char byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 0xF];
    }
    return text;
}

/// Piece lengths of 0 to 127 bytes, or, where the top bit is set, 64 times as many; every other piece as a stream.
std::string DigestInPieces(const unsigned char (&pieces)[kPieceBytes], const std::string& data)
{
    KelInsHash::SHA256 hash;
    std::size_t position = 0;
    for (std::size_t i = 0; position < data.size(); ++i) {
        const unsigned char piece = pieces[i % kPieceBytes];
        std::size_t length = piece >= 128 ? std::size_t{64} * (piece - 128U) : piece;
        if (i == 64) // the rest at once, lest short lengths go on for ever
            length = data.size();
        length = std::min(length, data.size() - position);
        if (i % 2 == 0) {
            hash.Add(data.data() + position, length);
        } else {
            std::istringstream stream(data.substr(position, length));
            hash.Add(stream);
        }
        Require(hash.GetHash() == hash.GetHash());
        position += length;
    }
    return hash.GetHash();
}

void RequireEnginesAgree(const std::string& data)
{
    using KelInsHash::Sha256Engines;
    const auto after = [&data](Sha256Engines::Engine engine) {
        Sha256Engines::Words words{1, 2, 3, 4, 5, 6, 7, 8};
        engine(words, reinterpret_cast<const unsigned char*>(data.data()), data.size() / 64);
        return words;
    };
    const Sha256Engines::Words portable = after(&Sha256Engines::Portable);
    Require(!Sha256Engines::HaveBmi2() || after(&Sha256Engines::Bmi2) == portable);
    Require(!Sha256Engines::HaveShaExtensions() || after(&Sha256Engines::ShaExtensions) == portable);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* input, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* input, std::size_t size)
{
    if (size < kPieceBytes)
        return 0;
    unsigned char pieces[kPieceBytes];
    std::copy_n(input, kPieceBytes, pieces);
    const std::string data(reinterpret_cast<const char*>(input) + kPieceBytes, size - kPieceBytes);

    const std::string expected = OpenSslDigest(data);
    Require(KelInsHash::SHA256::GetHash(data) == expected);
    Require(DigestInPieces(pieces, data) == expected);
    RequireEnginesAgree(data);
    return 0;
}
