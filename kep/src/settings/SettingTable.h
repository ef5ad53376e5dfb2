/// The one list of settings.
#pragma once

#include "Kep/Host/Settings.h"
#include "settings/HostSettings.h"

#include <string_view>
#include <vector>

namespace Kep {

/// A setting and what its value does.
struct SettingEntry {
    Host::Setting shown;

    /// Tests `value` and, for a setting of the host, puts it into `settings`; false, and nothing changed, when it does
    /// not fit. Throws nothing.
    bool (*take)(HostSettings& settings, std::string_view value);
};

/// All settings in the order in which to show them. Any thread.
const std::vector<SettingEntry>& settingTable();

/// Puts a value into `settings`, if it is one of the host. Throws as `Host::checkSetting` does, nothing changed then.
void takeSetting(HostSettings& settings, std::string_view key, std::string_view value);

} // namespace Kep
