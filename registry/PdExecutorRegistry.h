/// Owns the live discovery runs by their ids.
#pragma once

#include "Kep/Mutex.h"
#include "Kep/Tasks/IManager.h"
#include "documents/DiscoveryConfig.h"
#include "engine/PdExecutor.h"
#include "registry/RunIds.h"
#include "registry/TaskBinding.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Open from construction until `shutdown`, then closed for good. Any thread. One mutex, which comes after the cookie
/// table's and before a run's, is held for the whole of each operation. On a closed registry all operations but
/// `shutdown` throw `Kep::InvalidOperationException` with their own name. A lock that fails throws
/// `std::system_error`. Nothing has changed when one of these is thrown. A run that others still share must not
/// outlive the registry.
class PdExecutorRegistry {
public:
    /// Shares the queue with every run that it makes.
    explicit PdExecutorRegistry(std::shared_ptr<Kep::Tasks::IManager> taskQueue);

    /// Drops the runs; each waits for its pending tasks.
    ~PdExecutorRegistry();
    PdExecutorRegistry(const PdExecutorRegistry&) = delete;
    PdExecutorRegistry& operator=(const PdExecutorRegistry&) = delete;

    /// A new run under the next free id, the first being 1. An id counts as handed out even if making the run throws,
    /// which passes.
    std::shared_ptr<PdExecutor> createPdExecutor(const DiscoveryConfig& config);

    /// The run, or an empty pointer.
    std::shared_ptr<PdExecutor> getPdExecutor(std::int32_t id) const;

    /// Drops the run, if there is one, without telling it to stop. When nobody else shares it, it is destroyed here
    /// with the mutex held, which waits for its pending tasks.
    void removePdExecutor(std::int32_t id);

    /// Removes the runs that have been idle for more than 86400 whole seconds and have no pending tasks. The mutex is
    /// released before the removals, each of which throws if the registry was closed in between.
    void checkTimeouts();

    /// Tells every run to stop, drops all of them, which waits for their pending tasks, and closes the registry.
    void shutdown();

private:
    void requireOpen(const char* operation) const KEP_REQUIRES(mutex_);
    std::vector<std::int32_t> timedOutRuns() const;

    bool closed_ KEP_GUARDED_BY(mutex_) = false;
    const std::shared_ptr<Kep::Tasks::IManager> taskQueue_;
    const TaskBinding taskBinding_;
    RunMap runs_ KEP_GUARDED_BY(mutex_);
    mutable Kep::Mutex mutex_;
    std::int32_t counter_ KEP_GUARDED_BY(mutex_) = 0;
};

} // namespace PrinterDiscoveryPlugin
