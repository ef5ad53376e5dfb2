/// Many threads with small stacks.
#pragma once

#include <cstddef>
#include <functional>

/// Runs `action` with 0 to `count` - 1 at once, each on a thread of its own with a stack of 128 KiB, and waits for
/// all.
void onSmallStacks(std::size_t count, const std::function<void(std::size_t)>& action);
