#include "snmp/KeyCache.h"

#include "Kep/Snmp/Exception.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>

namespace Kep::Snmp {

KeyCache::KeyCache(Derivation derive) : derive_(std::move(derive)) {}

KeyCache::Key KeyCache::get(AuthProtocol protocol, const std::string& password)
{
    const Fingerprint wanted = fingerprint(protocol, password);
    std::promise<Key> promise;
    {
        MutexLock lock(mutex_);
        if (const auto found = entries_.find(wanted); found != entries_.end()) {
            found->second.lastUse = ++uses_;
            const std::shared_future<Key> key = found->second.key;
            lock.unlock();
            return key.get();
        }
        makeRoom();
        entries_[wanted] = {promise.get_future().share(), ++uses_};
    }
    try {
        auto key = std::make_shared<const MasterKey>(derive_(protocol, password));
        promise.set_value(key);
        return key;
    } catch (...) {
        promise.set_exception(std::current_exception());
        forget(wanted);
        throw;
    }
}

KeyCache::Fingerprint KeyCache::fingerprint(AuthProtocol protocol, const std::string& password)
{
    std::string text = static_cast<char>(protocol) + password;
    Fingerprint result{};
    const int done = EVP_Digest(text.data(), text.size(), result.data(), nullptr, EVP_sha256(), nullptr);
    OPENSSL_cleanse(text.data(), text.size());
    if (done != 1)
        throw Exception("no key can be derived from the password: the digest is not available");
    return result;
}

void KeyCache::makeRoom()
{
    if (entries_.size() < capacity)
        return;
    entries_.erase(std::ranges::min_element(entries_, {}, [](const auto& entry) { return entry.second.lastUse; }));
}

void KeyCache::forget(const Fingerprint& fingerprint)
{
    const MutexLock lock(mutex_);
    entries_.erase(fingerprint);
}

} // namespace Kep::Snmp
