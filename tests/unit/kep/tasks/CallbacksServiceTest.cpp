#include "Kep/Exception.h"
#include "tests/unit/kep/tasks/QueueFixture.h"

#include <future>

namespace {

using namespace Kep::Testing;

class TaskAccount : public QueueTest {
protected:
    void SetUp() override { makeQueue(4); }
};

// An object that waits at a gate when it is destroyed.
class SlowToDestroy {
public:
    SlowToDestroy(Gate& gate, std::atomic<bool>& destroyed) : gate_(gate), destroyed_(destroyed) {}
    ~SlowToDestroy()
    {
        gate_.pass();
        destroyed_ = true;
    }
    SlowToDestroy(const SlowToDestroy&) = delete;
    SlowToDestroy& operator=(const SlowToDestroy&) = delete;

private:
    Gate& gate_;
    std::atomic<bool>& destroyed_;
};

TEST_F(TaskAccount, ClosingWaitsUntilCapturesAreDestroyed)
{
    std::atomic<bool> destroyed{false};
    submit([this, held = std::make_shared<SlowToDestroy>(gate_, destroyed)] { return secondGate_.pass(), true; });
    secondGate_.open(); // only now may the task end: the submitter has let go of it
    auto closed = std::async(std::launch::async, [this, &destroyed] {
        account_->close();
        return destroyed.load();
    });
    ASSERT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
    EXPECT_EQ(closed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    gate_.open();
    EXPECT_TRUE(closed.get());
    EXPECT_TRUE(destroyed);
}

TEST_F(TaskAccount, AClosedAccountTakesNoTaskAndNothingIsQueued)
{
    account_->close();
    EXPECT_THROW(submitLogged("refused"), Kep::GenericException);
    EXPECT_EQ(queue_->figures().pending, 0U);
    account_->close();
    EXPECT_TRUE(log_.events().empty());
}

TEST_F(TaskAccount, AReopenedAccountTakesTasksAgain)
{
    account_->close();
    account_->reopen();
    submitLogged("task");
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"task ran"});
}

TEST_F(TaskAccount, ARunningTaskCannotSubmitToAClosedAccount)
{
    std::atomic<bool> refused{false};
    submit([&] {
        gate_.pass();
        try {
            submitLogged("late");
        } catch (const Kep::GenericException&) {
            refused = true;
        }
        return true;
    });
    auto closed = std::async(std::launch::async, [this] { account_->close(); });
    ASSERT_TRUE(eventually([&] { return !account_->enter() || (account_->leave(), false); }));
    gate_.open();
    closed.get();
    EXPECT_TRUE(refused);
    EXPECT_TRUE(log_.events().empty());
}

TEST_F(TaskAccount, AccountsOfTwoPluginsCloseApart)
{
    const auto other = std::make_shared<Kep::Platform::CallbacksService>();
    queue_->submit(task([this] { return gate_.pass(), true; }, [](auto&) {}), other);
    submitLogged("mine");
    account_->close();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"mine ran"});
    gate_.open();
    other->close();
}

} // namespace
