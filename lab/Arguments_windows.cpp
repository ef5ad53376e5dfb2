#include "lab/Arguments.h"

#include <filesystem>
#include <memory>

#include <windows.h>

#include <shellapi.h>

namespace Lab {
namespace {

struct FreeMemory {
    void operator()(void* block) const { ::LocalFree(block); }
};

} // namespace

std::vector<std::string> programArguments(int /*count*/, char** /*arguments*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, FreeMemory> wide(::CommandLineToArgvW(::GetCommandLineW(), &count));
    std::vector<std::string> texts;
    for (int i = 1; wide && i < count; ++i) {
        const auto text = std::filesystem::path(wide.get()[i]).u8string();
        texts.emplace_back(text.begin(), text.end());
    }
    return texts;
}

} // namespace Lab
