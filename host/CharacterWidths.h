/// Characters that take no column of a terminal, and those that take two.
#pragma once

#include <span>

namespace Host {

/// Both bounds included.
struct CharacterRange {
    char32_t first;
    char32_t last;
};

/// Sorted ranges of characters that take no column of their own.
std::span<const CharacterRange> combiningCharacters();

/// Sorted ranges of characters two columns wide.
std::span<const CharacterRange> wideCharacters();

} // namespace Host
