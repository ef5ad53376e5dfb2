/// A folder that lives as long as its object.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace NetworkTests {

/// A new, empty folder that every user may read; it and all it holds is removed with the object. Throws
/// `std::runtime_error` or `std::filesystem::filesystem_error` when it cannot be made.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    /// Writes a file below the folder, its parent folders included, and gives its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const;

    /// Makes a folder below the folder and gives its path.
    std::filesystem::path makeFolder(std::string_view name) const;

private:
    std::filesystem::path path_;
};

/// The bytes of a file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);

} // namespace NetworkTests
