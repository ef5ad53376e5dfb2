/// Sessions with agents on loopback, and short words for what tests do with them.
#pragma once

#include "Ber.h"
#include "ChosenSettings.h"
#include "Kep/Snmp/Exception.h"
#include "Kep/Snmp/Factory.h"
#include "ScriptedAgent.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

inline constexpr const char* testCommunity = "perch-4711"; ///< a word that no message of ours holds by chance

std::shared_ptr<Kep::Snmp::Profile> communityProfile(long version, std::uint16_t port,
                                                     const std::string& community = testCommunity);
std::shared_ptr<Kep::Snmp::Session> newSession(const std::shared_ptr<Kep::Snmp::Profile>& profile);
std::shared_ptr<Kep::Snmp::Session> openSession(const std::shared_ptr<Kep::Snmp::Profile>& profile,
                                                const std::string& address = "127.0.0.1");

/// What `action` throws says; empty when it throws no `Kep::Snmp::Exception`.
std::string problemOf(const std::function<void()>& action);

/// A fixture: one scripted agent, one session with it, 100 ms and one retry.
class AgentTest : public testing::Test {
protected:
    using Bytes = Ber::Bytes;
    using Message = Ber::Message;
    using Answers = std::vector<Answer>;

    static constexpr const char* sysDescr = ".1.3.6.1.2.1.1.1.0";
    static constexpr const char* sysObjectId = ".1.3.6.1.2.1.1.2.0";

    /// From now on the agent answers messages of SNMPv1 and SNMPv2c so.
    void agentSays(std::function<Answers(const Message& request)> script);
    void agentSays(std::function<Answers(const Message& request, std::size_t number)> script);

    /// It answers each request with `value` under `oid`.
    void agentGives(const std::string& oid, const Bytes& value);

    /// It answers each request with an error, and the request's bindings.
    void agentFails(long errorStatus);

    void talkVersion(long version) { version_ = version; }
    Kep::Variant get(const std::string& oid = sysDescr);
    std::string getText(const std::string& oid = sysDescr) { return std::string(get(oid)); }

    struct Step {
        std::string oid;
        Kep::Variant value;
    };
    Step next(const std::string& oid = sysDescr);

    /// What a failing `get` or `getNext` says; empty when it does not fail.
    std::string problemOfGet(const std::string& oid = sysDescr);
    std::string problemOfNext(const std::string& oid = sysDescr);

    std::size_t requestsSeen() const { return agent_->requests().size(); }
    const std::shared_ptr<Kep::Snmp::Session>& session();

    static Message replyTo(const Message& request, std::vector<Bytes> bindings);

    ChosenSettings settings_{std::chrono::milliseconds(100), 1};
    std::unique_ptr<ScriptedAgent> agent_;
    std::shared_ptr<Kep::Snmp::Session> session_;

private:
    long version_ = 1;
};
