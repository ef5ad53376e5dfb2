/// What a test may do on this machine, and what becomes of it when it may not.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace NetworkTests {

/// Whether this is a run in which every test must run: the environment says CI=true.
bool nothingSkips();

/// Whether programs are started as root.
bool isRoot();

/// The value of an environment variable; empty when it is not set.
std::string environment(const char* name);

} // namespace NetworkTests

/// Leaves the test as skipped, with the reason, when `condition` does not hold; as failed where nothing may be skipped.
#define SKIP_UNLESS(condition, reason)                                                                                 \
    if (!(condition)) {                                                                                                \
        if (NetworkTests::nothingSkips()) {                                                                            \
            FAIL() << "nothing may be skipped here: " << (reason);                                                     \
        }                                                                                                              \
        GTEST_SKIP() << (reason);                                                                                      \
    }                                                                                                                  \
    static_assert(true)
