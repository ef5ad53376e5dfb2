/// What the fuzz targets share.
///
/// A target is one source that defines `LLVMFuzzerTestOneInput`: it feeds the bytes to one reader of foreign input and
/// holds the outcome against what is true of every input. Nothing that the reader is documented to throw leaves it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// The whole of one input. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzz {

/// Ends the process, which is how a target reports a finding, unless `holds`.
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "This does not hold: %s\n", what);
    std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Takes the first byte off `input`, as a choice between things to do; 0 when there is none.
inline std::uint8_t takeChoice(std::string_view& input)
{
    if (input.empty())
        return 0;
    const auto choice = static_cast<std::uint8_t>(input.front());
    input.remove_prefix(1);
    return choice;
}

} // namespace Fuzz
