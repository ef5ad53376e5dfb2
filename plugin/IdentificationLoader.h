/// Takes the identification settings over from the host's data store.
#pragma once

#include "Kep/ServiceLocator.h"
#include "engine/IdentificationSettings.h"

#include <string>

namespace PrinterDiscoveryPlugin {

/// Reads the keys under "services." and `reference` from the data store that `locator` makes a proxy of, and replaces
/// the settings that are there: ".macAddressOids" and ".oidDeviceTypePrinter", lists whose items are separated by
/// single commas, semicolons, hyphens or blanks, unless they are empty; ".oidDeviceType", a text, as it stands. Nothing
/// is trimmed or checked. Throws what the locator and the store throw, and `Kep::GenericException` for a value that is
/// no text; what was replaced before that stays. Takes no lock: there must be no run.
void loadIdentificationSettings(const std::string& reference, const Kep::ServiceLocator& locator,
                                IdentificationSettings& settings);

} // namespace PrinterDiscoveryPlugin
