// The outside fails at each place in turn: sockets, threads, the task queue, a probe that throws what nobody knows.
// Runs end with a true status, and the plug-in is as good as new.
#include "HostFakes.h"
#include "World.h"

#include "Kep/Host/DataStore.h"
#include "plugin/include/PrinterDiscovery.h"
#include "tasks/TaskQueue.h"
#include "tests/unit/kep/datastore/FaultyFiles.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <sqlite3.h>

#include <atomic>
#include <system_error>

using nlohmann::json;

namespace Faults {
namespace {

using Kep::Testing::FaultyFiles;
using Kep::Testing::FileCall;
using Failure = std::function<void()>;

[[noreturn]] void systemFailure()
{
    throw std::system_error(std::make_error_code(std::errc::network_unreachable));
}

[[noreturn]] void foreignFailure()
{
    throw 42;
}

[[noreturn]] void standardFailure()
{
    throw std::logic_error("nobody expects this");
}

std::uint64_t callbacksThatThrew()
{
    return Kep::TaskQueue::process().figures().thrown;
}

class OutsideFailures : public WithWorld {
protected:
    static constexpr int addresses = 12;

    // A whole run during which the `nth` call of that kind fails; whether there were so many.
    static bool runWithFailure(SocketCall failing, int nth, const Failure& failure)
    {
        std::atomic<int> left{nth};
        const SocketHook hook([&](SocketCall call) {
            if (call == failing && --left == 0)
                failure();
        });
        EXPECT_EQ(start("c", addresses), success);
        EXPECT_TRUE(drains());
        return left <= 0;
    }

    // Every printer found is one, told in full but for what could not be asked.
    static void expectPrintersTrue(const json& found)
    {
        const json all = complete("c", addresses).at("printers");
        for (const json& printer : found.at("printers")) {
            json full;
            for (const json& each : all)
                if (each.at("ip") == printer.at("ip"))
                    full = each;
            ASSERT_TRUE(full.is_object()) << printer;
            for (const auto& [member, value] : printer.items())
                EXPECT_TRUE(value == full.at(member) || value.empty() || value == "") << printer;
        }
    }

