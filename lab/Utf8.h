/// Repair of texts that devices give in whatever encoding they like.
#pragma once

#include <string>
#include <string_view>

namespace Lab {

/// `text` with each byte that is not part of valid UTF-8 (RFC 3629) replaced by the Latin-1 character of its number.
std::string toUtf8(std::string_view text);

} // namespace Lab
