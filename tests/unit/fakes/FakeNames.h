/// Name look-ups with scripted results, in place of the framework's.
///
/// Entered in the `Journal` as "netbios 10.0.0.1" and "dns 10.0.0.1". A host that nobody scripted has no name.
#pragma once

#include "Kep/Mutex.h"

#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <utility>

namespace Fakes {

/// A test makes one before names are looked up. Any thread.
class FakeNames {
public:
    FakeNames();
    ~FakeNames();
    FakeNames(const FakeNames&) = delete;
    FakeNames& operator=(const FakeNames&) = delete;

    void netbios(const std::string& address, const std::string& name);
    void dns(const std::string& address, const std::string& name);
    void netbiosThrows(const std::string& address, std::exception_ptr failure);
    void dnsThrows(const std::string& address, std::exception_ptr failure);

    /// For the look-ups: the scripted result of `service`, "netbios" or "dns".
    static std::string lookUp(const std::string& service, unsigned long address);

private:
    struct Result {
        std::string name;
        std::exception_ptr failure;
    };
    void script(const std::string& service, const std::string& address, Result result);

    Kep::Mutex mutex_;
    std::map<std::string, Result> results_ KEP_GUARDED_BY(mutex_); // by service, blank, address
};

} // namespace Fakes
