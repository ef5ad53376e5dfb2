#include "host/PrivateFile.h"

#include "host/Errors.h"

#include <cerrno>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Host {

namespace {

class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor()
    {
        if (value_ >= 0)
            close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return value_; }

private:
    int value_;
};

[[noreturn]] void refuse(const std::string& path, const std::string& option, int error)
{
    throw UsageError(option + ": cannot read " + path + ": " + std::generic_category().message(error));
}

bool isShared(const struct stat& status)
{
    return (status.st_mode & (S_IRWXG | S_IRWXO)) != 0;
}

} // namespace

std::string readPrivateFile(const std::string& path, const std::string& option, std::size_t most)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0)
        refuse(path, option, errno);
    if (isShared(status))
        throw UsageError(option + ": " + sharedFileText(path));
    std::string content;
    content.resize(most);
    std::size_t length = 0;
    while (length < content.size()) {
        const ssize_t count = read(file.get(), content.data() + length, content.size() - length);
        if (count < 0 && errno != EINTR)
            refuse(path, option, errno);
        if (count == 0)
            break;
        length += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    content.resize(length);
    return content;
}

bool isSharedFile(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && isShared(status);
}

std::string sharedFileText(const std::string& path)
{
    return "others than the owner of " + path + " have access to it; chmod 600 mends that";
}

} // namespace Host
