#include "FullDescriptors.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr rlim_t few = 256;

rlim_t setLimit(rlim_t limit)
{
    rlimit value{};
    ::getrlimit(RLIMIT_NOFILE, &value);
    const rlim_t before = value.rlim_cur;
    value.rlim_cur = limit;
    ::setrlimit(RLIMIT_NOFILE, &value);
    return before;
}

} // namespace

FullDescriptors::FullDescriptors() : limit_(setLimit(few))
{
    for (int handle = ::open("/dev/null", O_RDONLY | O_CLOEXEC); handle >= 0;
         handle = ::open("/dev/null", O_RDONLY | O_CLOEXEC))
        taken_.push_back(handle);
}

FullDescriptors::~FullDescriptors()
{
    while (!taken_.empty())
        freeOne();
    setLimit(limit_);
}

void FullDescriptors::freeOne()
{
    ::close(taken_.back());
    taken_.pop_back();
}
