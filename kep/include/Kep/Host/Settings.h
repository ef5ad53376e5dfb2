/// The settings of a host and of the plug-in: what they are called, mean and accept.
#pragma once

#include "Kep/Export.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kep::Host {

/// One setting. The texts are for people and never change while the process runs.
struct Setting {
    std::string_view key;          ///< data-store key
    std::string_view defaultValue; ///< as text
    std::string_view meaning;      ///< one sentence
    std::string_view accepted;     ///< the accepted values in words
    std::string_view effect;       ///< when a change takes effect
};

/// All settings, in the order in which to show them. Any thread.
KEP_API const std::vector<Setting>& settings();

/// Tests a value for a key. Throws `GenericException` that names the key and says what is accepted when the key is
/// none of `settings` or the value does not fit. Any thread.
KEP_API void checkSetting(std::string_view key, std::string_view value);

} // namespace Kep::Host
