// Runs a fuzz target on the files given, and on all files of the folders given: what the fuzzer's own main does
// without mutating anything, for builds by compilers that have no fuzzer.
#include "fuzz/Target.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& path)
{
    if (!std::filesystem::is_directory(path))
        return {path};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    Fuzz::require(file.is_open(), ("can be read: " + path.string()).c_str());
    const std::string input{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    try {
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    } catch (...) {
        std::fprintf(stderr, "An exception leaves the target at %s\n", path.string().c_str());
        throw;
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t inputs = 0;
    for (int argument = 1; argument < argc; ++argument)
        for (const auto& file : filesOf(argv[argument])) {
            replay(file);
            ++inputs;
        }
    std::printf("%zu inputs\n", inputs);
    return inputs == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
