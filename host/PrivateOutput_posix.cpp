#include "host/PrivateOutput.h"

#include "host/Errors.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Host {

namespace {

constexpr mode_t OwnerAlone = S_IRUSR | S_IWUSR;

std::string reason(int error)
{
    return std::generic_category().message(error);
}

} // namespace

PrivateOutput::PrivateOutput(std::string path, const std::string& option)
    : path_(std::move(path)), handle_(open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, OwnerAlone))
{
    const int file = static_cast<int>(handle_);
    if (file >= 0 && fchmod(file, OwnerAlone) == 0)
        return;
    const int error = errno;
    if (file >= 0)
        close(file);
    throw UsageError(option + ": cannot write " + path_ + ": " + reason(error));
}

PrivateOutput::~PrivateOutput()
{
    close(static_cast<int>(handle_));
}

void PrivateOutput::write(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(static_cast<int>(handle_), text.data(), text.size());
        if (count < 0 && errno != EINTR)
            throw Failure("cannot write " + path_ + ": " + reason(errno));
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

} // namespace Host
