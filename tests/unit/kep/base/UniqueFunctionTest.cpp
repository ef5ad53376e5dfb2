#include "Kep/UniqueFunction.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

TEST(UniqueFunction, HoldsCallablesThatCannotBeCopied)
{
    auto owned = std::make_unique<int>(41);
    Kep::UniqueFunction<int(int)> function = [owned = std::move(owned)](int more) { return *owned + more; };
    ASSERT_TRUE(static_cast<bool>(function));
    EXPECT_EQ(function(1), 42);
}

TEST(UniqueFunction, IsEmptyUntilGivenACallable)
{
    const Kep::UniqueFunction<void()> function;
    EXPECT_FALSE(static_cast<bool>(function));
}

TEST(UniqueFunction, DestroysItsCallableWithItselfAndWhenReplaced)
{
    const auto witness = std::make_shared<int>(0);
    {
        Kep::UniqueFunction<void()> function = [witness] {};
        EXPECT_EQ(witness.use_count(), 2);
        function = Kep::UniqueFunction<void()>([] {});
        EXPECT_EQ(witness.use_count(), 1);
        function = Kep::UniqueFunction<void()>([witness] {});
    }
    EXPECT_EQ(witness.use_count(), 1);
}

TEST(UniqueFunction, PassesReferencesAndExceptionsOn)
{
    Kep::UniqueFunction<void(int&)> increment = [](int& number) { ++number; };
    int number = 1;
    increment(number);
    EXPECT_EQ(number, 2);
    Kep::UniqueFunction<void()> failing = [] { throw std::runtime_error("x"); };
    EXPECT_THROW(failing(), std::runtime_error);
}

TEST(UniqueFunction, MovesButNeverCopies)
{
    static_assert(!std::is_copy_constructible_v<Kep::UniqueFunction<void()>>);
    Kep::UniqueFunction<int()> first = [calls = 0]() mutable { return ++calls; };
    EXPECT_EQ(first(), 1);
    Kep::UniqueFunction<int()> second = std::move(first);
    EXPECT_EQ(second(), 2);
}

} // namespace
