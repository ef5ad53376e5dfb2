/// The files of the console's page, built into the program.
#pragma once

#include <span>
#include <string_view>

namespace Host {

struct PageFile {
    std::string_view path; ///< "/app.js"
    std::string_view content;
};

/// Sorted by path.
std::span<const PageFile> pageFiles();

/// The media type that the ending of a path stands for (RFC 9110, section 8.3.1).
std::string_view mediaType(std::string_view path);

/// The file at `path`, "/index.html" for "/"; null when there is none.
const PageFile* findPageFile(std::string_view path);

} // namespace Host
