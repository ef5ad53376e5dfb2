#include "Kep/ServiceLocator.h"

#include "tests/unit/kep/base/Messages.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace {

struct Tool {
    int number = 0;
};
struct OtherTool {};

class Locator : public testing::Test {
protected:
    void registerTool(int number)
    {
        locator_.registerFactory<Tool>([number] { return std::make_shared<Tool>(Tool{number}); });
    }

    Kep::ServiceLocator locator_;
};

TEST_F(Locator, EachGetMakesAnObjectOfItsOwn)
{
    registerTool(5);
    const auto first = locator_.get<Tool>();
    const auto second = locator_.get<Tool>();
    EXPECT_EQ(first->number, 5);
    EXPECT_NE(first, second);
    EXPECT_EQ(first.use_count(), 1);
}

TEST_F(Locator, ALaterFactoryReplacesTheEarlierOne)
{
    registerTool(1);
    registerTool(2);
    EXPECT_EQ(locator_.get<Tool>()->number, 2);
}

TEST_F(Locator, AMissingFactoryIsNamedByTheTypesRunTimeName)
{
    registerTool(1);
    EXPECT_THROW(locator_.get<OtherTool>(), Kep::NoFactoryException);
    EXPECT_EQ(messageOf([this] { locator_.get<OtherTool>(); }),
              std::string("Factory: no factory for the reference ") + typeid(OtherTool).name());
}

TEST_F(Locator, AFactoryOfAnotherTypeIsInvalid)
{
    locator_.store(typeid(Tool).name(), Kep::ServiceLocator::Factory<OtherTool>([] { return nullptr; }));
    EXPECT_EQ(messageOf([this] { locator_.get<Tool>(); }),
              std::string("Factory: invalid factory type for the reference ") + typeid(Tool).name());
    try {
        locator_.get<Tool>();
        FAIL() << "nothing thrown";
    } catch (const Kep::NoFactoryException&) {
        FAIL() << "there is a factory, of the wrong type";
    } catch (const Kep::GenericException&) {
    }
}

TEST_F(Locator, WhatAFactoryThrowsPasses)
{
    locator_.registerFactory<Tool>([]() -> std::shared_ptr<Tool> { throw std::out_of_range("x"); });
    EXPECT_THROW(locator_.get<Tool>(), std::out_of_range);
}

TEST_F(Locator, NoLockIsHeldWhileAFactoryRuns)
{
    locator_.registerFactory<Tool>([this] {
        registerTool(9); // would wait for ever for a lock that is held
        return locator_.get<Tool>();
    });
    EXPECT_EQ(locator_.get<Tool>()->number, 9);
}

TEST_F(Locator, AReplacedFactoryIsDestroyedOutsideTheLock)
{
    struct LooksUpWhenDestroyed {
        explicit LooksUpWhenDestroyed(Kep::ServiceLocator& where) : locator(where) {}
        Kep::ServiceLocator& locator;
        ~LooksUpWhenDestroyed() { EXPECT_NO_THROW(locator.get<Tool>()); }
    };
    auto last = std::make_shared<LooksUpWhenDestroyed>(locator_);
    registerTool(1);
    locator_.registerFactory<Tool>([last] { return std::make_shared<Tool>(); });
    last.reset();
    registerTool(3);
    EXPECT_EQ(locator_.get<Tool>()->number, 3);
}

TEST_F(Locator, ManyThreadsRegisterAndGet)
{
    registerTool(0);
    std::vector<std::thread> threads;
    for (int number = 1; number <= 4; ++number) {
        threads.emplace_back([this, number] {
            for (int round = 0; round < 200; ++round) {
                registerTool(number);
                EXPECT_GE(locator_.get<Tool>()->number, 1);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

} // namespace
