#include "Kep/Platform/Proxy/Tasks.h"

#include "Kep/Exception.h"
#include "base/CurrentCall.h"
#include "tasks/ServiceCaller.h"
#include "tests/unit/kep/tasks/QueueFixture.h"

#include <set>

namespace {

using namespace Kep::Testing;
using Kep::Host::Call;
using Kep::Platform::Proxy::Tasks::Proxy;

class TasksProxy : public testing::Test {
protected:
    ~TasksProxy() override { account_->close(); }

    std::uint32_t submit(
        std::function<void()> run, std::function<void(bool)> finish = [](bool) {})
    {
        const auto task = std::make_shared<Kep::Tasks::Task>(
            "a task", [work = std::move(run)](Kep::Tasks::RunContext&) { return work(), true; },
            [end = std::move(finish)](Kep::Tasks::FinishContext& context) { end(context.ran); });
        return proxy_.submit(task, "a group", 0);
    }

    Kep::Platform::LocalServiceCaller caller_;
    std::shared_ptr<Kep::Platform::CallbacksService> account_ = std::make_shared<Kep::Platform::CallbacksService>();
    Proxy proxy_{caller_, account_, "TaskQueue"};
};

TEST_F(TasksProxy, AnUnknownServiceIsNotFound)
{
    EXPECT_THROW(Proxy(caller_, account_, "Printing"), Kep::NotFoundException);
    EXPECT_THROW(Proxy(caller_, account_, ""), Kep::NotFoundException);
}

TEST_F(TasksProxy, ASubmittedTaskRuns)
{
    std::atomic<bool> ran{false};
    EXPECT_NE(submit([&] { ran = true; }), 0U);
    account_->close();
    EXPECT_TRUE(ran);
}

TEST_F(TasksProxy, SubmittingAfterTheAccountWasClosedThrows)
{
    account_->close();
    EXPECT_THROW(submit([] {}), Kep::GenericException);
}

TEST_F(TasksProxy, CallsHaveIdsOfTheirOwnAndNest)
{
    std::set<Kep::Host::CallId> ids;
    const Call outer;
    {
        const Call inner;
        EXPECT_EQ(Kep::currentCall(), inner.id());
        ids = {outer.id(), inner.id()};
    }
    EXPECT_EQ(Kep::currentCall(), outer.id());
    EXPECT_EQ(ids.size(), 2U);
    EXPECT_EQ(ids.count(0), 0U);
}

TEST_F(TasksProxy, AHostFollowsAndWithdrawsTheWorkOfACall)
{
    Gate gate;
    std::atomic<int> withdrawn{0};
    Kep::Host::CallId id = 0;
    {
        const Call call;
        id = call.id();
        submit([&] {
            gate.pass();
            submit([] {}, [&](bool ran) { withdrawn += ran ? 0 : 1; });
        });
    }
    ASSERT_TRUE(eventually([&] { return gate.waiting() == 1; }));
    EXPECT_EQ(Kep::Host::workOf(id).running, 1U);
    Kep::Host::withdraw(id);
    gate.open();
    EXPECT_TRUE(eventually([&] { return withdrawn == 1; }));
    EXPECT_TRUE(eventually([id] { return Kep::Host::workOf(id).running == 0; }));
}

} // namespace
