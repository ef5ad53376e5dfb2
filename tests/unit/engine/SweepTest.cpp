// The sweep: which tasks it submits, in which order, and how.
#include "RunFixture.h"

#include "Kep/Exception.h"
#include "Kep/Net.h"

#include <algorithm>
#include <random>
#include <thread>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

const std::string prefix = "PrinterDiscovery: ";

class Sweep : public RunTest {
protected:
    /// Addresses of the "Test IP" tasks, in order.
    std::vector<std::string> addresses() const { return items("Test IP"); }

    /// Range texts of the "Test IP ranges" tasks, in order.
    std::vector<std::string> continuations() const { return items("Test IP ranges"); }

    /// Runs and finishes the oldest continuation, and nothing else; false when there is none.
    bool continueOnce()
    {
        const auto waiting = queue->waiting();
        for (const auto& submission : queue->submissions()) {
            if (submission.name != "Test IP ranges" ||
                !std::binary_search(waiting.begin(), waiting.end(), submission.id))
                continue;
            queue->complete(submission.id);
            return true;
        }
        return false;
    }

private:
    std::vector<std::string> items(const std::string& name) const
    {
        std::vector<std::string> texts = queue->descriptions(name);
        for (std::string& text : texts) {
            EXPECT_TRUE(text.starts_with(prefix)) << text;
            text.erase(0, prefix.size());
        }
        return texts;
    }
};

std::vector<std::string> everyAddress(const std::string& from, const std::string& to)
{
    unsigned long first = 0;
    unsigned long last = 0;
    Kep::Net::parseIpAddress(from, first);
    Kep::Net::parseIpAddress(to, last);
    std::vector<std::string> texts;
    for (unsigned long address = first; address <= last; ++address) {
        if (address % 256 != 0 && address % 256 != 255)
            texts.push_back(Kep::Net::formatIpAddress(static_cast<std::uint32_t>(address)));
    }
    return texts;
}

TEST_F(Sweep, WholeBlockIsOneSlice)
{
    EXPECT_EQ(sweep("192.168.1.0", "192.168.1.255"), 254u);
    EXPECT_EQ(addresses(), everyAddress("192.168.1.1", "192.168.1.254"));
    EXPECT_THAT(continuations(), IsEmpty());
}

TEST_F(Sweep, LargeRangeIsCutAfter256Addresses)
{
    EXPECT_EQ(sweep("10.0.0.1", "10.0.3.254"), 4u * 254);
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_EQ(addresses(), everyAddress("10.0.0.1", "10.0.1.2"));
    EXPECT_THAT(queue->descriptions("Test IP ranges"), ElementsAre("PrinterDiscovery: 10.0.1.3-10.0.3.254,"));
}

TEST_F(Sweep, ContinuationComesAfterTheAddressesOfItsSlice)
{
    sweep("10.0.0.1", "10.0.3.254");
    EXPECT_EQ(queue->submissions().back().name, "Test IP ranges");
    EXPECT_THAT(queue->submissions(), SizeIs(257));
}

TEST_F(Sweep, RangesAfterTheLimitGoToTheSameContinuation)
{
    run().sweep({{"10.0.2.1", "10.0.2.254"}, {"10.0.0.1", "10.0.1.254"}, {"10.0.4.0", "10.0.4.255"}}, {});
    EXPECT_THAT(continuations(), ElementsAre("10.0.1.3-10.0.1.254,10.0.2.1-10.0.2.254,10.0.4.0-10.0.4.255,"));
}

TEST_F(Sweep, LimitReachedAtTheEndOfARangeHandsTheNextOnWhole)
{
    run().sweep({{"10.0.0.1", "10.0.1.2"}, {"10.0.2.1", "10.0.2.1"}}, {});
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_THAT(continuations(), ElementsAre("10.0.2.1-10.0.2.1,"));
}

TEST_F(Sweep, LastAddressOfARangeIsLetThroughAfterTheLimit)
{
    sweep("10.0.0.1", "10.0.1.3");
    EXPECT_EQ(addresses(), everyAddress("10.0.0.1", "10.0.1.3"));
    EXPECT_THAT(addresses(), SizeIs(257));
    EXPECT_THAT(continuations(), IsEmpty());
}

