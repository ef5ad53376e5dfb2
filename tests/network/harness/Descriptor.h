/// A file descriptor that is closed with its object.
#pragma once

#include <utility>

namespace NetworkTests {

class Descriptor {
public:
    /// Takes ownership; -1 stands for none.
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        reset();
        number_ = std::exchange(other.number_, -1);
        return *this;
    }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    void reset();

private:
    int number_;
};

} // namespace NetworkTests
