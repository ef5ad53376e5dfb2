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
        requires(!std::is_same_v<std::remove_cvref_t<Callable>, UniqueFunction> &&
                 std::is_invocable_r_v<Result, std::remove_cvref_t<Callable>&, Args...>)
    UniqueFunction(Callable&& callable)
        : target_(std::make_unique<Target<std::remove_cvref_t<Callable>>>(std::forward<Callable>(callable)))
    {}

    /// Whether there is a callable to call.
    explicit operator bool() const noexcept { return target_ != nullptr; }

    /// Calls it and passes its result and exceptions on. Requires one to be held.
    Result operator()(Args... args) { return target_->call(std::forward<Args>(args)...); }

private:
    struct Base {
        virtual ~Base() = default;
        virtual Result call(Args... args) = 0;
    };
    template <class Callable> struct Target final : Base {
        explicit Target(Callable&& callable) : callable_(std::move(callable)) {}
        explicit Target(const Callable& callable) : callable_(callable) {}
        Result call(Args... args) override { return callable_(std::forward<Args>(args)...); }
        Callable callable_;
    };
    std::unique_ptr<Base> target_;
};

} // namespace Kep
