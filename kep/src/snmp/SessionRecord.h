/// What a session has met.
#pragma once

#include "Kep/Host/Outcomes.h"
#include "snmp/Failure.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Kep::Snmp {

/// Who is told how sessions end; null when nobody is.
std::shared_ptr<Host::IOutcomeObserver> outcomeObserver();

/// Tells the observer at its own end, if anything was asked or was to be. Used by one thread.
class SessionRecord {
public:
    SessionRecord() = default;
    ~SessionRecord();
    SessionRecord(const SessionRecord&) = delete;
    SessionRecord& operator=(const SessionRecord&) = delete;

    /// A session with `address`, a dotted quad, begins, for the call that this thread works for.
    void begin(const std::string& address);

    /// The agent has told its engine. If what is asked next is `encrypted`, an agent that cannot read it is silent.
    void foundEngine(bool encrypted) noexcept { engine_ = encrypted ? Engine::AskedInSecret : Engine::Asked; }

    void answered() noexcept { answered_ = true; }

    /// The first failure counts.
    void failed(Host::Outcome outcome, std::string_view problem);
    void failed(const Failure& failure) { failed(failure.outcome(), failure.problem()); }

    /// Does what may fail, and notes the failure that it throws.
    template <class Action> auto watch(Action action)
    {
        try {
            return action();
        } catch (const Failure& failure) {
            failed(failure);
            throw;
        } catch (const std::exception& error) {
            failed(Host::Outcome::Failed, error.what());
            throw;
        }
    }

private:
    enum class Engine { None, Asked, AskedInSecret };

    Host::Outcome outcome() const noexcept;
    void tell() const;

    std::optional<std::uint32_t> address_;
    Host::CallId call_ = 0;
    Engine engine_ = Engine::None;
    bool answered_ = false;
    std::optional<Host::Outcome> failure_;
    std::string problem_;
};

} // namespace Kep::Snmp
