#include "plugin/OperationGate.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace PrinterDiscoveryPlugin {
namespace {

using Visit = OperationGate::Visit;

class Gate : public testing::Test {
protected:
    std::future<void> closeElsewhere()
    {
        return std::async(std::launch::async, [this] { gate.close(); });
    }

    static bool isHeldUp(const std::future<void>& work)
    {
        return work.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout;
    }

    PdExecutorRegistry* found() { return Visit(gate).registry(); }

    PdExecutorRegistry registry{nullptr};
    OperationGate gate;
};

TEST_F(Gate, IsClosedAtFirst)
{
    EXPECT_EQ(found(), nullptr);
}

TEST_F(Gate, OpensAndClosesAnyNumberOfTimes)
{
    PdExecutorRegistry another(nullptr);
    gate.open(registry);
    EXPECT_EQ(found(), &registry);
    gate.close();
    EXPECT_EQ(found(), nullptr);
    gate.open(another);
    EXPECT_EQ(found(), &another);
    gate.close();
    gate.close();
    EXPECT_EQ(found(), nullptr);
}

TEST_F(Gate, VisitsDoNotWaitForEachOther)
{
    gate.open(registry);
    const Visit first(gate);
    const Visit second(gate);
    EXPECT_EQ(first.registry(), &registry);
    EXPECT_EQ(second.registry(), &registry);
}

TEST_F(Gate, CloseWaitsForTheLastVisit)
{
    gate.open(registry);
    auto first = std::make_unique<Visit>(gate);
    auto second = std::make_unique<Visit>(gate);
    auto closing = closeElsewhere();
    EXPECT_TRUE(isHeldUp(closing));
    first.reset();
    EXPECT_TRUE(isHeldUp(closing));
    EXPECT_EQ(second->registry(), &registry);
    second.reset();
    closing.get();
}

TEST_F(Gate, VisitsDuringACloseFindNothingAndDoNotWait)
{
    gate.open(registry);
    auto inside = std::make_unique<Visit>(gate);
    auto closing = closeElsewhere();
    while (found() != nullptr)
        std::this_thread::yield();
    EXPECT_TRUE(isHeldUp(closing));
    inside.reset();
    closing.get();
}

TEST_F(Gate, NoVisitSeesARegistryThatHasGone)
{
    std::atomic<bool> done{false};
    std::atomic<long> visits{0};
    std::vector<std::thread> visitors;
    for (int n = 0; n < 4; ++n)
        visitors.emplace_back([&] {
            while (!done) {
                const Visit visit(gate);
                if (visit.registry() == nullptr)
                    continue;
                EXPECT_EQ(visit.registry()->getPdExecutor(1), nullptr);
                ++visits;
            }
        });
    for (int round = 0; round < 200; ++round) {
        auto owned = std::make_unique<PdExecutorRegistry>(nullptr);
        const long before = visits;
        gate.open(*owned);
        while (visits == before)
            std::this_thread::yield();
        gate.close();
        owned.reset();
    }
    done = true;
    for (std::thread& visitor : visitors)
        visitor.join();
    EXPECT_GE(visits, 200);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
