#include "datastore/StoreFile.h"

#include "Kep/Mutex.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Kep {
namespace {

// Held while a new file's descriptor is open: closing it would drop the locks of a connection opened meanwhile.
Mutex making;

[[noreturn]] void throwSystemFailure(const std::string& path, int error)
{
    throwStoreFailure(path, std::generic_category().message(error));
}

} // namespace

bool storeFileExists(const std::string& path)
{
    MutexLock lock(making);
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) {
            return false;
        }
        throwSystemFailure(path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throwStoreFailure(path, S_ISDIR(status.st_mode) ? "it is a folder" : "it is no regular file");
    }
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        throwSystemFailure(path, errno);
    }
    return true;
}

void makeStoreFile(const std::string& path)
{
    MutexLock lock(making);
    const int descriptor = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0) {
        close(descriptor);
    } else if (errno != EEXIST) {
        throwSystemFailure(path, errno);
    }
}

} // namespace Kep
