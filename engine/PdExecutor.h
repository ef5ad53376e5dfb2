/// One discovery run: its settings, its progress, what it found, and its work.
#pragma once

#include "Kep/Mutex.h"
#include "Kep/Snmp/Session.h"
#include "Kep/Tasks/IManager.h"
#include "documents/DiscoveryConfig.h"
#include "documents/DiscoveryStatus.h"
#include "documents/IpRange.h"
#include "documents/PrinterRecord.h"
#include "engine/ITaskBinding.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Held by shared pointer; neither copied nor moved. Any thread may call anything at any time until the destructor
/// begins. One mutex guards the progress, the printers, the pending tasks and the stop flag; it is held for short
/// book-keeping and for the submission of a task, never across SNMP, name look-ups or sleeps, and no other lock of
/// the plug-in is taken under it. A lock that fails throws `std::system_error`.
class PdExecutor {
public:
    /// Most "Test IP" tasks that one call of `sweep` submits, but for the last address of a range.
    static constexpr int MaxQueuedAddresses = 256;

    /// Copies `config` and the MAC address OIDs in force, shares `taskQueue`; `binding` outlives the run.
    PdExecutor(std::uint32_t id, const DiscoveryConfig& config, std::shared_ptr<Kep::Tasks::IManager> taskQueue,
               const ITaskBinding& binding);

    /// Waits, in steps of 200 ms and with no lock held, until no task is pending.
    ~PdExecutor();
    PdExecutor(const PdExecutor&) = delete;
    PdExecutor& operator=(const PdExecutor&) = delete;

    std::uint32_t id() const noexcept { return id_; }

    /// System-time ticks (100 ns) of the last snapshot, reset, sweep or probe. No lock.
    std::int64_t lastActivity() const noexcept { return lastActivity_.load(); }

    bool hasPendingTasks() const;

    /// Begins to count anew: `total` addresses, none probed, no printers. Refreshes the activity time.
    void resetProgress(std::uint32_t total);

    /// Progress and printers at this moment, cookie empty. Refreshes the activity time.
    DiscoveryStatus snapshot();

    /// Lets tasks that have not begun do nothing. For good. Does not refresh the activity time.
    void stop();

    /// Submits a "Test IP" task for each address of `include` less `exclude` whose last octet is neither 0 nor 255, up
    /// to `MaxQueuedAddresses`, and one "Test IP ranges" task with what is left. Returns the number of addresses to
    /// probe in the whole of it, 0 on a stopped run. Throws what a submission throws; what was submitted stays so.
    std::uint32_t sweep(std::vector<IpRangeText> include, std::vector<IpRangeText> exclude);

    /// Probes the host at `address`, counts one step, and keeps the host if it is a printer. On a stopped run does
    /// nothing. SNMP and name failures are absorbed; anything else passes, with the step uncounted.
    void testIp(const std::string& address);

    /// Takes a finished task off the pending list.
    void taskFinished(std::uint32_t taskId);

private:
    bool stopped() const;
    void touch() noexcept;
    void queueTestIp(const std::string& address);
    void queueTestIpRanges(const std::vector<IpRangeText>& ranges);
    void submit(const std::shared_ptr<Kep::Tasks::Task>& task);

    const std::uint32_t id_;
    mutable Kep::Mutex mutex_;
    std::uint32_t step_ KEP_GUARDED_BY(mutex_) = 0;
    std::uint32_t total_ KEP_GUARDED_BY(mutex_) = 0;
    std::vector<PrinterRecord> printers_ KEP_GUARDED_BY(mutex_);
    const DiscoveryConfig config_;
    std::atomic<std::int64_t> lastActivity_;
    const std::vector<std::string> macAddressOids_;
    const std::shared_ptr<Kep::Tasks::IManager> taskQueue_;
    const ITaskBinding& binding_;
    std::unordered_multiset<std::uint32_t> pendingTasks_ KEP_GUARDED_BY(mutex_);
    bool stopped_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace PrinterDiscoveryPlugin
