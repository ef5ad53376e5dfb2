/// Keys made from passwords (RFC 3414, section 2.6 and appendix A.2).
#pragma once

#include "Kep/Snmp/Profile.h"

#include <string>
#include <vector>

namespace Kep::Snmp {

/// A key (Ku) that is not yet bound to an agent's engine; as secret as the password. Overwritten when destroyed.
class MasterKey {
public:
    explicit MasterKey(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {}
    ~MasterKey();
    MasterKey(const MasterKey&) = delete;
    MasterKey& operator=(const MasterKey&) = delete;

    const std::vector<unsigned char>& bytes() const noexcept { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

/// The key of `password` for `protocol`, which is not `none`: the digest of 2^20 bytes of the password repeated, so
/// it costs milliseconds. `password` is not empty. Any thread; takes no lock. Throws `Exception` when the digest is
/// not to be had.
std::vector<unsigned char> deriveKey(AuthProtocol protocol, const std::string& password);

} // namespace Kep::Snmp
