/// Reading of the texts that settings hold. Any thread; nothing is thrown.
#pragma once

#include <optional>
#include <string_view>

namespace Kep {

/// A decimal number from `least` to `most`, without sign or blanks.
std::optional<int> readInteger(std::string_view text, int least, int most) noexcept;

/// A decimal number from `least` to `most`, with or without a fraction, without sign, exponent or blanks.
std::optional<double> readDecimal(std::string_view text, double least, double most) noexcept;

/// "on" or "off".
std::optional<bool> readSwitch(std::string_view text) noexcept;

/// Whether `text` is an object identifier: 2 to 128 numbers, a dot before each (RFC 2578, section 3.5).
bool isOid(std::string_view text) noexcept;

/// Whether `text` is one object identifier or several, joined by one comma, semicolon or blank each.
bool isOidList(std::string_view text) noexcept;

} // namespace Kep
