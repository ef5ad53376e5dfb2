#include "host/ProgressLine.h"

#include <array>
#include <cstdio>
#include <ostream>
#include <utility>

namespace Host {

namespace {

std::string printers(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " printer" : " printers");
}

/// Minutes and seconds, with hours in front when there are any.
std::string clockText(std::chrono::seconds elapsed)
{
    const auto seconds = static_cast<long>(elapsed.count());
    std::array<char, 48> text{};
    if (seconds >= 3600)
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
    else
        std::snprintf(text.data(), text.size(), "%ld:%02ld", seconds / 60, seconds % 60);
    return text.data();
}

} // namespace

std::string progressText(const RunResult& soFar, std::chrono::seconds elapsed, std::size_t width)
{
    const std::string step = std::to_string(soFar.step);
    const std::string total = std::to_string(soFar.total);
    const std::string found = printers(soFar.printers.size());
    const std::string clock = clockText(elapsed);
    for (const std::string& text : {step + " of " + total + " probed, " + found + " found, " + clock,
                                    step + "/" + total + ", " + found + ", " + clock, step + "/" + total, step})
        if (text.size() < width)
            return text;
    return {};
}

std::string summaryText(const RunResult& result, std::chrono::milliseconds elapsed)
{
    std::array<char, 32> seconds{};
    std::snprintf(seconds.data(), seconds.size(), "%.1f", static_cast<double>(elapsed.count()) / 1000);
    return (result.interrupted ? "Interrupted: " : "") + std::to_string(result.step) + " of " +
           std::to_string(result.total) + " addresses probed, " + printers(result.printers.size()) + " found in " +
           seconds.data() + " s";
}

ProgressLine::ProgressLine(std::ostream& terminal, Width width, Clock clock)
    : terminal_(terminal), width_(std::move(width)), clock_(std::move(clock)), begin_(clock_())
{}

void ProgressLine::show(const RunResult& soFar)
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(clock_() - begin_);
    const std::string text = progressText(soFar, elapsed, width_());
    if (text != painted_)
        paint(text);
}

void ProgressLine::finish(const RunResult& result)
{
    clear();
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(clock_() - begin_);
    terminal_ << summaryText(result, elapsed) << '\n' << std::flush;
}

void ProgressLine::clear()
{
    if (!painted_.empty())
        paint("");
}

/// Blanks wipe what an earlier, longer text left, so that any terminal will do.
void ProgressLine::paint(const std::string& text)
{
    const std::size_t left = painted_.size() > text.size() ? painted_.size() - text.size() : 0;
    terminal_ << '\r' << text << std::string(left, ' ');
    if (left > 0)
        terminal_ << '\r' << text;
    terminal_ << std::flush;
    painted_ = text;
}

} // namespace Host
