#include "tests/unit/support/FileRights.h"

namespace TestSupport {

const char* const mendingCommand = "chmod 600";

void setRights(const std::filesystem::path& file, std::filesystem::perms rights)
{
    std::filesystem::permissions(file, rights);
}

} // namespace TestSupport
