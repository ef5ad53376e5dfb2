/// Starts a discovery run and follows it to its end.
#pragma once

#include "host/IPluginCalls.h"
#include "host/RunResult.h"

#include <chrono>
#include <string>

namespace Host {

/// Time and the user's wish to stop, as a command waits for them.
class IPace {
public:
    virtual ~IPace() = default;

    virtual std::chrono::steady_clock::time_point now() = 0;
    virtual bool interrupted() = 0;

    /// Sleeps that long, but not on once the user interrupts. False when that has happened, before or meanwhile.
    virtual bool sleep(std::chrono::milliseconds time) = 0;

    /// Sleeps that long in any case.
    virtual void rest(std::chrono::milliseconds time) = 0;
};

class IProgress {
public:
    virtual ~IProgress() = default;

    /// Called after every status, from the following thread.
    virtual void show(const RunResult& soFar) = 0;
};

class RunFollower {
public:
    /// Keeps the references.
    RunFollower(IPluginCalls& plugin, IPace& pace, IProgress& progress);

    /// Starts the run that `startDocument` describes under `cookie` and returns when the plug-in reports that no work
    /// of it is pending. When the user interrupts, the run's work is withdrawn, the run is watched for at most 2 s
    /// more while what is in flight ends, and what is known then is returned. Nothing is started when the user
    /// interrupted before. Throws `Failure` with the plug-in's words when a call fails.
    RunResult follow(const std::string& startDocument, const std::string& cookie);

private:
    void start(const std::string& startDocument);
    void takeStatus(RunResult& result, const std::string& cookie);
    void drain(RunResult& result, const std::string& cookie);

    IPluginCalls& plugin_;
    IPace& pace_;
    IProgress& progress_;
    Kep::Host::CallId work_ = 0;
};

} // namespace Host
