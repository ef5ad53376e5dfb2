/// A plug-in that plays back what the test scripts, and keeps what it was asked.
#pragma once

#include "host/IPluginCalls.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Host {

/// Replies of an operation are given one after the other; the last one stays. Any thread.
class FakePlugin : public IPluginCalls {
public:
    void reply(const std::string& operation, const std::string& text)
    {
        const std::lock_guard lock(mutex_);
        replies_[operation].push_back(text);
    }

    /// Forgets the replies that the operation was to give.
    void replyOnly(const std::string& operation, const std::string& text)
    {
        const std::lock_guard lock(mutex_);
        replies_[operation] = {text};
    }

    std::string call(const PluginCall& call, const Entering& entering) override
    {
        Kep::Host::CallId work = 0;
        {
            const std::lock_guard lock(mutex_);
            work = ++lastWork_;
        }
        if (entering)
            entering(work);
        const std::lock_guard lock(mutex_);
        calls_.push_back(call);
        if (call.operation == "startDiscovery")
            startWork_ = work;
        return next(call.operation);
    }

    void withdraw(Kep::Host::CallId work) override
    {
        const std::lock_guard lock(mutex_);
        withdrawn_.push_back(work);
    }

    std::vector<PluginCall> calls() const
    {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

    /// The operations of the calls.
    std::vector<std::string> operations() const
    {
        std::vector<std::string> names;
        for (const PluginCall& call : calls())
            names.push_back(call.operation);
        return names;
    }

    std::vector<Kep::Host::CallId> withdrawn() const
    {
        const std::lock_guard lock(mutex_);
        return withdrawn_;
    }

    Kep::Host::CallId startWork() const { return startWork_; }

private:
    std::string next(const std::string& operation)
    {
        auto& texts = replies_[operation];
        if (texts.empty())
            return "{}";
        std::string text = texts.front();
        if (texts.size() > 1)
            texts.pop_front();
        return text;
    }

    mutable std::mutex mutex_;
    std::map<std::string, std::deque<std::string>> replies_;
    std::vector<PluginCall> calls_;
    std::vector<Kep::Host::CallId> withdrawn_;
    Kep::Host::CallId lastWork_ = 40;
    Kep::Host::CallId startWork_ = 0;
};

} // namespace Host
