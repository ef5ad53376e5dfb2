/// A folder that is there as long as the object is.
#pragma once

#include "tests/unit/support/FileRights.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace Host {

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::random_device number;
        do
            path_ =
                (std::filesystem::temp_directory_path() / ("host-test-" + std::to_string(number()))).generic_string();
        while (!std::filesystem::create_directory(path_));
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
    }

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
        std::filesystem::remove(path_, ignored); // the former leaves it behind on Windows
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).generic_string(); }

    /// Makes a file, by default for its owner alone, and gives its path back.
    std::string write(const std::string& name, const std::string& content,
                      std::filesystem::perms perms = std::filesystem::perms(0600)) const
    {
        std::ofstream(path_ / name, std::ios::binary) << content;
        TestSupport::setRights(path_ / name, perms);
        return file(name);
    }

private:
    std::filesystem::path path_;
};

} // namespace Host
