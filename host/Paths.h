/// Paths as they are written.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Host {

/// The path that `text` (UTF-8) writes. Made of a plain string it would be taken for another encoding on some systems;
/// back to UTF-8 leads `string()` on all of them.
inline std::filesystem::path pathOf(std::string_view text)
{
    return std::u8string(text.begin(), text.end());
}

} // namespace Host
