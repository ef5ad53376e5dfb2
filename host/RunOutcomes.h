/// What became of each address of a run.
#pragma once

#include "Kep/Host/Mutex.h"
#include "Kep/Host/Outcomes.h"
#include "host/Addresses.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

/// Ascending: of several, with different credentials, the greatest counts.
enum class AddressOutcome : std::uint8_t {
    NotProbed, ///< not yet, or the run was stopped before
    Silent,
    Unreachable,
    PortClosed,
    WrongCredentials,
    Failed,     ///< an agent, but its answers failed, were malformed, or ceased
    NotPrinter, ///< an agent that answered all that it was asked
    Printer,
};

constexpr std::size_t AddressOutcomes = 8;

/// As in documents: "notProbed", "silent", "unreachable", "portClosed", "wrongCredentials", "failed", "notPrinter",
/// "printer".
std::string_view nameOf(AddressOutcome outcome);

/// The outcome of a name; none when it is no such name.
std::optional<AddressOutcome> outcomeNamed(std::string_view name);

/// How many addresses have which outcome.
struct OutcomeCounts {
    std::array<std::uint64_t, AddressOutcomes> of{};

    std::uint64_t operator[](AddressOutcome outcome) const { return of[static_cast<std::size_t>(outcome)]; }

    /// All addresses of the run.
    std::uint64_t total() const;
    bool operator==(const OutcomeCounts&) const = default;
};

/// One run over known ranges: one call into the plug-in, or several because of several credentials. Holds a byte for
/// each address of the blocks of 256 that something is known of. Any thread.
class RunOutcomes : public Kep::Host::IOutcomeObserver {
public:
    static constexpr std::size_t MostProblems = 10'000; ///< texts kept; further ones are empty
    static constexpr std::size_t LongestProblem = 200;  ///< bytes of each that count

    struct Entry {
        std::uint32_t address = 0;
        AddressOutcome outcome = AddressOutcome::NotProbed;
        std::string problem; ///< why it failed, or what the agent refused; printable (DisplayText.h), mostly empty
    };

    /// `ranges` is merged (Addresses.h).
    explicit RunOutcomes(const AddressRanges& ranges);

    /// Takes a session's end in, whichever call it belongs to; addresses that the run does not probe are passed over.
    void observe(const Kep::Host::Observation& observation) noexcept override;

    /// Takes a printer of a status in: that counts more than anything observed.
    void addPrinter(std::string_view ip);

    OutcomeCounts counts() const;

    /// The first `most` addresses from `from` on whose outcome `wanted` accepts, by ascending address. Addresses that
    /// were not probed are never among them. To go on, ask from the last address + 1.
    std::vector<Entry> list(std::uint32_t from, std::size_t most,
                            const std::function<bool(AddressOutcome)>& wanted) const;

private:
    using Block = std::array<AddressOutcome, 256>;

    void take(std::uint32_t address, AddressOutcome outcome, std::string_view problem) KEP_REQUIRES(mutex_);
    void keepProblem(std::uint32_t address, std::string_view problem) KEP_REQUIRES(mutex_);
    Entry entryAt(std::uint32_t address, AddressOutcome outcome) const KEP_REQUIRES(mutex_);

    const AddressRanges ranges_;

    mutable Kep::Mutex mutex_;
    OutcomeCounts counts_ KEP_GUARDED_BY(mutex_);
    std::map<std::uint32_t, Block> blocks_ KEP_GUARDED_BY(mutex_); ///< by the upper three octets
    std::map<std::uint32_t, std::string> problems_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
