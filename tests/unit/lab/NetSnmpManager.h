/// A manager made of net-snmp's codec: it writes requests for the lab's agent and reads the answers.
#pragma once

#include "lab/Oid.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <cstdlib>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Lab::Testing {

struct FreePdu {
    void operator()(netsnmp_pdu* pdu) const { snmp_free_pdu(pdu); }
};
using Pdu = std::unique_ptr<netsnmp_pdu, FreePdu>;

struct Request {
    long version = SNMP_VERSION_2c;
    int type = SNMP_MSG_GET;
    std::vector<std::string> oids;
    std::string community = "public";
    long requestId = 4711;
};

inline Bytes encode(const Request& request)
{
    const Pdu pdu(snmp_pdu_create(request.type));
    pdu->version = request.version;
    pdu->reqid = request.requestId;
    for (const std::string& text : request.oids) {
        const Oid arcs = parseOid(text).value();
        const std::vector<oid> name(arcs.begin(), arcs.end());
        snmp_add_null_var(pdu.get(), name.data(), name.size());
    }
    std::string community = request.community;
    netsnmp_session session{};
    snmp_sess_init(&session);
    session.version = request.version;
    session.community = reinterpret_cast<u_char*>(community.data());
    session.community_len = community.size();
    std::size_t size = 2048;
    std::size_t used = 0;
    auto* packet = static_cast<u_char*>(std::malloc(size));
    const int failed = snmp_build(&packet, &size, &used, &session, pdu.get());
    const std::unique_ptr<u_char, decltype(&std::free)> owner(packet, &std::free);
    if (failed != 0)
        throw std::runtime_error("net-snmp cannot build the request");
    return {packet + size - used, packet + size};
}

struct Answered {
    std::string oid;
    u_char type = 0;
    std::string text;

    bool operator==(const Answered&) const = default;
};

struct Answer {
    long version = -1;
    std::string community;
    int command = 0;
    long requestId = 0;
    long status = 0;
    long index = 0;
    std::vector<Answered> varbinds;
};

inline void PrintTo(const Answered& answered, std::ostream* out)
{
    *out << answered.oid << " type " << int{answered.type} << " \"" << answered.text << '"';
}

inline std::string dotted(const u_char* bytes)
{
    return std::to_string(bytes[0]) + '.' + std::to_string(bytes[1]) + '.' + std::to_string(bytes[2]) + '.' +
           std::to_string(bytes[3]);
}

/// Numbers in decimal, OIDs and addresses dotted, all else as bytes.
inline std::string textOf(const netsnmp_variable_list& variable)
{
    switch (variable.type) {
    case ASN_INTEGER:
        return std::to_string(*variable.val.integer);
    case ASN_COUNTER:
    case ASN_GAUGE:
    case ASN_TIMETICKS:
        return std::to_string(static_cast<std::uint32_t>(*variable.val.integer));
    case ASN_COUNTER64:
        return std::to_string((std::uint64_t{variable.val.counter64->high} << 32) | variable.val.counter64->low);
    case ASN_OBJECT_ID: {
        const Oid arcs(variable.val.objid, variable.val.objid + variable.val_len / sizeof(oid));
        return formatOid(arcs);
    }
    case ASN_IPADDRESS:
        return dotted(variable.val.string);
    default:
        return {variable.val.string, variable.val.string + variable.val_len};
    }
}

/// Reads a datagram to its last byte. Throws `std::runtime_error` when net-snmp cannot.
inline Answer decode(Bytes datagram)
{
    Answer answer;
    Bytes community(256);
    std::size_t communitySize = community.size();
    std::size_t left = datagram.size();
    u_char* body = snmp_comstr_parse(datagram.data(), &left, community.data(), &communitySize, &answer.version);
    const Pdu pdu(snmp_pdu_create(0));
    if (body == nullptr || snmp_pdu_parse(pdu.get(), body, &left) != 0 || left != 0)
        throw std::runtime_error("net-snmp cannot read the answer");
    answer.community.assign(community.begin(), community.begin() + static_cast<std::ptrdiff_t>(communitySize));
    answer.command = pdu->command;
    answer.requestId = pdu->reqid;
    answer.status = pdu->errstat;
    answer.index = pdu->errindex;
    for (const auto* variable = pdu->variables; variable != nullptr; variable = variable->next_variable) {
        const Oid arcs(variable->name, variable->name + variable->name_length);
        answer.varbinds.push_back({formatOid(arcs), variable->type, textOf(*variable)});
    }
    return answer;
}

} // namespace Lab::Testing
