/// The two ways in which a command fails. The messages are for the user: one sentence, no trailing full stop.
#pragma once

#include <stdexcept>

namespace Host {

/// The command line asks for something that is not accepted: exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What was asked could not be done: exit status 1.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Host
