/// A folder of its own for a test that needs files.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace TestSupport {

/// Made empty, for its owner alone, and removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::random_device number;
        do
            path_ =
                (std::filesystem::temp_directory_path() / ("unit-test-" + std::to_string(number()))).generic_string();
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

    const std::filesystem::path& path() const { return path_; }

    /// The path of a file in it, which need not exist, without backslashes.
    std::string file(const std::string& name) const { return (path_ / name).generic_string(); }

    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(file(name), std::ios::binary) << content;
    }

private:
    std::filesystem::path path_;
};

} // namespace TestSupport
