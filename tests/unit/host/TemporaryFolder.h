/// A folder that is there as long as the object is.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace Host {

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "host-test-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        path_ = path;
    }

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).string(); }

    /// Makes a file, by default for its owner alone, and gives its path back.
    std::string write(const std::string& name, const std::string& content,
                      std::filesystem::perms perms = std::filesystem::perms(0600)) const
    {
        std::ofstream(path_ / name, std::ios::binary) << content;
        std::filesystem::permissions(path_ / name, perms);
        return file(name);
    }

private:
    std::filesystem::path path_;
};

} // namespace Host
