#include "engine/PdExecutor.h"

#include "engine/AddressSlice.h"
#include "engine/HostProbe.h"
#include "engine/IdentificationSettings.h"
#include "engine/Time.h"

#include <optional>
#include <utility>

namespace PrinterDiscoveryPlugin {
namespace {

constexpr int taskPriority = 0;

constexpr std::uint32_t noTask = 0; // no task has this id

} // namespace

PdExecutor::PdExecutor(std::uint32_t id, const DiscoveryConfig& config, std::shared_ptr<Kep::Tasks::IManager> taskQueue,
                       const ITaskBinding& binding)
    : id_(id), config_(config), lastActivity_(Time::systemTicks()),
      macAddressOids_(identificationSettings().macAddressOids), taskQueue_(std::move(taskQueue)), binding_(binding)
{}

PdExecutor::~PdExecutor()
{
    while (hasPendingTasks())
        Time::sleepWhileDraining();
}

bool PdExecutor::hasPendingTasks() const
{
    const Kep::MutexLock lock(mutex_);
    return !pendingTasks_.empty();
}

void PdExecutor::resetProgress(std::uint32_t total)
{
    const Kep::MutexLock lock(mutex_);
    touch();
    total_ = total;
    step_ = 0;
    printers_.clear();
}

DiscoveryStatus PdExecutor::snapshot()
{
    touch();
    DiscoveryStatus status;
    const Kep::MutexLock lock(mutex_);
    status.state = pendingTasks_.empty() ? DiscoveryStatus::finished : DiscoveryStatus::running;
    status.step = step_;
    status.total = total_;
    status.printers = printers_;
    return status;
}

void PdExecutor::stop()
{
    const Kep::MutexLock lock(mutex_);
    stopped_ = true;
}

// A sweep owns its lists, whatever becomes of the caller's.
// cppcheck-suppress passedByValue
// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::uint32_t PdExecutor::sweep(std::vector<IpRangeText> include, std::vector<IpRangeText> exclude)
{
    if (stopped())
        return 0;
    touch();
    std::vector<IpRange> ranges;
    const std::uint32_t count = buildProbeRanges(include, exclude, ranges);
    const std::vector<IpRangeText> leftover =
        queueSlice(ranges, MaxQueuedAddresses, [this](const std::string& address) { queueTestIp(address); });
    if (!leftover.empty())
        queueTestIpRanges(leftover);
    return count;
}

void PdExecutor::testIp(const std::string& address)
{
    if (stopped())
        return;
    touch();
    std::optional<PrinterRecord> printer = probeHost(address, config_.snmpProfile, macAddressOids_);
    const Kep::MutexLock lock(mutex_);
    if (printer)
        printers_.push_back(std::move(*printer)); // first, for it may throw, and then the step does not count
    ++step_;
}

void PdExecutor::taskFinished(std::uint32_t taskId)
{
    const Kep::MutexLock lock(mutex_);
    const auto task = pendingTasks_.find(taskId);
    if (task != pendingTasks_.end())
        pendingTasks_.erase(task);
}

bool PdExecutor::stopped() const
{
    const Kep::MutexLock lock(mutex_);
    return stopped_;
}

void PdExecutor::touch() noexcept
{
    lastActivity_.exchange(Time::systemTicks());
}

void PdExecutor::queueTestIp(const std::string& address)
{
    submit(binding_.testIp(*this, address));
}

void PdExecutor::queueTestIpRanges(const std::vector<IpRangeText>& ranges)
{
    submit(binding_.testIpRanges(*this, ranges));
}

void PdExecutor::submit(const std::shared_ptr<Kep::Tasks::Task>& task)
{
    // Under the lock that the finish callback takes, so that it always finds the id; and with a place for the id made
    // first, so that a task which is queued is never missing from the list.
    const Kep::MutexLock lock(mutex_);
    auto place = pendingTasks_.extract(pendingTasks_.insert(noTask));
    place.value() = taskQueue_->submit(task, identificationSettings().discoveryTaskGroup, taskPriority);
    pendingTasks_.insert(std::move(place));
}

} // namespace PrinterDiscoveryPlugin
