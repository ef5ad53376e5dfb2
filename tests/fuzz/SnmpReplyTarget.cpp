// What an agent sends as the reply to a request, in every version. The bytes are made a plausible reply first: the
// numbers that an agent copies from the request are put in where their markers stand, and the digest is made right, so
// that mutations get past the checks that an agent which knows the password passes anyway.
#include "fuzz/Target.h"

#include "Kep/Snmp/Exception.h"
#include "snmp/CommunitySecurity.h"
#include "snmp/Engine.h"
#include "snmp/EngineDiscovery.h"
#include "snmp/Request.h"
#include "snmp/UsmSecurity.h"
#include "unit/kep/snmp/Ber.h"

#include <memory>
#include <span>
#include <stdexcept>

namespace {

using namespace Kep::Snmp;

constexpr std::string_view requestIdMarker = "RQID";
constexpr std::string_view messageIdMarker = "MSID";
constexpr std::string_view digestMarker = "DIGESTDIGEST"; // 12 bytes, as long as a digest
constexpr const char* askedOid = ".1.3.6.1.2.1.1.1.0";
constexpr const char* password = "not a secret";
constexpr unsigned boots = 7;
constexpr unsigned engineTime = 70000;
const EngineId engineId = {0x80, 0x00, 0x1F, 0x88, 0x04, 'e', 'n', 'g', 'i', 'n', 'e'};

enum class Kind { v1, v2c, discovery, user, authenticated, encrypted };
constexpr int kinds = 6;

Engine& engine()
{
    static Engine one;
    return one;
}

std::unique_ptr<Security> userSecurity(Kind kind)
{
    ProfileV3 profile;
    profile.userName = "user";
    UsmKeys keys;
    if (kind != Kind::user) {
        profile.authProtocol = static_cast<int>(AuthProtocol::sha1);
        keys.authentication = engine().keys().get(AuthProtocol::sha1, password);
    }
    if (kind == Kind::encrypted) {
        profile.privacyProtocol = static_cast<int>(PrivacyProtocol::aes128);
        keys.privacy = keys.authentication;
    }
    const auto now = static_cast<std::time_t>(snmpv3_local_snmpEngineTime());
    return std::make_unique<UsmSecurity>(profile, keys, engineId, EngineClock{boots, engineTime, now, true});
}

std::unique_ptr<Security> securityOf(Kind kind)
{
    switch (kind) {
    case Kind::v1:
        return std::make_unique<CommunitySecurity>(SNMP_VERSION_1, "public");
    case Kind::v2c:
        return std::make_unique<CommunitySecurity>(SNMP_VERSION_2c, "public");
    case Kind::discovery:
        return std::make_unique<EngineDiscovery>();
    default:
        return userSecurity(kind);
    }
}

Question questionOf(Kind kind, bool next)
{
    if (kind == Kind::discovery)
        return {};
    return {next ? Question::Kind::getNext : Question::Kind::get, *Oid::parse(askedOid)};
}

// What an agent copies from a request.
struct Numbers {
    long messageId = 0;
    long requestId = 0;
};

long messageIdOf(const Ber::Bytes& packet)
{
    Ber::Reader outer(packet);
    Ber::Reader fields(outer.take(Ber::sequenceTag));
    fields.takeInteger();
    return Ber::Reader(fields.take(Ber::sequenceTag)).takeInteger();
}

Numbers numbersOf(std::span<const unsigned char> bytes, Kind kind)
{
    const Ber::Bytes packet(bytes.begin(), bytes.end());
    if (kind == Kind::v1 || kind == Kind::v2c)
        return {0, Ber::Message::decode(packet).pdu.requestId};
    if (kind == Kind::encrypted)
        return {messageIdOf(packet), 0};
    return {messageIdOf(packet), Ber::V3Message::decode(packet).pdu.requestId};
}

void put(std::string& packet, std::string_view marker, const std::string& value)
{
    for (auto at = packet.find(marker); at != std::string::npos; at = packet.find(marker))
        packet.replace(at, marker.size(), value);
}

std::string fourBytes(long number)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

std::vector<unsigned char> localKey()
{
    const KeyCache::Key master = engine().keys().get(AuthProtocol::sha1, password);
    std::vector<unsigned char> key(USM_PRIV_KU_LEN);
    std::size_t size = key.size();
    const Kep::MutexLock lock(libraryMutex);
    const int made = generate_kul(usmHMACSHA1AuthProtocol, USM_AUTH_PROTO_SHA_LEN, engineId.data(), engineId.size(),
                                  master->bytes().data(), master->bytes().size(), key.data(), &size);
    Fuzz::require(made == SNMPERR_SUCCESS, "the key is to be had");
    key.resize(size);
    return key;
}

// RFC 3414, section 7.3.1.
void sign(std::string& packet)
{
    static const std::vector<unsigned char> key = localKey();
    const auto at = packet.find(digestMarker);
    if (at == std::string::npos)
        return;
    packet.replace(at, digestMarker.size(), std::string(digestMarker.size(), '\0'));
    std::array<unsigned char, digestMarker.size()> digest{};
    std::size_t size = digest.size();
    const Kep::MutexLock lock(libraryMutex);
    if (sc_generate_keyed_hash(usmHMACSHA1AuthProtocol, USM_AUTH_PROTO_SHA_LEN, key.data(),
                               static_cast<u_int>(key.size()), reinterpret_cast<const u_char*>(packet.data()),
                               static_cast<u_int>(packet.size()), digest.data(), &size) == SNMPERR_SUCCESS)
        packet.replace(at, size, reinterpret_cast<const char*>(digest.data()), size);
}

std::string plausible(std::string_view bytes, const Numbers& numbers)
{
    std::string packet(bytes);
    put(packet, requestIdMarker, fourBytes(numbers.requestId));
    put(packet, messageIdMarker, fourBytes(numbers.messageId));
    sign(packet);
    return packet;
}

void requireReply(const Reply& reply)
{
    Fuzz::require(reply.hasValue || reply.value.isNull(), "no value is null");
    Fuzz::require(reply.bindings > 0 || !reply.hasValue, "a value has a binding");
    Fuzz::require(!reply.value.toJson().empty(), "a value can be written");
    Fuzz::require(!reply.hasValue || static_cast<std::string>(reply.value).size() <= 65535, "a value was in the reply");
    Fuzz::require(reply.oid.arcs().size() <= Oid::maxArcs, "an OID has at most 128 arcs");
}

// Reads the reply, and again while it settles nothing, as repeated datagrams are.
void readReply(Request& request, const std::string& packet, Kind kind)
{
    const std::span bytes(reinterpret_cast<const unsigned char*>(packet.data()), packet.size());
    for (int times = 0; times < 2; ++times) {
        const auto progress = request.read(bytes);
        if (progress == Request::Progress::done && kind != Kind::discovery)
            return requireReply(request.reply());
        if (progress == Request::Progress::refused)
            Fuzz::require(!request.refusal().text.empty(), "a refusal has words");
        if (progress == Request::Progress::done || progress == Request::Progress::refused)
            return;
        request.renew();
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view bytes = Fuzz::textOf(data, size);
    const unsigned choice = Fuzz::takeChoice(bytes);
    const auto kind = static_cast<Kind>(choice % kinds);
    engine();
    const std::unique_ptr<Security> security = securityOf(kind);
    Request request(*security, questionOf(kind, choice >= 128));
    try {
        readReply(request, plausible(bytes, numbersOf(request.packet(), kind)), kind);
    } catch (const Exception& error) {
        Fuzz::require(*error.what() != '\0', "an error has words");
    }
    return 0;
}
