/// A run as clients see it, whether it is under way, has ended, or was kept from before a restart.
#pragma once

#include "host/Addresses.h"
#include "host/PluginReply.h"
#include "host/RunOutcomes.h"
#include "host/RunResult.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace Host {

/// Printers as a client fetches them bit by bit.
struct PrinterSlice {
    std::vector<Printer> printers;
    std::size_t next = 0; ///< from where to ask again
};

/// Any thread may ask.
class IRun {
public:
    using Wanted = std::function<bool(AddressOutcome)>;

    virtual ~IRun() = default;

    /// The summary, as docs/http.md has it.
    virtual JsonValue summary() const = 0;

    /// What is known of printers from the `from`-th message on, at most `most`. A later one for the same address takes
    /// the place of an earlier.
    virtual PrinterSlice printers(std::size_t from, std::size_t most) const = 0;

    /// All that is known so far.
    virtual RunResult result() const = 0;

    /// The addresses that it sweeps.
    virtual const AddressRanges& ranges() const = 0;

    /// As `RunOutcomes::list`.
    virtual std::vector<RunOutcomes::Entry> outcomes(std::uint32_t from, std::size_t most,
                                                     const Wanted& wanted) const = 0;
};

} // namespace Host