TEST_F(Sweep, OnlyTheLastAddressIsLetThrough)
{
    sweep("10.0.0.1", "10.0.1.4");
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_THAT(continuations(), ElementsAre("10.0.1.3-10.0.1.4,"));
}

TEST_F(Sweep, AddressesThatAreNeverProbedArePassedOverBeforeTheLimitIsLookedAt)
{
    // The 256th address is 10.0.0.254; .255 and .0 follow, and the rest begins behind them.
    run().sweep({{"9.0.0.1", "9.0.0.2"}, {"10.0.0.1", "10.0.1.9"}}, {});
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_THAT(continuations(), ElementsAre("10.0.1.1-10.0.1.9,"));
}

TEST_F(Sweep, NothingIsHandedOnWhenOnlyAddressesThatAreNeverProbedAreLeft)
{
    run().sweep({{"9.0.0.1", "9.0.0.2"}, {"10.0.0.1", "10.0.1.0"}}, {});
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_THAT(continuations(), IsEmpty());
}

TEST_F(Sweep, RangesOfOneAddressAfterTheLimitAreNotLetThrough)
{
    run().sweep({{"10.0.0.1", "10.0.1.3"}, {"10.0.1.5", "10.0.1.5"}}, {});
    EXPECT_THAT(addresses(), SizeIs(257));
    EXPECT_THAT(continuations(), ElementsAre("10.0.1.5-10.0.1.5,"));
}

TEST_F(Sweep, ReversedRangeBelowTheLimitSubmitsNothing)
{
    EXPECT_EQ(sweep("10.0.0.9", "10.0.0.1"), 9u);
    EXPECT_THAT(queue->submissions(), IsEmpty());
}

TEST_F(Sweep, ReversedRangeAfterTheLimitIsHandedOnAsItIs)
{
    run().sweep({{"10.0.0.1", "10.0.1.2"}, {"10.0.9.9", "10.0.9.1"}}, {});
    EXPECT_THAT(continuations(), ElementsAre("10.0.9.9-10.0.9.1,"));
    EXPECT_TRUE(continueOnce());
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_FALSE(continueOnce());
}

TEST_F(Sweep, RangeThatEndsAtTheVeryTopGoesOnFromZero)
{
    sweep("255.255.255.253", "255.255.255.255");
    const auto swept = addresses();
    ASSERT_THAT(swept, SizeIs(256));
    EXPECT_EQ(swept[0], "255.255.255.253");
    EXPECT_EQ(swept[1], "255.255.255.254");
    EXPECT_EQ(swept[2], "0.0.0.1");
    EXPECT_EQ(swept[255], "0.0.0.254");
    EXPECT_THAT(continuations(), ElementsAre("0.0.1.1-255.255.255.255,"));
}

