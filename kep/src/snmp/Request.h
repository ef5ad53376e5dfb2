/// One request to an agent, from its coding to its answer, without the traffic.
#pragma once

#include "Kep/Variant.h"
#include "snmp/LibrarySession.h"
#include "snmp/Oid.h"
#include "snmp/Security.h"
#include "snmp/Transport.h"

#include <exception>
#include <span>
#include <string>

namespace Kep::Snmp {

/// What is asked. A discovery has no variable binding.
struct Question {
    enum class Kind { get, getNext, discovery };
    Kind kind = Kind::discovery;
    Oid oid;
};

/// A Response-PDU (RFC 3416, section 3), of whose variable bindings only the first is kept.
struct Reply {
    long errorStatus = 0;
    std::size_t bindings = 0;
    Oid oid;
    bool hasValue = false;
    Variant value; ///< null when it has none
};

/// Used by one thread. Takes `libraryMutex` for short times of its own; waits for nothing.
class Request {
public:
    /// What a datagram meant.
    enum class Progress {
        waiting,    ///< nothing: it belongs to no request, to another one, or to somebody else
        unreadable, ///< nothing: it is no message
        resend,     ///< `packet` has changed and is to be sent now
        done,       ///< the answer is here; for a discovery, its report
        refused,    ///< the agent will not answer; `refusal` says why
    };

    /// Codes the request. `security` outlives it and serves one request at a time. Throws `Exception` when it cannot
    /// be coded.
    Request(Security& security, const Question& question) KEP_EXCLUDES(libraryMutex);
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    /// The message to send.
    std::span<const unsigned char> packet() const noexcept { return port_.outgoing; }

    /// Makes `packet` the message of the next try: the same bytes, or a new message where the version wants one.
    void renew() KEP_EXCLUDES(libraryMutex);

    /// Reads what came from the agent.
    Progress read(std::span<const unsigned char> datagram) KEP_EXCLUDES(libraryMutex);

    /// The answer to a question that is no discovery. Requires `done`.
    const Reply& reply() const noexcept { return reply_; }

    /// Requires `refused`.
    const Refusal& refusal() const noexcept { return refusal_; }

private:
    bool encode(const Question& question) KEP_REQUIRES(libraryMutex);
    static int onEvent(int event, netsnmp_session* session, int requestId, netsnmp_pdu* pdu, void* request)
        KEP_REQUIRES(libraryMutex);
    static int onRead(netsnmp_session* session, netsnmp_pdu* pdu, int result) KEP_REQUIRES(libraryMutex);
    bool isReportFromAnotherEngine(const netsnmp_pdu& pdu, int result) const;
    bool handle(netsnmp_pdu& pdu) noexcept KEP_REQUIRES(libraryMutex);
    bool onMessage(netsnmp_pdu& pdu) KEP_REQUIRES(libraryMutex);
    bool onResponse(const netsnmp_pdu& response) KEP_REQUIRES(libraryMutex);
    bool onReport(netsnmp_pdu& report) KEP_REQUIRES(libraryMutex);

    Security& security_;
    PacketPort port_;
    long messageId_ = 0; // of the message sent last (RFC 3412, section 6.2)
    Progress progress_ = Progress::waiting;
    Reply reply_;
    Refusal refusal_;
    std::exception_ptr thrown_;
    LibrarySession session_; // last: closing it calls back
};

} // namespace Kep::Snmp
