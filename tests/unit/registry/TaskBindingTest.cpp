#include "registry/TaskBinding.h"

#include "Kep/Snmp/Exception.h"
#include "RegistryFixture.h"

#include <stdexcept>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WorkBinding : public WithFakes {
protected:
    ~WorkBinding() override { queue->withdrawAll(); }

    static bool execute(Kep::Tasks::Task& task)
    {
        Kep::Tasks::RunContext context;
        context.taskId = 77;
        return task.run(context);
    }

    TaskBinding binding;
    PdExecutor run{1, configOf("10.0.0.1", "10.0.0.9"), queue, binding};
};

TEST_F(WorkBinding, AProbeIsNamedAndDescribed)
{
    const auto task = binding.testIp(run, "10.0.0.7");
    EXPECT_EQ(task->name(), "Test IP");
    EXPECT_EQ(task->options().description, "PrinterDiscovery: 10.0.0.7");
}

TEST_F(WorkBinding, AContinuationIsNamedAndDescribed)
{
    const auto task = binding.testIpRanges(run, {{"10.0.1.3", "10.0.1.254"}, {"10.0.2.1", "10.0.2.254"}});
    EXPECT_EQ(task->name(), "Test IP ranges");
    EXPECT_EQ(task->options().description, "PrinterDiscovery: 10.0.1.3-10.0.1.254,10.0.2.1-10.0.2.254,");
}

TEST_F(WorkBinding, RangesAreDescribedAsTheyAre)
{
    EXPECT_EQ(binding.testIpRanges(run, {{"10.0.0.9", "10.0.0.1"}})->options().description,
              "PrinterDiscovery: 10.0.0.9-10.0.0.1,");
}

TEST_F(WorkBinding, NothingHappensUntilATaskRuns)
{
    binding.testIp(run, "10.0.0.7");
    binding.testIpRanges(run, {{"10.0.0.1", "10.0.0.1"}});
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(WorkBinding, AProbeProbesItsAddressAndReportsSuccess)
{
    EXPECT_TRUE(execute(*binding.testIp(run, "10.0.0.7")));
    EXPECT_EQ(entered("open 10.0.0.7"), 1U);
    EXPECT_EQ(run.snapshot().step, 1U);
}

TEST_F(WorkBinding, AContinuationSweepsItsRangesWithoutExcludesAndReportsSuccess)
{
    EXPECT_TRUE(execute(*binding.testIpRanges(run, {{"10.0.0.1", "10.0.0.2"}, {"10.0.1.1", "10.0.1.1"}})));
    EXPECT_THAT(queue->descriptions("Test IP"),
                ElementsAre("PrinterDiscovery: 10.0.0.1", "PrinterDiscovery: 10.0.0.2", "PrinterDiscovery: 10.0.1.1"));
}

TEST_F(WorkBinding, TasksOfAStoppedRunStillReportSuccess)
{
    run.stop();
    EXPECT_TRUE(execute(*binding.testIp(run, "10.0.0.7")));
    EXPECT_TRUE(execute(*binding.testIpRanges(run, {{"10.0.0.1", "10.0.0.2"}})));
    EXPECT_EQ(run.snapshot().step, 0U);
    EXPECT_THAT(queue->submissions(), IsEmpty());
}

TEST_F(WorkBinding, ExceptionsOfAContinuationReachTheQueue)
{
    queue->failSubmission(1);
    EXPECT_THROW(execute(*binding.testIpRanges(run, {{"10.0.0.1", "10.0.0.1"}})), Kep::GenericException);
}

TEST_F(WorkBinding, ExceptionsOfAProbeReachTheQueue)
{
    snmp.agent("10.0.0.7").onOpen({Fakes::throwing(std::logic_error("no SNMP failure"))});
    EXPECT_THROW(execute(*binding.testIp(run, "10.0.0.7")), std::logic_error);
}

TEST_F(WorkBinding, TasksAreSubmittedToTheGroupWithPriorityZero)
{
    run.sweep({{"10.0.0.1", "10.0.3.254"}}, {});
    ASSERT_EQ(queue->submissions().size(), 257U);
    for (const auto& submission : queue->submissions()) {
        EXPECT_EQ(submission.group, "networkDiscovery");
        EXPECT_EQ(submission.priority, 0);
    }
    EXPECT_THAT(queue->descriptions("Test IP ranges"), ElementsAre("PrinterDiscovery: 10.0.1.3-10.0.3.254,"));
}

TEST_F(WorkBinding, BothKindsLeaveThePendingListWhenTheyFinish)
{
    run.sweep({{"10.0.0.1", "10.0.3.254"}}, {});
    EXPECT_TRUE(run.hasPendingTasks());
    for (const std::uint32_t id : queue->unfinished()) {
        EXPECT_TRUE(run.hasPendingTasks());
        queue->finish(id);
    }
    EXPECT_FALSE(run.hasPendingTasks());
}

TEST_F(WorkBinding, OnlyTheIdOfAFinishCounts)
{
    run.sweep({{"10.0.0.1", "10.0.0.2"}}, {});
    const auto stranger = binding.testIp(run, "10.0.0.1");
    Kep::Tasks::FinishContext context;
    context.taskId = 4711;
    context.ran = context.succeeded = true;
    stranger->finish(context);
    EXPECT_TRUE(run.hasPendingTasks());

    const std::vector<std::uint32_t> ids = queue->unfinished();
    for (const std::uint32_t id : ids) {
        context = {};
        context.taskId = id;
        binding.testIpRanges(run, {})->finish(context);
    }
    EXPECT_FALSE(run.hasPendingTasks());
}

} // namespace
} // namespace PrinterDiscoveryPlugin
