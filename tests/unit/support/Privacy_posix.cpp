#include "tests/unit/support/Privacy.h"

#include <sys/stat.h>

bool isPrivate(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (status.st_mode & 07777) == 0600;
}

NoUmask::NoUmask() : before_(umask(0)) {}

NoUmask::~NoUmask()
{
    umask(before_);
}
