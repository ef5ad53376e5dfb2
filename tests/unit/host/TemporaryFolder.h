/// A folder for files that may hold secrets.
#pragma once

#include "tests/unit/support/FileRights.h"
#include "tests/unit/support/TemporaryFolder.h"

namespace Host {

class TemporaryFolder : public TestSupport::TemporaryFolder {
public:
    /// Makes a file, by default for its owner alone, and gives its path back.
    std::string write(const std::string& name, const std::string& content,
                      std::filesystem::perms perms = std::filesystem::perms(0600)) const
    {
        TestSupport::TemporaryFolder::write(name, content);
        TestSupport::setRights(file(name), perms);
        return file(name);
    }
};

} // namespace Host
