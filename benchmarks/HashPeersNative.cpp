// OpenSSL and libuuid.

#include "HashPeers.h"
#include <openssl/evp.h>
#include <openssl/sha.h>
#include <uuid/uuid.h>

namespace HashPeers {

const char* const kSha256 = "OpenSSL";
const char* const kUuid = "libuuid";

void Digest(const char* data, std::uint64_t length, unsigned char (&digest)[32])
{
    EVP_MD_CTX* const context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_sha256(), nullptr);
    EVP_DigestUpdate(context, data, length);
    EVP_DigestFinal_ex(context, digest, nullptr);
    EVP_MD_CTX_free(context);
}

std::string DigestText(const std::string& data)
{
    unsigned char digest[32];
    SHA256(reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest);
    return Hex(digest);
}

std::string Uuid()
{
    uuid_t uuid;
    char text[UUID_STR_LEN];
    uuid_generate(uuid);
    uuid_unparse_lower(uuid, text);
    return text;
}

} // namespace HashPeers
