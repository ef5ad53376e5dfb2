#include "tests/unit/support/ProcessUse.h"

#include <filesystem>
#include <iterator>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // no header of the compiler declares it
#else
#include <malloc.h>
#endif

namespace TestSupport {
namespace {

std::size_t entriesIn(const char* folder)
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
}

} // namespace

std::size_t allocatedBytes()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

std::size_t openDescriptors()
{
    return entriesIn("/proc/self/fd");
}

std::size_t threadCount()
{
    return entriesIn("/proc/self/task");
}

bool isSanitized()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

} // namespace TestSupport
