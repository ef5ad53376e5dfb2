#include "plugin/OperationGate.h"

namespace PrinterDiscoveryPlugin {

// A visit counts itself before it takes the registry, and `close` takes the registry away before it looks at the count.
// All of that is sequentially consistent, so a visit that has the registry is seen by the count. Visits that find the
// gate closed beforehand stay out of the count, lest many of them in a row keep `close` waiting.

OperationGate::Visit::Visit(OperationGate& gate) noexcept : gate_(gate), registry_(gate.registry_.load())
{
    if (registry_ == nullptr)
        return;
    gate_.visits_.fetch_add(1);
    registry_ = gate_.registry_.load();
    if (registry_ == nullptr)
        gate_.leave();
}

OperationGate::Visit::~Visit()
{
    if (registry_ != nullptr)
        gate_.leave();
}

void OperationGate::open(PdExecutorRegistry& registry) noexcept
{
    registry_.store(&registry);
}

void OperationGate::close() noexcept
{
    registry_.store(nullptr);
    for (int inside = visits_.load(); inside != 0; inside = visits_.load())
        visits_.wait(inside);
}

void OperationGate::leave() noexcept
{
    if (visits_.fetch_sub(1) == 1)
        visits_.notify_all();
}

} // namespace PrinterDiscoveryPlugin
