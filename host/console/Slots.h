/// A bound on what goes on at once.
#pragma once

#include <atomic>
#include <cstddef>

namespace Host {

/// Any thread.
class Slots {
public:
    explicit Slots(std::size_t count) : free_(count) {}

    /// Takes a slot, if one is free, until it is destroyed.
    class Hold {
    public:
        explicit Hold(Slots& slots) : slots_(slots), held_(slots.take()) {}
        ~Hold()
        {
            if (held_)
                ++slots_.free_;
        }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        explicit operator bool() const { return held_; }

    private:
        Slots& slots_;
        const bool held_;
    };

private:
    bool take()
    {
        std::size_t free = free_;
        while (free > 0)
            if (free_.compare_exchange_weak(free, free - 1))
                return true;
        return false;
    }

    std::atomic<std::size_t> free_;
};

} // namespace Host
