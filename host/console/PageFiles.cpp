#include "host/console/PageFiles.h"

#include <algorithm>
#include <utility>

namespace Host {

std::string_view mediaType(std::string_view path)
{
    constexpr std::pair<std::string_view, std::string_view> types[] = {{".html", "text/html; charset=utf-8"},
                                                                       {".css", "text/css; charset=utf-8"},
                                                                       {".js", "text/javascript; charset=utf-8"},
                                                                       {".mjs", "text/javascript; charset=utf-8"},
                                                                       {".json", "application/json"},
                                                                       {".svg", "image/svg+xml"},
                                                                       {".png", "image/png"},
                                                                       {".webmanifest", "application/manifest+json"},
                                                                       {".txt", "text/plain; charset=utf-8"}};
    for (const auto& [ending, type] : types)
        if (path.ends_with(ending))
            return type;
    return "text/plain; charset=utf-8";
}

const PageFile* findPageFile(std::string_view path)
{
    if (path == "/")
        path = "/index.html";
    const auto files = pageFiles();
    const auto file = std::find_if(files.begin(), files.end(), [&](const PageFile& each) { return each.path == path; });
    return file == files.end() ? nullptr : &*file;
}

} // namespace Host
