/// Who may read a file of a test.
#pragma once

#include <filesystem>

namespace TestSupport {

/// Gives the file those rights; where systems do not know the rights of groups, all others have what its group has.
void setRights(const std::filesystem::path& file, std::filesystem::perms rights);

/// The command that a message about such a file names to mend it.
extern const char* const mendingCommand;

} // namespace TestSupport
