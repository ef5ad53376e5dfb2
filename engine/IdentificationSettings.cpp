#include "engine/IdentificationSettings.h"

namespace PrinterDiscoveryPlugin {

IdentificationSettings& identificationSettings()
{
    static IdentificationSettings settings;
    return settings;
}

} // namespace PrinterDiscoveryPlugin
