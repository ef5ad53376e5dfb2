#include "registry/RunControl.h"

#include "documents/IpRange.h"
#include "engine/Time.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace PrinterDiscoveryPlugin {
namespace {

std::uint32_t countAddresses(const DiscoveryConfig& config)
{
    std::vector<IpRange> ranges;
    return buildProbeRanges(config.includeRanges, config.excludeRanges, ranges);
}

void dropPrintersBefore(std::int32_t firstIdx, std::vector<PrinterRecord>& printers)
{
    const auto first = static_cast<std::size_t>(std::max(firstIdx, 0));
    const auto dropped = static_cast<std::ptrdiff_t>(std::min(first, printers.size()));
    printers.erase(printers.begin(), printers.begin() + dropped);
}

} // namespace

std::int32_t RunControl::startRun(const DiscoveryConfig& config)
{
    const std::shared_ptr<PdExecutor> run = registry_.createPdExecutor(config);
    run->resetProgress(countAddresses(config));
    run->sweep(config.includeRanges, config.excludeRanges);
    return static_cast<std::int32_t>(run->id());
}

bool RunControl::startDiscovery(const std::string& cookie, const DiscoveryConfig& config)
{
    startNamedRun(cookie, config);
    return true;
}

bool RunControl::startDiscoveryBlocking(const std::string& cookie, const DiscoveryConfig& config)
{
    registry_.checkTimeouts();
    waitForRun(startNamedRun(cookie, config));
    return true;
}

bool RunControl::stopDiscovery(const std::string& cookie)
{
    const Kep::MutexLock lock(cookies_.mutex);
    registry_.checkTimeouts();
    const auto entry = cookies_.runs.find(cookie);
    if (entry == cookies_.runs.end())
        return false;
    registry_.removePdExecutor(entry->second);
    cookies_.runs.erase(entry);
    return true;
}

DiscoveryStatus RunControl::getStatus(const std::string& cookie, std::int32_t firstIdx)
{
    const Kep::MutexLock lock(cookies_.mutex);
    DiscoveryStatus status;
    const auto entry = cookies_.runs.find(cookie);
    if (entry != cookies_.runs.end())
        status = statusOf(entry->second);
    dropPrintersBefore(firstIdx, status.printers);
    status.cookie = cookie;
    if (entry != cookies_.runs.end() && status.state == DiscoveryStatus::finished)
        cookies_.runs.erase(entry); // last, so that whoever finds no memory may ask again
    return status;
}

void RunControl::waitForRun(std::int32_t id)
{
    const std::shared_ptr<PdExecutor> run = registry_.getPdExecutor(id);
    if (!run)
        return;
    while (run->hasPendingTasks() && isNamed(id))
        Time::sleepBetweenPolls();
}

DiscoveryStatus RunControl::statusOf(std::int32_t id)
{
    const std::shared_ptr<PdExecutor> run = registry_.getPdExecutor(id);
    return run ? run->snapshot() : DiscoveryStatus();
}

bool RunControl::isNamed(std::int32_t id)
{
    const Kep::MutexLock lock(cookies_.mutex);
    return std::any_of(cookies_.runs.begin(), cookies_.runs.end(),
                       [id](const auto& entry) { return entry.second == id; });
}

std::int32_t RunControl::startNamedRun(const std::string& cookie, const DiscoveryConfig& config)
{
    const std::int32_t id = startRun(config);
    const Kep::MutexLock lock(cookies_.mutex);
    cookies_.runs[cookie] = id;
    return id;
}

} // namespace PrinterDiscoveryPlugin
