/// The texts of the files in lab/profiles, which the build turns into a source file.
#pragma once

#include <span>
#include <string_view>

namespace Lab {

struct BuiltInProfile {
    std::string_view name;
    std::string_view text;
};

/// In the order of their names; they live as long as the program.
std::span<const BuiltInProfile> builtInProfileTexts();

} // namespace Lab