    // Fails each call of that kind in turn; each time the run counts all hosts but `uncounted`.
    static void failEach(SocketCall failing, const Failure& failure, int uncounted)
    {
        int nth = 1;
        for (; runWithFailure(failing, nth, failure); ++nth) {
            const json found = finish("c");
            EXPECT_EQ(found.at("step"), addresses - uncounted);
            EXPECT_EQ(found.at("total"), addresses);
            expectPrintersTrue(found);
            EXPECT_EQ(openSockets(), 0U);
        }
        EXPECT_GT(nth, 1);
        EXPECT_EQ(finish("c"), complete("c", addresses)) << "the last run was not disturbed";
        expectSound();
    }
};

class SocketFailures : public OutsideFailures, public testing::WithParamInterface<SocketCall> {};

INSTANTIATE_TEST_SUITE_P(Calls, SocketFailures,
                         testing::Values(SocketCall::open, SocketCall::send, SocketCall::wait, SocketCall::receive));

TEST_P(SocketFailures, AreTheHostsAndCountAsProbed)
{
    const std::uint64_t before = callbacksThatThrew();
    failEach(GetParam(), systemFailure, 0);
    EXPECT_EQ(callbacksThatThrew(), before);
}

TEST_P(SocketFailures, OfAForeignKindLeaveTheHostUncounted)
{
    const std::uint64_t before = callbacksThatThrew();
    failEach(GetParam(), foreignFailure, 1);
    EXPECT_GT(callbacksThatThrew(), before) << "the queue counts what its tasks throw";
}

TEST_P(SocketFailures, OfAStandardKindThatIsNotExpectedDoSoToo)
{
    failEach(GetParam(), standardFailure, 1);
}

class NameFailures : public OutsideFailures, public testing::WithParamInterface<SocketCall> {};

INSTANTIATE_TEST_SUITE_P(Calls, NameFailures,
                         testing::Values(SocketCall::nodeOpen, SocketCall::nodeSend, SocketCall::nodeWait,
                                         SocketCall::nodeReceive));

TEST_P(NameFailures, LeaveAPrinterWithoutAName)
{
    ASSERT_TRUE(runWithFailure(GetParam(), 1, standardFailure));
    const json found = finish("c");
    EXPECT_EQ(found.at("step"), addresses);
    EXPECT_EQ(found.at("printers").size(), complete("c", addresses).at("printers").size());
    int nameless = 0;
    for (const json& printer : found.at("printers"))
        nameless += printer.at("hostname") == "";
    EXPECT_EQ(nameless, 1);
    expectPrintersTrue(found);
    expectSound();
}

TEST_P(NameFailures, OfAForeignKindLeaveThePrinterOut)
{
    ASSERT_TRUE(runWithFailure(GetParam(), 1, foreignFailure));
    const json found = finish("c");
    EXPECT_EQ(found.at("step"), addresses - 1);
    EXPECT_EQ(found.at("printers").size(), complete("c", addresses).at("printers").size() - 1);
    expectSound();
}

class SubmissionFailures : public OutsideFailures {
protected:
    static constexpr int twoSlices = 300;
    static constexpr int firstSlice = 257; // 256 addresses and what is left
};

TEST_F(SubmissionFailures, InTheFirstSliceFailTheStart)
{
    for (const int nth : {1, 2, 100, firstSlice - 1, firstSlice}) {
        failSubmission(static_cast<std::size_t>(nth));
        const json reply = json::parse(start("c", twoSlices));
        EXPECT_EQ(reply.at("code"), "internalServerError");
        EXPECT_EQ(reply.at("message"), "the queue takes no task");
        EXPECT_TRUE(drains());
        EXPECT_EQ(finish("c"), unknown("c"));
        expectSound();
    }
}

TEST_F(SubmissionFailures, InALaterSliceEndTheRunThere)
{
    failSubmission(firstSlice + 20);
    EXPECT_EQ(start("c", twoSlices), success);
    const json found = finish("c");
    const json all = complete("c", twoSlices);
    EXPECT_EQ(found.at("total"), all.at("total"));
    EXPECT_EQ(found.at("step"), 256 + 19) << "all that was submitted, and no more";
    expectSound();
}

TEST_F(SubmissionFailures, LeaveABlockingStartToFailAsWell)
{
    failSubmission(3);
    EXPECT_EQ(json::parse(call("startDiscoveryBlocking", runOf("c", twoSlices))).at("code"), "internalServerError");
    expectSound();
}

TEST_F(SubmissionFailures, DoNotKeepTheServiceFromStopping)
{
    failSubmission(200);
    start("c", twoSlices);
    EXPECT_EQ(call("stopService"), success);
    EXPECT_EQ(call("startService"), success);
    expectSound();
}

class ThreadFailures : public OutsideFailures {
protected:
    // Lets the workers of the queue, which end when they have been idle, not count.
    static void useUpThreads()
    {
        EXPECT_TRUE(drains());
        refuseThreads(true);
    }
};

TEST_F(ThreadFailures, LeaveTheWorkToTheThreadsThatThereAre)
{
    EXPECT_EQ(start("first", 1), success);
    finish("first");
    useUpThreads();
    EXPECT_EQ(start("c", addresses), success);
    EXPECT_EQ(finish("c"), complete("c", addresses));
    refuseThreads(false);
    expectSound();
}

TEST_F(ThreadFailures, DoNotKeepTheServiceFromStopping)
{
    useUpThreads();
    EXPECT_EQ(start("c", 300), success);
    EXPECT_EQ(call("stopService"), success);
    EXPECT_EQ(call("startService"), success);
    refuseThreads(false);
    expectSound();
}

class StoreFailures : public OutsideFailures {
protected:
    StoreFailures()
    {
        Kep::Host::DataStore(path_).set("services.PrinterDiscovery.oidDeviceType", ".1.3.6.1.2.1.25.3.2.1.2");
    }

    // Initialises the plug-in anew with the `nth` call of that kind on the store's file failing; its reply, or nothing
    // when there were not so many calls.
    std::string initWithFailure(FileCall failing, int nth) const
    {
        int left = nth;
        const FaultyFiles files(
            [&](FileCall call) { return call == failing && --left == 0 ? SQLITE_IOERR : SQLITE_OK; });
        dakPluginDeinit();
        const std::string reply = init(path_);
        return left <= 0 ? reply : std::string();
    }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(StoreFailures, AreSaidByTheInitialisationWhichMayBeTriedAgain)
{
    for (const FileCall failing : {FileCall::open, FileCall::read}) {
        int nth = 1;
        for (std::string reply = initWithFailure(failing, nth); !reply.empty();
             reply = initWithFailure(failing, ++nth)) {
            EXPECT_THAT(reply, testing::HasSubstr("\"state\":\"failed\""));
            EXPECT_THAT(reply, testing::HasSubstr("store.db"));
            EXPECT_EQ(json::parse(start("c", 1)).at("code"), "internalServerError");
            EXPECT_THAT(init(path_), testing::HasSubstr("\"state\":\"started\""));
        }
        EXPECT_GT(nth, 1);
    }
    expectSound();
}

} // namespace
} // namespace Faults
