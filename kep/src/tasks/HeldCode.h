/// The libraries that tasks are code of.
#pragma once

#include <memory>

namespace Kep {

/// Keeps the library that `address` lies in loaded as long as the result or a copy of it lives, if the system has to be
/// told; elsewhere the result is empty. The last copy must not go while code of that library runs on the thread, unless
/// somebody else keeps it loaded; the library may detach then, on that thread. Any thread; takes the system's lock of
/// loaded libraries. Throws `std::bad_alloc`.
std::shared_ptr<const void> holdCode(const void* address);

} // namespace Kep
