/// What the tests of this folder share: the fakes that a run needs, and short ways to say what a run does.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "documents/DiscoveryConfig.h"
#include "engine/PdExecutor.h"
#include "fakes/FakeNames.h"
#include "fakes/FakeSnmp.h"
#include "fakes/FakeTaskQueue.h"
#include "fakes/FakeTime.h"
#include "fakes/Journal.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// A run's settings: the addresses `from` to `to`, over SNMPv2c.
inline DiscoveryConfig configOf(const std::string& from, const std::string& to)
{
    DiscoveryConfig config;
    config.includeRanges = {{from, to}};
    config.snmpProfile = std::make_shared<Kep::Snmp::ProfileV2>();
    return config;
}

inline DiscoveryConfig emptyConfig()
{
    DiscoveryConfig config;
    config.snmpProfile = std::make_shared<Kep::Snmp::ProfileV2>();
    return config;
}

/// Whether work begun on another thread waits for something. It has a moment to get there; one that waits is never
/// taken for one that does not.
template <class Result> bool isHeldUp(const std::future<Result>& work)
{
    return work.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout;
}

/// Runs `work` on a thread of its own and waits for it: hangs, and so fails by the test's time-out, when the caller
/// holds a lock that `work` needs.
template <class Work> auto elsewhere(Work work)
{
    return std::async(std::launch::async, std::move(work)).get();
}

class WithFakes : public testing::Test {
protected:
    static constexpr std::int64_t second = 10'000'000;

    ~WithFakes() override { queue->withdrawAll(); }

    std::size_t entered(const std::string& text) const
    {
        const std::vector<std::string> texts = journal.texts();
        return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
    }

    Fakes::Journal journal;
    Fakes::FakeTime time;
    Fakes::FakeSnmp snmp;
    Fakes::FakeNames names;
    std::shared_ptr<Fakes::FakeTaskQueue> queue = std::make_shared<Fakes::FakeTaskQueue>();
};

} // namespace PrinterDiscoveryPlugin
