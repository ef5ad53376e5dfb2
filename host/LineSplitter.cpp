#include "host/LineSplitter.h"

#include <utility>

namespace Host {

LineSplitter::LineSplitter(std::size_t longest, OnLine onLine, OnTooLong onTooLong)
    : longest_(longest), onLine_(std::move(onLine)), onTooLong_(std::move(onTooLong))
{}

void LineSplitter::feed(std::string_view bytes)
{
    for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        append(bytes.substr(0, end));
        endLine();
        bytes.remove_prefix(end + 1);
    }
    append(bytes);
}

void LineSplitter::finish()
{
    if (!line_.empty() || dropping_)
        endLine();
}

void LineSplitter::append(std::string_view part)
{
    if (dropping_)
        return;
    if (part.size() > longest_ - line_.size()) {
        std::string().swap(line_);
        dropping_ = true;
        onTooLong_();
        return;
    }
    line_ += part;
}

void LineSplitter::endLine()
{
    if (!std::exchange(dropping_, false))
        onLine_(std::exchange(line_, {}));
}

} // namespace Host
