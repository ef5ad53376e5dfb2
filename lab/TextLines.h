/// Reading of a text line by line, with errors that say where.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace Lab {

/// Calls `read` with each line that is not empty, without its LF or CR LF, and its number, which begins with 1.
/// An `Error` that `read` throws is thrown on with file and line before its words, and the line as found after them.
void forEachLine(const std::string& file, std::string_view text,
                 const std::function<void(std::string_view line, std::size_t number)>& read);

/// The path that `text` (UTF-8) writes.
std::filesystem::path pathOf(const std::string& text);

/// The contents of a file. Throws `Error` when it cannot be read.
std::string readFile(const std::string& file);

} // namespace Lab
