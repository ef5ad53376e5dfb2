/// The sessions that the factory makes.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "Kep/Snmp/Session.h"
#include "snmp/Engine.h"
#include "snmp/Exchange.h"
#include "snmp/SessionBudget.h"
#include "snmp/SessionRecord.h"
#include "snmp/Wire.h"

#include <memory>

namespace Kep::Snmp {

class AgentSession final : public Session {
public:
    /// Shares both.
    AgentSession(std::shared_ptr<Engine> engine, std::shared_ptr<const Profile> profile);

    void open(const std::string& address) override;
    void getNext(const std::string& oid, std::string& nextOid, Variant& value) override;
    void get(const std::string& oid, Variant& value) override;

private:
    Answer askFor(const Oid& oid);
    Answer askNext(const Oid& oid);
    Reply take(Answer&& answer);
    Answer ask(const Question& question, Wire::Clock::time_point limit = Wire::Clock::time_point::max()) const;
    void check(const Reply& reply) const;
    void requireOpen() const;
    Failure failure(const std::string& problem, Host::Outcome outcome = Host::Outcome::Failed) const;

    const std::shared_ptr<Engine> engine_;
    const std::shared_ptr<const Profile> profile_;
    std::unique_ptr<Wire> wire_;         // null until open
    std::unique_ptr<Security> security_; // null until open
    SessionBudget budget_;
    SessionRecord record_;
};

} // namespace Kep::Snmp
