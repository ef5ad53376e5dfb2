#include "host/TextFile.h"

#include "host/Errors.h"
#include "host/Paths.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <istream>
#include <system_error>

namespace Host {

std::string readTextFile(const std::string& path, const std::string& option)
{
    std::ifstream file(pathOf(path), std::ios::binary);
    const int error = errno;
    std::error_code ignored;
    const bool folder = std::filesystem::is_directory(pathOf(path), ignored);
    if (!file || folder)
        throw UsageError(option + ": cannot read " + path + ": " +
                         std::generic_category().message(folder ? EISDIR : error));
    return readText(file, option + ": " + path);
}

std::string readText(std::istream& stream, const std::string& name)
{
    constexpr std::size_t step = 65536;
    std::string text;
    while (stream && text.size() <= LongestText) {
        const std::size_t before = text.size();
        text.resize(before + step);
        stream.read(text.data() + before, step);
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad())
        throw UsageError(name + ": cannot be read");
    if (text.size() > LongestText)
        throw UsageError(name + ": is longer than " + std::to_string(LongestText >> 20U) + " MiB");
    return text;
}

void forEachLine(std::string_view text, const std::function<void(std::string_view line, std::size_t number)>& take)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark))
        text.remove_prefix(mark.size());
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        take(line, number);
    }
}

} // namespace Host
