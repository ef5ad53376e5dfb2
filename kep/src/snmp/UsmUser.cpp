#include "snmp/UsmUser.h"

#include "Kep/Snmp/Exception.h"

#include <array>
#include <span>

namespace Kep::Snmp {

namespace {

using Protocol = std::span<const oid>;

Protocol authProtocolOf(const ProfileV3& profile)
{
    switch (AuthProtocol{profile.authProtocol}) {
    case AuthProtocol::md5:
        return usmHMACMD5AuthProtocol;
    case AuthProtocol::sha1:
        return usmHMACSHA1AuthProtocol;
    default:
        return usmNoAuthProtocol;
    }
}

Protocol privacyProtocolOf(const ProfileV3& profile)
{
    switch (PrivacyProtocol{profile.privacyProtocol}) {
    case PrivacyProtocol::des:
        return usmDESPrivProtocol;
    case PrivacyProtocol::aes128:
    case PrivacyProtocol::aes128With3DesKeyExtension: // either hash is long enough for it, so nothing is extended
        return usmAESPrivProtocol;
    case PrivacyProtocol::aes192:
        return usmAES192PrivProtocol;
    case PrivacyProtocol::aes256:
        return usmAES256PrivProtocol;
    case PrivacyProtocol::aes192With3DesKeyExtension:
        return usmAES192CiscoPrivProtocol;
    case PrivacyProtocol::aes256With3DesKeyExtension:
        return usmAES256CiscoPrivProtocol;
    default:
        return usmNoPrivProtocol;
    }
}

bool setName(usmUser& user, const std::string& name) KEP_REQUIRES(libraryMutex)
{
    user.name = static_cast<char*>(netsnmp_memdup(name.c_str(), name.size() + 1));
    user.secName = static_cast<char*>(netsnmp_memdup(name.c_str(), name.size() + 1));
    return user.name != nullptr && user.secName != nullptr;
}

bool setEngine(usmUser& user, const EngineId& engine) KEP_REQUIRES(libraryMutex)
{
    user.engineID = static_cast<u_char*>(netsnmp_memdup(engine.data(), engine.size()));
    user.engineIDLen = engine.size();
    return user.engineID != nullptr;
}

bool setProtocols(usmUser& user, Protocol auth, Protocol privacy) KEP_REQUIRES(libraryMutex)
{
    user.authProtocol = snmp_duplicate_objid(auth.data(), auth.size());
    user.authProtocolLen = auth.size();
    user.privProtocol = snmp_duplicate_objid(privacy.data(), privacy.size());
    user.privProtocolLen = privacy.size();
    return user.authProtocol != nullptr && user.privProtocol != nullptr;
}

// The key `master` bound to the user's engine, in a block of the library's; null on failure.
u_char* localise(const usmUser& user, const MasterKey& master, std::size_t& size) KEP_REQUIRES(libraryMutex)
{
    const std::array<u_char, USM_PRIV_KU_LEN> room{};
    auto* const key = static_cast<u_char*>(netsnmp_memdup(room.data(), room.size()));
    size = room.size();
    if (key != nullptr &&
        generate_kul(user.authProtocol, static_cast<u_int>(user.authProtocolLen), user.engineID, user.engineIDLen,
                     master.bytes().data(), master.bytes().size(), key, &size) != SNMPERR_SUCCESS)
        size = 0;
    return key;
}

bool setKeys(usmUser& user, const UsmKeys& keys) KEP_REQUIRES(libraryMutex)
{
    if (keys.authentication) {
        user.authKey = localise(user, *keys.authentication, user.authKeyLen);
        if (user.authKey == nullptr || user.authKeyLen == 0)
            return false;
    }
    if (!keys.privacy)
        return true;
    user.privKey = localise(user, *keys.privacy, user.privKeyLen);
    return user.privKey != nullptr && user.privKeyLen > 0 &&
           usm_extend_user_kul(&user, USM_PRIV_KU_LEN) == SNMPERR_SUCCESS;
}

usmUser* makeUser(const ProfileV3& profile, const UsmKeys& keys, const EngineId& engine) KEP_REQUIRES(libraryMutex)
{
    const usmUser blank{};
    auto* const user = static_cast<usmUser*>(netsnmp_memdup(&blank, sizeof blank));
    if (user == nullptr)
        return nullptr;
    user->userStatus = SNMP_ROW_ACTIVE;
    user->userStorageType = SNMP_STORAGE_VOLATILE;
    if (setName(*user, profile.userName) && setEngine(*user, engine) &&
        setProtocols(*user, authProtocolOf(profile), privacyProtocolOf(profile)) && setKeys(*user, keys))
        return user;
    usm_free_user(user);
    return nullptr;
}

} // namespace

UsmUser::UsmUser(const ProfileV3& profile, const UsmKeys& keys, const EngineId& engine)
{
    const MutexLock lock(libraryMutex);
    user_ = makeUser(profile, keys, engine);
    if (user_ == nullptr)
        throw Exception("the user's keys cannot be bound to the agent's engine");
}

UsmUser::~UsmUser()
{
    const MutexLock lock(libraryMutex);
    usm_free_user(user_);
}

void UsmUser::list()
{
    usm_add_user(user_);
}

void UsmUser::unlist() noexcept
{
    usm_remove_user(user_);
    user_->next = nullptr;
    user_->prev = nullptr;
}

} // namespace Kep::Snmp