TEST_F(Sweep, TouchingRangesAreSweptOneAfterTheOther)
{
    run().sweep({{"10.0.0.3", "10.0.0.4"}, {"10.0.0.1", "10.0.0.2"}}, {});
    EXPECT_THAT(addresses(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"));
}

TEST_F(Sweep, ExcludedAddressesAreNotSubmitted)
{
    EXPECT_EQ(run().sweep({{"10.0.0.1", "10.0.0.5"}}, {{"10.0.0.2", "10.0.0.4"}}), 2u);
    EXPECT_THAT(addresses(), ElementsAre("10.0.0.1", "10.0.0.5"));
}

TEST_F(Sweep, OnAStoppedRunReturnsZeroAndSubmitsNothing)
{
    run().stop();
    EXPECT_EQ(sweep("10.0.0.1", "10.0.0.9"), 0u);
    EXPECT_THAT(queue->submissions(), IsEmpty());
}

TEST_F(Sweep, StopAmidASliceLetsItBeFinished)
{
    std::thread stopper;
    journal.during("submit Test IP", [&] {
        if (!stopper.joinable()) // from another thread, for the mutex is held here
            stopper = std::thread([this] { run().stop(); });
    });
    sweep("10.0.0.1", "10.0.3.254");
    stopper.join();
    EXPECT_THAT(addresses(), SizeIs(256));
    EXPECT_THAT(continuations(), SizeIs(1));
    queue->completeAll();
    EXPECT_THAT(queue->submissions(), SizeIs(257));
    EXPECT_EQ(step(), 0u);
}

TEST_F(Sweep, DoesNotChangeTheStepOrTheTotal)
{
    run().resetProgress(5);
    sweep("10.0.0.1", "10.0.3.254");
    continueOnce();
    EXPECT_EQ(step(), 0u);
    EXPECT_EQ(run().snapshot().total, 5u);
}

TEST_F(Sweep, TasksGoToTheGroupOfNetworkDiscoveryWithPriorityZero)
{
    sweep("10.0.0.1", "10.0.3.254");
    EXPECT_THAT(queue->submissions(), Each(AllOf(Field(&Fakes::FakeTaskQueue::Submission::group, "networkDiscovery"),
                                                 Field(&Fakes::FakeTaskQueue::Submission::priority, 0))));
}

TEST_F(Sweep, EverySubmissionIsMadeUnderTheMutex)
{
    journal.watch(run());
    sweep("10.0.0.1", "10.0.1.9");
    EXPECT_THAT(queue->submissions(), SizeIs(257));
    EXPECT_THAT(queue->submissions(), Each(Field(&Fakes::FakeTaskQueue::Submission::runMutexFree, false)));
}

TEST_F(Sweep, MutexIsFreeAfterwards)
{
    sweep("10.0.0.1", "10.0.0.9");
    EXPECT_TRUE(Fakes::isMutexFree(run()));
}

TEST_F(Sweep, ListOfPendingTasksIsNeverEmptyBetweenSlices)
{
    sweep("10.0.0.1", "10.0.9.254");
    for (int slice = 1; slice < 10; ++slice) {
        auto tasks = queue->waiting();
        const std::uint32_t continuation = tasks.back();
        tasks.pop_back();
        for (const std::uint32_t id : tasks)
            queue->finish(id);
        EXPECT_EQ(state(), 2u) << "before slice " << slice;
        queue->run(continuation);
        queue->finish(continuation);
        EXPECT_EQ(state(), 2u) << "after slice " << slice;
    }
    EXPECT_THAT(continuations(), SizeIs(9));
}

TEST_F(Sweep, FailedSubmissionPassesAndWhatWasSubmittedStays)
{
    queue->failSubmission(4);
    EXPECT_THROW(sweep("10.0.0.1", "10.0.0.9"), Kep::GenericException);
    EXPECT_THAT(addresses(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3"));
    EXPECT_TRUE(run().hasPendingTasks());
    EXPECT_TRUE(Fakes::isMutexFree(run()));
    queue->completeAll();
    EXPECT_EQ(step(), 3u);
    EXPECT_FALSE(run().hasPendingTasks());
}

TEST_F(Sweep, FailedSubmissionOfTheContinuationPasses)
{
    queue->failSubmission(257);
    EXPECT_THROW(sweep("10.0.0.1", "10.0.3.254"), Kep::GenericException);
    EXPECT_THAT(addresses(), SizeIs(256));
}

TEST_F(Sweep, FailureOfAContinuationPassesOutOfItsTask)
{
    sweep("10.0.0.1", "10.0.3.254");
    queue->failSubmission(1);
    EXPECT_THROW(continueOnce(), Kep::GenericException);
}

/// Random well-formed includes and excludes of up to some slices, and the addresses that are to be probed.
class RandomSweep {
public:
    explicit RandomSweep(unsigned seed) : engine_(seed) {}

    void choose()
    {
        const std::uint32_t start = pick({0x0a000000, 0x0a0000f3, 0, 0xfffff000});
        include_ = texts(start, 1 + upTo(3));
        exclude_ = texts(start, upTo(6));
    }

    const std::vector<IpRangeText>& include() const { return include_; }
    const std::vector<IpRangeText>& exclude() const { return exclude_; }
    std::uint32_t upTo(std::uint32_t limit) { return std::uniform_int_distribution<std::uint32_t>(0, limit)(engine_); }

    std::vector<std::string> expected() const
    {
        std::vector<std::string> texts;
        for (std::uint64_t address = lowest_; address <= highest_; ++address) {
            const bool edge = address % 256 == 0 || address % 256 == 255;
            if (!edge && within(include_, address) && !within(exclude_, address))
                texts.push_back(Kep::Net::formatIpAddress(static_cast<std::uint32_t>(address)));
        }
        return texts;
    }

private:
    std::uint32_t pick(std::vector<std::uint32_t> values)
    {
        return values.at(upTo(static_cast<std::uint32_t>(values.size()) - 1));
    }

    /// Ranges within 3,000 addresses, none ending at the very top.
    std::vector<IpRangeText> texts(std::uint32_t start, std::uint32_t count)
    {
        lowest_ = start;
        highest_ = start + 3000;
        std::vector<IpRangeText> ranges;
        for (; count > 0; --count) {
            const std::uint32_t from = start + upTo(3000);
            const std::uint32_t to = std::min(from + upTo(pick({3, 40, 1500})), start + 3000);
            ranges.push_back({Kep::Net::formatIpAddress(from), Kep::Net::formatIpAddress(to)});
        }
        return ranges;
    }

    static bool within(const std::vector<IpRangeText>& ranges, std::uint64_t address)
    {
        return std::any_of(ranges.begin(), ranges.end(), [&](const IpRangeText& text) {
            const IpRange range = parseRange(text);
            return range.from <= address && address <= range.to;
        });
    }

    std::mt19937 engine_;
    std::uint64_t lowest_ = 0;
    std::uint64_t highest_ = 0;
    std::vector<IpRangeText> include_;
    std::vector<IpRangeText> exclude_;
};

TEST_F(Sweep, SubmitsEveryAddressOnceAndNoneThatIsExcluded)
{
    RandomSweep random(11);
    std::size_t slices = 0;
    for (int i = 0; i < 200; ++i) {
        random.choose();
        const std::vector<std::string> expected = random.expected();
        EXPECT_EQ(run().sweep(random.include(), random.exclude()), expected.size());
        while (continueOnce())
            ++slices;
        ASSERT_EQ(addresses(), expected) << "case " << i;
        discard();
        queue = std::make_shared<Fakes::FakeTaskQueue>();
    }
    EXPECT_GT(slices, 150u);
}

TEST_F(Sweep, StopBetweenSlicesLeavesABeginningSubmittedOnce)
{
    RandomSweep random(12);
    int cut = 0;
    for (int i = 0; i < 200; ++i) {
        random.choose();
        const std::vector<std::string> expected = random.expected();
        run().sweep(random.include(), random.exclude());
        for (std::uint32_t slices = random.upTo(4); slices > 0; --slices)
            continueOnce();
        run().stop();
        const std::vector<std::string> submitted = addresses();
        while (continueOnce()) {
        }
        ASSERT_EQ(addresses(), submitted);
        ASSERT_LE(submitted.size(), expected.size());
        ASSERT_TRUE(std::equal(submitted.begin(), submitted.end(), expected.begin())) << "case " << i;
        cut += submitted.size() < expected.size() ? 1 : 0;
        discard();
        queue = std::make_shared<Fakes::FakeTaskQueue>();
    }
    EXPECT_GT(cut, 20);
}

TEST_F(Sweep, NoSliceIsLargerThan257Tasks)
{
    RandomSweep random(13);
    for (int i = 0; i < 50; ++i) {
        random.choose();
        run().sweep(random.include(), random.exclude());
        std::size_t before = 0;
        do {
            ASSERT_LE(addresses().size() - before, 257u);
            before = addresses().size();
        } while (continueOnce());
        discard();
        queue = std::make_shared<Fakes::FakeTaskQueue>();
    }
}

} // namespace
} // namespace PrinterDiscoveryPlugin
