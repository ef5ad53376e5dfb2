/// What ends the program: an interrupt or termination signal, the end of its standard input, or a time without
/// requests.
#pragma once

#include "lab/LoopbackSocket.h"

#include <chrono>
#include <memory>
#include <optional>

namespace Lab {

class Lifetime {
public:
    enum class Event { Requests, End, Silence };

    /// From here on an interrupt (SIGINT) or termination (SIGTERM) signal to the process is an `End` instead of a
    /// sudden death, for threads started later too; and with `untilStandardInputCloses` so is the end of standard
    /// input, whose bytes are read and discarded. Create one, before other threads, and have one thread use it.
    /// Throws `std::system_error`.
    explicit Lifetime(bool untilStandardInputCloses);
    ~Lifetime();

    /// Waits for requests at `socket` or an end, which goes before; `Silence` when neither comes in `patience`, which
    /// may be none. Throws `std::system_error`.
    Event wait(const LoopbackSocket& socket, std::optional<std::chrono::milliseconds> patience);

private:
    class System;
    std::unique_ptr<System> _system;
};

} // namespace Lab
