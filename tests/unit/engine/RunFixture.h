/// A discovery run in a world of fakes.
#pragma once

#include "engine/IdentificationSettings.h"
#include "engine/PdExecutor.h"
#include "fakes/FakeNames.h"
#include "fakes/FakeSnmp.h"
#include "fakes/FakeTaskQueue.h"
#include "fakes/FakeTime.h"
#include "fakes/Journal.h"
#include "registry/TaskBinding.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

class RunTest : public testing::Test {
protected:
    ~RunTest() override
    {
        discard();
        identificationSettings() = settingsBefore_;
    }

    /// The run, made on first use from `config` and the settings in force.
    PdExecutor& run()
    {
        if (!run_)
            run_ = std::make_unique<PdExecutor>(7, config, queue, binding_);
        return *run_;
    }

    /// Destroys the run as if its tasks had been withdrawn.
    void discard()
    {
        journal.watchNothing();
        queue->withdrawAll();
        run_.reset();
    }

    /// Destroys the run and nothing else.
    void destroy() { run_.reset(); }

    std::uint32_t sweep(const std::string& from, const std::string& to) { return run().sweep({{from, to}}, {}); }
    void probe(const std::string& address) { run().testIp(address); }

    std::uint32_t step() { return run().snapshot().step; }
    std::uint32_t state() { return run().snapshot().state; }
    std::vector<PrinterRecord> printers() { return run().snapshot().printers; }

    /// Whether the clock's present time is the run's last activity, after `action`, which began at another time.
    template <class Action> bool refreshesActivity(Action action)
    {
        run();
        time.advance(1234);
        action();
        return run().lastActivity() == time.now();
    }

    Fakes::Journal journal;
    Fakes::FakeTime time;
    Fakes::FakeSnmp snmp;
    Fakes::FakeNames names;
    std::shared_ptr<Fakes::FakeTaskQueue> queue = std::make_shared<Fakes::FakeTaskQueue>();
    DiscoveryConfig config;

private:
    const IdentificationSettings settingsBefore_ = identificationSettings();
    const TaskBinding binding_;
    std::unique_ptr<PdExecutor> run_;
};

} // namespace PrinterDiscoveryPlugin
