// The system's own cryptography and RPC libraries.

#include "HashPeers.h"
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <bcrypt.h>
#include <rpc.h>

namespace HashPeers {
namespace {

BCRYPT_ALG_HANDLE Provider()
{
    static const BCRYPT_ALG_HANDLE provider = [] { // opened once: it costs more than a digest
        BCRYPT_ALG_HANDLE opened = nullptr;
        ::BCryptOpenAlgorithmProvider(&opened, BCRYPT_SHA256_ALGORITHM, nullptr, 0);
        return opened;
    }();
    return provider;
}

} // namespace

const char* const kSha256 = "BCryptHash";
const char* const kUuid = "UuidCreate and UuidToString";

void Digest(const char* data, std::uint64_t length, unsigned char (&digest)[32])
{
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(data));
    ::BCryptHash(Provider(), nullptr, 0, bytes, static_cast<ULONG>(length), digest, sizeof digest);
}

std::string DigestText(const std::string& data)
{
    unsigned char digest[32];
    Digest(data.data(), data.size(), digest);
    return Hex(digest);
}

std::string Uuid()
{
    UUID uuid;
    ::UuidCreate(&uuid);
    RPC_CSTR made = nullptr;
    ::UuidToStringA(&uuid, &made);
    std::string text = reinterpret_cast<const char*>(made);
    ::RpcStringFreeA(&made);
    return text;
}

} // namespace HashPeers
