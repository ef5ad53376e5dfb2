/// A folder of its own for a test that needs files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// Made empty, and removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kep-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// The path of a file in it, which need not exist.
    std::string file(const std::string& name) const { return (path_ / name).string(); }

    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(file(name), std::ios::binary) << content;
    }

private:
    std::filesystem::path path_;
};
