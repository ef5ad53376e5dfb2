/// Cuts a stream of bytes into lines of bounded length.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace Host {

class LineSplitter {
public:
    using OnLine = std::function<void(std::string line)>;
    using OnTooLong = std::function<void()>;

    /// A line may have `longest` bytes, its end not counted. The functions are called from `feed` and `finish`, in the
    /// order of the stream: `onLine` for each line, without its end, and `onTooLong` once for each line that is longer,
    /// whose bytes are dropped.
    LineSplitter(std::size_t longest, OnLine onLine, OnTooLong onTooLong);

    void feed(std::string_view bytes);

    /// The stream has ended: a last line without an end counts.
    void finish();

private:
    void append(std::string_view part);
    void endLine();

    std::size_t longest_;
    OnLine onLine_;
    OnTooLong onTooLong_;
    std::string line_;
    bool dropping_ = false;
};

} // namespace Host
