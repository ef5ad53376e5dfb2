/// Lets operations in to the registry and tells when the last of them has left.
#pragma once

#include "registry/PdExecutorRegistry.h"

#include <atomic>

namespace PrinterDiscoveryPlugin {

/// Closed at first. Visits come from any thread and never wait for each other nor for `open` or `close`; those two are
/// called by one thread at a time. Holds no lock. Throws nothing.
class OperationGate {
public:
    /// One operation's stay: the registry lives as long as it.
    class Visit {
    public:
        explicit Visit(OperationGate& gate) noexcept;
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        /// Null when the gate was closed.
        PdExecutorRegistry* registry() const noexcept { return registry_; }

    private:
        OperationGate& gate_;
        PdExecutorRegistry* registry_;
    };

    OperationGate() = default;
    OperationGate(const OperationGate&) = delete;
    OperationGate& operator=(const OperationGate&) = delete;

    /// Visits find `registry` from now on.
    void open(PdExecutorRegistry& registry) noexcept;

    /// Visits find nothing from now on. Returns when all have left that found the registry.
    void close() noexcept;

private:
    void leave() noexcept;

    std::atomic<PdExecutorRegistry*> registry_{nullptr};
    std::atomic<int> visits_{0};
};

} // namespace PrinterDiscoveryPlugin
