#include "host/OutcomeReport.h"

#include "host/OutcomeFormats.h"
#include "host/OutcomeTexts.h"

#include <ostream>

namespace Host {

OutcomeReport::OutcomeReport(const DiscoverOptions& options)
    : options_(options), outcomes_(std::make_shared<RunOutcomes>(options.ranges))
{
    if (options.outcomes)
        file_.emplace(*options.outcomes, OutcomesOption);
    Kep::Host::observeOutcomes(outcomes_);
}

OutcomeReport::~OutcomeReport()
{
    Kep::Host::observeOutcomes(nullptr);
}

void OutcomeReport::write(const RunResult& result)
{
    for (const Printer& printer : result.printers)
        outcomes_->addPrinter(printer.ip);
    if (file_)
        writeOutcomes(*outcomes_, outcomeFormatOf(*options_.outcomes, OutcomesOption),
                      [this](std::string_view text) { file_->write(text); });
}

void OutcomeReport::tell(std::ostream& output, bool interrupted) const
{
    const OutcomeCounts counts = outcomes_->counts();
    output << countsText(counts) << '\n';
    if (!interrupted)
        for (const std::string& advice : adviceFor(counts, useOf(options_.profiles)))
            output << advice << '\n';
}

} // namespace Host
