/// Progress as one line of a terminal that is painted over and over.
#pragma once

#include "host/RunFollower.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace Host {

/// "57 of 254 probed, 3 printers found, 0:12", or a shorter form of it, in less than `width` columns.
std::string progressText(const RunResult& soFar, std::chrono::seconds elapsed, std::size_t width);

/// The closing line of a run: "254 of 254 addresses probed, 3 printers found in 2.1 s".
std::string summaryText(const RunResult& result, std::chrono::milliseconds elapsed);

class ProgressLine : public IProgress {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Width = std::function<std::size_t()>;

    /// Paints on `terminal`, which outlives it; the run begins now.
    ProgressLine(std::ostream& terminal, Width width, Clock clock);

    void show(const RunResult& soFar) override;

    /// Wipes the line, and prints the summary in its place.
    void finish(const RunResult& result);

    /// Wipes the line.
    void clear();

private:
    void paint(const std::string& text);

    std::ostream& terminal_;
    Width width_;
    Clock clock_;
    std::chrono::steady_clock::time_point begin_;
    std::string painted_;
};

} // namespace Host
