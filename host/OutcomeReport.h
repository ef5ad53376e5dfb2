/// What a command tells of what became of the addresses.
#pragma once

#include "host/DiscoverOptions.h"
#include "host/PrivateOutput.h"
#include "host/RunOutcomes.h"
#include "host/RunResult.h"

#include <iosfwd>
#include <memory>
#include <optional>

namespace Host {

/// Watches all SNMP sessions of the process while it lives.
class OutcomeReport {
public:
    /// Opens the file that `options`, which outlive this, may ask for. Throws `UsageError` when it cannot be written.
    explicit OutcomeReport(const DiscoverOptions& options);
    ~OutcomeReport();
    OutcomeReport(const OutcomeReport&) = delete;
    OutcomeReport& operator=(const OutcomeReport&) = delete;

    /// Takes the printers of a result in, and writes the file. Throws `Failure`.
    void write(const RunResult& result);

    /// Prints the line of counts, and advice when a run that was not `interrupted` has found nothing. After `write`.
    void tell(std::ostream& output, bool interrupted) const;

private:
    const DiscoverOptions& options_;
    std::shared_ptr<RunOutcomes> outcomes_;
    std::optional<PrivateOutput> file_;
};

} // namespace Host
