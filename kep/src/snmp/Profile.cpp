#include "Kep/Snmp/Profile.h"

namespace Kep::Snmp {

Profile::~Profile() = default;
ProfileV1::~ProfileV1() = default;
ProfileV2::~ProfileV2() = default;
ProfileV3::~ProfileV3() = default;

std::shared_ptr<Profile> ProfileV1::clone() const
{
    return std::make_shared<ProfileV1>(*this);
}

std::shared_ptr<Profile> ProfileV2::clone() const
{
    return std::make_shared<ProfileV2>(*this);
}

std::shared_ptr<Profile> ProfileV3::clone() const
{
    return std::make_shared<ProfileV3>(*this);
}

} // namespace Kep::Snmp
