/// The keys derived from passwords, so that each password costs its milliseconds once.
#pragma once

#include "Kep/Mutex.h"
#include "snmp/MasterKey.h"

#include <array>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>

namespace Kep::Snmp {

/// Any thread; it synchronises itself and derives without a lock. Holds at most `capacity` keys, of which the one
/// unused for longest gives way; passwords themselves are not kept.
class KeyCache {
public:
    using Key = std::shared_ptr<const MasterKey>;
    using Derivation = std::function<std::vector<unsigned char>(AuthProtocol, const std::string&)>;
    static constexpr std::size_t capacity = 64;

    explicit KeyCache(Derivation derive = deriveKey);

    /// The key of `password` for `protocol`. The first to ask derives it; those who ask meanwhile wait for it. Throws
    /// what the derivation throws, to all who wait; the next to ask tries again.
    Key get(AuthProtocol protocol, const std::string& password);

private:
    using Fingerprint = std::array<unsigned char, 32>;
    struct Entry {
        std::shared_future<Key> key;
        std::uint64_t lastUse = 0;
    };

    static Fingerprint fingerprint(AuthProtocol protocol, const std::string& password);
    void makeRoom() KEP_REQUIRES(mutex_);
    void forget(const Fingerprint& fingerprint);

    const Derivation derive_;
    Mutex mutex_;
    std::map<Fingerprint, Entry> entries_ KEP_GUARDED_BY(mutex_);
    std::uint64_t uses_ KEP_GUARDED_BY(mutex_) = 0;
};

} // namespace Kep::Snmp
