#include "snmp/Request.h"

#include "Kep/Snmp/Exception.h"
#include "snmp/Values.h"

#include <utility>

namespace Kep::Snmp {

namespace {

int commandOf(Question::Kind kind)
{
    return kind == Question::Kind::getNext ? SNMP_MSG_GETNEXT : SNMP_MSG_GET;
}

netsnmp_session settingsOf(Security& security) KEP_REQUIRES(libraryMutex)
{
    netsnmp_session settings;
    snmp_sess_init(&settings);
    security.describe(settings);
    return settings;
}

netsnmp_pdu* makePdu(Security& security, const Question& question) KEP_REQUIRES(libraryMutex)
{
    const std::vector<oid> name(question.oid.arcs().begin(), question.oid.arcs().end());
    netsnmp_pdu* const pdu = snmp_pdu_create(commandOf(question.kind)); // from here on nothing throws
    if (pdu == nullptr)
        return nullptr;
    const bool bound = name.empty() || snmp_add_null_var(pdu, name.data(), name.size()) != nullptr;
    if (bound && security.complete(*pdu))
        return pdu;
    snmp_free_pdu(pdu);
    return nullptr;
}

std::size_t countBindings(const netsnmp_pdu& pdu)
{
    std::size_t count = 0;
    for (const auto* binding = pdu.variables; binding != nullptr; binding = binding->next_variable)
        ++count;
    return count;
}

Reply replyOf(const netsnmp_pdu& pdu) KEP_REQUIRES(libraryMutex)
{
    Reply reply;
    reply.errorStatus = pdu.errstat;
    reply.bindings = countBindings(pdu);
    if (reply.bindings == 0)
        return reply;
    const netsnmp_variable_list& first = *pdu.variables;
    reply.oid = oidOf(first.name, first.name_length);
    reply.hasValue = hasValue(first);
    if (reply.hasValue)
        reply.value = valueOf(first);
    return reply;
}

} // namespace

Request::Request(Security& security, const Question& question) : security_(security)
{
    bool encoded = false;
    {
        const MutexLock lock(libraryMutex);
        encoded = encode(question);
    }
    if (!encoded)
        throw Exception("the SNMP request cannot be encoded");
}

bool Request::encode(const Question& question)
{
    const SecurityScope scope(security_);
    netsnmp_session settings = settingsOf(security_);
    settings.callback_magic = this;
    if (!session_.open(settings, makeTransport(port_), &Request::onRead))
        return false;
    netsnmp_pdu* const pdu = makePdu(security_, question);
    if (pdu == nullptr)
        return false;
    if (snmp_sess_async_send(session_.handle(), pdu, &Request::onEvent, this) == 0) {
        snmp_free_pdu(pdu);
        return false;
    }
    messageId_ = pdu->msgid; // the library keeps it until the request is settled
    return true;
}

void Request::renew()
{
    if (!security_.renewsTries())
        return;
    const MutexLock lock(libraryMutex);
    const SecurityScope scope(security_);
    session_.resend();
}

Request::Progress Request::read(std::span<const unsigned char> datagram)
{
    int result = 0;
    {
        const MutexLock lock(libraryMutex);
        const SecurityScope scope(security_);
        port_.incoming = datagram;
        progress_ = Progress::waiting;
        result = snmp_sess_read2(session_.handle(), readyTransports());
        port_.incoming = {};
        if (progress_ == Progress::resend)
            session_.resend();
    }
    if (thrown_)
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    return result != 0 && progress_ == Progress::waiting ? Progress::unreadable : progress_;
}

// Called by the library for what becomes of the request; 1 when a message settles it.
int Request::onEvent(int event, netsnmp_session* /*session*/, int /*requestId*/, netsnmp_pdu* pdu, void* request)
{
    auto& self = *static_cast<Request*>(request);
    if (event == NETSNMP_CALLBACK_OP_RESEND && pdu != nullptr)
        self.messageId_ = pdu->msgid;
    if (event != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE || pdu == nullptr)
        return 1;
    return self.handle(*pdu) ? 1 : 0;
}

// Called by the library for every message, before it looks for the request that the message belongs to.
int Request::onRead(netsnmp_session* session, netsnmp_pdu* pdu, int result)
{
    auto& self = *static_cast<Request*>(session->callback_magic);
    if (self.isReportFromAnotherEngine(*pdu, result))
        self.handle(*pdu);
    return 1;
}

// An agent that is no longer the engine we ask says so under the ID of the engine that it is (RFC 3414, section
// 3.2 (3)). The library knows no user there and would drop the report.
bool Request::isReportFromAnotherEngine(const netsnmp_pdu& pdu, int result) const
{
    return result == SNMPERR_USM_UNKNOWNSECURITYNAME && pdu.command == SNMP_MSG_REPORT &&
           pdu.securityLevel == SNMP_SEC_LEVEL_NOAUTH && pdu.msgid == messageId_;
}

// Whether the message settles the request. Nothing may be thrown through the library.
bool Request::handle(netsnmp_pdu& pdu) noexcept
{
    try {
        return onMessage(pdu);
    } catch (...) {
        thrown_ = std::current_exception();
        return true;
    }
}

bool Request::onMessage(netsnmp_pdu& pdu)
{
    if (pdu.command == SNMP_MSG_RESPONSE)
        return onResponse(pdu);
    return pdu.command == SNMP_MSG_REPORT && onReport(pdu);
}

bool Request::onResponse(const netsnmp_pdu& response)
{
    if (!security_.accepts(response))
        return false;
    reply_ = replyOf(response);
    progress_ = Progress::done;
    return true;
}

bool Request::onReport(netsnmp_pdu& report)
{
    switch (security_.onReport(report)) {
    case ReportVerdict::ignored:
        return false;
    case ReportVerdict::satisfied:
        progress_ = Progress::done;
        return true;
    case ReportVerdict::resend:
        progress_ = Progress::resend;
        return false;
    case ReportVerdict::refused:
        break;
    }
    refusal_ = refusalOf(reportKind(report));
    progress_ = Progress::refused;
    return true;
}

} // namespace Kep::Snmp
