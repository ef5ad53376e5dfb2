// Memory that runs out while work is submitted: a task that is queued is never missing from the pending list. A
// program of its own, because it replaces the allocator.
#include "engine/PdExecutor.h"
#include "fakes/FakeTime.h"
#include "registry/TaskBinding.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long unlimited = std::numeric_limits<long>::max();

/// How many allocations still succeed; none once it is 0.
std::atomic<long> allocationsLeft = unlimited;

void* allocate(std::size_t size)
{
    if (allocationsLeft != unlimited && allocationsLeft-- <= 0) {
        allocationsLeft = 0;
        throw std::bad_alloc();
    }
    if (void* const block = std::malloc(size == 0 ? 1 : size)) // NOLINT(cppcoreguidelines-no-malloc)
        return block;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

namespace PrinterDiscoveryPlugin {
namespace {

/// Accepts tasks without memory of its own.
class FixedQueue final : public Kep::Tasks::IManager {
public:
    std::uint32_t submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string&, int) override
    {
        tasks_.at(count_) = task;
        if (failsAfterAcceptance)
            allocationsLeft = 0;
        return static_cast<std::uint32_t>(++count_);
    }

    std::size_t count() const { return count_; }

    /// Finishes the tasks, oldest first, and tells whether the run knew of each until its end.
    bool finishAll(const PdExecutor& run)
    {
        bool known = true;
        for (std::size_t i = 0; i < count_; ++i) {
            known = known && run.hasPendingTasks();
            Kep::Tasks::FinishContext context{static_cast<std::uint32_t>(i + 1), true, true};
            tasks_.at(i)->finish(context);
            tasks_.at(i) = nullptr;
        }
        return known && !run.hasPendingTasks();
    }

    bool failsAfterAcceptance = false;

private:
    std::array<std::shared_ptr<Kep::Tasks::Task>, 1000> tasks_;
    std::size_t count_ = 0;
};

class MemoryOfPendingTasks : public testing::Test {
protected:
    ~MemoryOfPendingTasks() override { allocationsLeft = unlimited; }

    Fakes::FakeTime time;
    const TaskBinding binding;
    const DiscoveryConfig config;
    const std::shared_ptr<FixedQueue> queue = std::make_shared<FixedQueue>();
};

TEST_F(MemoryOfPendingTasks, AcceptedTaskNeedsNone)
{
    PdExecutor run(1, config, queue, binding);
    queue->failsAfterAcceptance = true;
    for (int i = 0; i < 900; ++i) {
        std::vector<IpRangeText> one = {{"10.0.0.1", "10.0.0.1"}};
        EXPECT_NO_THROW(run.sweep(std::move(one), {}));
        allocationsLeft = unlimited;
    }
    EXPECT_EQ(queue->count(), 900u);
    EXPECT_TRUE(queue->finishAll(run));
}

TEST_F(MemoryOfPendingTasks, FailureAtAnyPointLosesNoTask)
{
    long allocations = 0;
    int failures = 0;
    bool complete = false;
    while (!complete) {
        const auto fresh = std::make_shared<FixedQueue>();
        PdExecutor run(1, config, fresh, binding);
        std::vector<IpRangeText> some = {{"10.0.0.1", "10.0.0.40"}};
        allocationsLeft = allocations++;
        try {
            run.sweep(std::move(some), {});
            complete = true;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        allocationsLeft = unlimited;
        EXPECT_EQ(run.hasPendingTasks(), fresh->count() > 0);
        ASSERT_TRUE(fresh->finishAll(run)) << "allocation " << allocations;
    }
    EXPECT_GT(failures, 100);
}

TEST_F(MemoryOfPendingTasks, ListGrowsGeometrically)
{
    // Were it to grow by one each time, every submission would allocate for the list.
    PdExecutor run(1, config, queue, binding);
    const auto allocationsOf = [&] {
        std::vector<IpRangeText> one = {{"10.0.0.1", "10.0.0.1"}};
        allocationsLeft = unlimited - 1;
        run.sweep(std::move(one), {});
        const long used = unlimited - 1 - allocationsLeft;
        allocationsLeft = unlimited;
        return used;
    };
    allocationsOf(); // makes the first room
    const long usual = allocationsOf();
    int growths = 0;
    for (int i = 0; i < 900; ++i)
        growths += allocationsOf() > usual ? 1 : 0;
    EXPECT_GT(growths, 0);
    EXPECT_LT(growths, 12);
    EXPECT_TRUE(queue->finishAll(run));
}

} // namespace
} // namespace PrinterDiscoveryPlugin
