#include "host/console/Metrics.h"

#include "host/console/ConsoleRun.h"

namespace Host {

namespace {

/// One metric of the text: its description, then its values.
class MetricText {
public:
    MetricText(std::string& text, const char* name, const char* type, const char* help)
        : text_(text), name_(std::string("printer_discovery_") + name)
    {
        text_ += "# HELP " + name_ + ' ' + help + "\n# TYPE " + name_ + ' ' + type + '\n';
    }

    MetricText& add(std::uint64_t value)
    {
        text_ += name_ + ' ' + std::to_string(value) + '\n';
        return *this;
    }

    MetricText& add(const char* label, std::string_view labelValue, std::uint64_t value)
    {
        text_ += name_ + '{' + label + "=\"" + std::string(labelValue) + "\"} " + std::to_string(value) + '\n';
        return *this;
    }

private:
    std::string& text_;
    const std::string name_;
};

std::uint64_t secondsOf(std::chrono::system_clock::time_point time)
{
    return static_cast<std::uint64_t>(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count());
}

} // namespace

void Metrics::addEnded(RunState state)
{
    if (state == RunState::Finished)
        ++finished_;
    else if (state == RunState::Stopped)
        ++stopped_;
    else
        ++failed_;
}

void Metrics::addOutcomes(const OutcomeCounts& counts)
{
    for (std::size_t i = 0; i < AddressOutcomes; ++i)
        outcomes_.at(i) += counts.of.at(i);
}

void Metrics::addResponse(int status)
{
    ++responses_.at(static_cast<std::size_t>(status) / 100);
}

std::string Metrics::text(const MetricsNow& now) const
{
    std::string text;
    MetricText(text, "build_info", "gauge", "What is running.").add("version", HOST_VERSION, 1);
    MetricText(text, "start_time_seconds", "gauge", "When the service started, in Unix time.").add(secondsOf(start_));
    MetricText(text, "runs", "gauge", "Runs under way.")
        .add("state", "running", now.runsRunning)
        .add("state", "stopping", now.runsStopping);
    MetricText(text, "runs_ended_total", "counter", "Runs that have ended.")
        .add("state", "finished", finished_)
        .add("state", "stopped", stopped_)
        .add("state", "failed", failed_);
    MetricText(text, "addresses_probed_total", "counter", "Addresses probed, with each credentials of a run.")
        .add(probed_);
    MetricText(text, "printers_found_total", "counter", "Printers found, in each run anew.").add(printers_);
    MetricText outcomes(text, "outcomes_total", "counter",
                        "Addresses by what became of them, of runs that have ended.");
    for (std::size_t i = 0; i < AddressOutcomes; ++i)
        outcomes.add("outcome", nameOf(static_cast<AddressOutcome>(i)), outcomes_.at(i));
    MetricText(text, "tasks", "gauge", "Pieces of work of the runs under way.")
        .add("state", "queued", now.tasksQueued)
        .add("state", "running", now.tasksRunning);
    MetricText responses(text, "http_responses_total", "counter", "Answers to HTTP requests by class of their status.");
    for (std::size_t digit = 1; digit < responses_.size(); ++digit)
        responses.add("class", std::to_string(digit) + "xx", responses_.at(digit));
    return text;
}

} // namespace Host
