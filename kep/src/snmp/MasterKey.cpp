#include "snmp/MasterKey.h"

#include "Kep/Snmp/Exception.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <memory>

namespace Kep::Snmp {

namespace {

constexpr std::size_t expandedSize = 1U << 20;

struct FreeDigest {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Digest = std::unique_ptr<EVP_MD_CTX, FreeDigest>;

const EVP_MD* digestOf(AuthProtocol protocol)
{
    return protocol == AuthProtocol::md5 ? EVP_md5() : EVP_sha1();
}

// A whole number of passwords, long enough that the digest is fed in few calls.
std::string repeated(const std::string& password)
{
    constexpr std::size_t chunkSize = 4096;
    std::string chunk;
    chunk.reserve(chunkSize + password.size());
    while (chunk.size() < chunkSize)
        chunk += password;
    return chunk;
}

bool feedPassword(EVP_MD_CTX* digest, const std::string& password)
{
    std::string chunk = repeated(password);
    bool good = true;
    for (std::size_t left = expandedSize; good && left > 0;) {
        const std::size_t size = std::min(left, chunk.size());
        good = EVP_DigestUpdate(digest, chunk.data(), size) == 1;
        left -= size;
    }
    OPENSSL_cleanse(chunk.data(), chunk.size());
    return good;
}

} // namespace

MasterKey::~MasterKey()
{
    OPENSSL_cleanse(bytes_.data(), bytes_.size());
}

std::vector<unsigned char> deriveKey(AuthProtocol protocol, const std::string& password)
{
    const Digest digest(EVP_MD_CTX_new());
    std::vector<unsigned char> key(EVP_MAX_MD_SIZE);
    unsigned size = 0;
    if (!digest || EVP_DigestInit_ex(digest.get(), digestOf(protocol), nullptr) != 1 ||
        !feedPassword(digest.get(), password) || EVP_DigestFinal_ex(digest.get(), key.data(), &size) != 1)
        throw Exception("no key can be derived from the password: the digest is not available");
    key.resize(size);
    return key;
}

} // namespace Kep::Snmp
