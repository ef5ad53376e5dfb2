/// Process-wide objects that threads of the task queue use until the very end of the process.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace Kep {

/// Holds a `T` that is made with the holder and never destroyed. A static object would be destroyed when the process
/// exits, while tasks that are still to be waited for use it: those of a plug-in end only when that is detached, which
/// comes later.
template <class T> class Immortal {
public:
    template <class... Args> explicit Immortal(Args&&... args) { ::new (&storage_) T(std::forward<Args>(args)...); }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() noexcept { return *std::launder(reinterpret_cast<T*>(&storage_)); }

private:
    alignas(T) std::byte storage_[sizeof(T)];
};

} // namespace Kep
