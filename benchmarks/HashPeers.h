#pragma once

#include <cstdint>
#include <string>

/// What the machine itself offers; HashPeersNative.cpp and HashPeersWindows.cpp each give it with their own.
namespace HashPeers {

extern const char* const kSha256; ///< name of the SHA-256 peer
extern const char* const kUuid;   ///< name of the UUID peer

/// Digest of the bytes, through the peer's way for messages of any length.
void Digest(const char* data, std::uint64_t length, unsigned char (&digest)[32]);

/// Digest as text, through the peer's shortest way for one short message.
std::string DigestText(const std::string& data);

std::string Uuid();

/// 64 lower-case digits, by table: the same for every peer.
inline std::string Hex(const unsigned char (&digest)[32])
{
    std::string text(64, '\0');
    for (std::size_t i = 0; i < 32; ++i) {
        text[2 * i] = "0123456789abcdef"[digest[i] >> 4];
        text[2 * i + 1] = "0123456789abcdef"[digest[i] & 0xF];
    }
    return text;
}

} // namespace HashPeers
