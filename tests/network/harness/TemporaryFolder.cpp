#include "tests/network/harness/TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace NetworkTests {

TemporaryFolder::TemporaryFolder()
{
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        fs::path candidate = fs::temp_directory_path() / ("network-test-" + std::to_string(random()));
        if (fs::create_directory(candidate)) {
            fs::permissions(candidate, fs::perms(0755));
            path_ = std::move(candidate);
            return;
        }
    }
    throw std::runtime_error("no temporary folder can be made in " + fs::temp_directory_path().string());
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(std::string_view name, std::string_view content) const
{
    const fs::path file = path_ / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    if (fs::file_size(file) != content.size()) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file;
}

fs::path TemporaryFolder::makeFolder(std::string_view name) const
{
    const fs::path folder = path_ / name;
    fs::create_directories(folder);
    return folder;
}

std::string readFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace NetworkTests
