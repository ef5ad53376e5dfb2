#!/usr/bin/env python3
"""Prints CharacterWidths.cpp from the Unicode data of this Python: ./characterWidths.py > CharacterWidths.cpp"""
import unicodedata

LAST = 0x10FFFF


def ranges(belongs):
    """Runs of characters that belong; characters that do not exist may stand inside a run."""
    found = []
    touching = False
    for code in range(LAST + 1):
        character = chr(code)
        if belongs(code, character):
            if touching:
                found[-1][1] = code
            else:
                found.append([code, code])
            touching = True
        elif unicodedata.category(character) != "Cn":
            touching = False
    return found


def is_combining(code, character):
    conjoining_vowel_or_final = 0x1160 <= code <= 0x11FF
    joiner = code in (0x200C, 0x200D)
    return unicodedata.category(character) in ("Mn", "Me") or conjoining_vowel_or_final or joiner


def is_wide(code, character):
    if unicodedata.category(character) == "Cn":  # reserved for ideographs or for nothing in particular
        return 0x20000 <= code <= 0x3FFFD
    return unicodedata.east_asian_width(character) in "WF" and not is_combining(code, character)


def table(name, found):
    cells = [f"{{0x{first:04X}, 0x{last:04X}}}," for first, last in found]
    rows = [" ".join(cells[i : i + 5]) for i in range(0, len(cells), 5)]
    return f"constexpr CharacterRange {name}[] = {{\n" + "".join(f"    {row}\n" for row in rows) + "};\n"


print(
    f"""// Made by characterWidths.py from Unicode {unicodedata.unidata_version}.
#include "host/CharacterWidths.h"

namespace Host {{

namespace {{

// clang-format off
/// Marks that are drawn over the character before them (general categories Mn and Me), vowels and finals that join a
/// Hangul syllable, and joiners.
{table("Combining", ranges(is_combining))}
/// East Asian Width W and F.
{table("Wide", ranges(is_wide))}// clang-format on

}} // namespace

std::span<const CharacterRange> combiningCharacters()
{{
    return Combining;
}}

std::span<const CharacterRange> wideCharacters()
{{
    return Wide;
}}

}} // namespace Host"""
)
