/// A callable that owns what it captures and can be moved but not copied.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace Kep {

template <class Signature> class UniqueFunction;

/// Holds one callable, or none. Not synchronised: one thread at a time. The callable is destroyed with the object,
/// or when another one is moved in.
template <class Result, class... Args> class UniqueFunction<Result(Args...)> {
public:
    UniqueFunction() noexcept = default;

    /// Takes ownership of `callable`. Throws what moving it throws, or `std::bad_alloc`.
    template <class Callable>
        requires(!std::is_same_v<Callable, UniqueFunction> && std::is_invocable_r_v<Result, Callable&, Args...>)
    UniqueFunction(Callable callable) : target_(std::make_unique<Target<Callable>>(std::move(callable))) {}

    /// Whether there is a callable to call.
    explicit operator bool() const noexcept { return target_ != nullptr; }

    /// Calls it and passes its result and exceptions on. Requires one to be held.
    Result operator()(Args... args) { return target_->call(std::forward<Args>(args)...); }

    /// An address in the library that the callable is code of; null when none is held.
    const void* code() const noexcept { return target_ ? target_->code() : nullptr; }

private:
    struct Base {
        virtual ~Base() = default;
        virtual Result call(Args... args) = 0;
        virtual const void* code() const noexcept = 0;
    };
    template <class Callable> struct Target final : Base {
        explicit Target(Callable&& callable) : callable_(std::move(callable)) {}
        Result call(Args... args) override { return callable_(std::forward<Args>(args)...); }
        const void* code() const noexcept override
        {
            static const char here = 0;
            return &here;
        }
        Callable callable_;
    };
    std::unique_ptr<Base> target_;
};

} // namespace Kep
