#include "registry/PdExecutorRegistry.h"

#include "Kep/Exception.h"
#include "engine/Time.h"

#include <utility>

namespace PrinterDiscoveryPlugin {
namespace {

constexpr std::int64_t ticksPerSecond = 10'000'000;
constexpr std::int32_t longestIdleSeconds = 86400;

bool timedOut(const PdExecutor& run)
{
    const std::int64_t idleTicks = Time::systemTicks() - run.lastActivity();
    const auto idleSeconds = static_cast<std::int32_t>(idleTicks / ticksPerSecond);
    return idleSeconds > longestIdleSeconds && !run.hasPendingTasks();
}

} // namespace

PdExecutorRegistry::PdExecutorRegistry(std::shared_ptr<Kep::Tasks::IManager> taskQueue)
    : taskQueue_(std::move(taskQueue))
{}

PdExecutorRegistry::~PdExecutorRegistry() = default;

std::shared_ptr<PdExecutor> PdExecutorRegistry::createPdExecutor(const DiscoveryConfig& config)
{
    const Kep::MutexLock lock(mutex_);
    requireOpen("createPdExecutor");
    counter_ = nextRunId(counter_, runs_);
    auto run = std::make_shared<PdExecutor>(static_cast<std::uint32_t>(counter_), config, taskQueue_, taskBinding_);
    runs_.emplace(counter_, run);
    return run;
}

std::shared_ptr<PdExecutor> PdExecutorRegistry::getPdExecutor(std::int32_t id) const
{
    const Kep::MutexLock lock(mutex_);
    requireOpen("getPdExecutor");
    const auto entry = runs_.find(id);
    return entry == runs_.end() ? nullptr : entry->second;
}

void PdExecutorRegistry::removePdExecutor(std::int32_t id)
{
    const Kep::MutexLock lock(mutex_);
    requireOpen("removePdExecutor");
    runs_.erase(id);
}

void PdExecutorRegistry::checkTimeouts()
{
    for (const std::int32_t id : timedOutRuns())
        removePdExecutor(id);
}

void PdExecutorRegistry::shutdown()
{
    const Kep::MutexLock lock(mutex_);
    for (const auto& [id, run] : runs_)
        run->stop();
    runs_.clear();
    closed_ = true;
}

void PdExecutorRegistry::requireOpen(const char* operation) const
{
    if (closed_)
        throw Kep::InvalidOperationException(operation);
}

std::vector<std::int32_t> PdExecutorRegistry::timedOutRuns() const
{
    const Kep::MutexLock lock(mutex_);
    requireOpen("checkTimeouts");
    std::vector<std::int32_t> ids;
    for (const auto& [id, run] : runs_)
        if (timedOut(*run))
            ids.push_back(id);
    return ids;
}

} // namespace PrinterDiscoveryPlugin
