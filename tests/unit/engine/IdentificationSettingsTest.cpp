#include "engine/IdentificationSettings.h"

#include <gmock/gmock.h>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;

TEST(IdentificationDefaults, AreTheStandardObjects)
{
    const IdentificationSettings settings;
    EXPECT_EQ(settings.oidDeviceType, ".1.3.6.1.2.1.25.3.2.1.2");
    EXPECT_THAT(settings.oidDeviceTypePrinter, ElementsAre(".1.3.6.1.2.1.25.3.1.5"));
    EXPECT_EQ(settings.oidDeviceDescr, ".1.3.6.1.2.1.25.3.2.1.3.1");
    EXPECT_THAT(settings.macAddressOids, ElementsAre(".1.3.6.1.2.1.2.2.1.6.1", ".1.3.6.1.2.1.2.2.1.6.2"));
    EXPECT_THAT(settings.serialNumberOids, ElementsAre(".1.3.6.1.2.1.43.5.1.1.17.1", ".1.3.6.1.4.1.1347.43.5.1.1.28.1",
                                                       ".1.3.6.1.4.1.367.3.2.1.2.1.4.0"));
    EXPECT_EQ(settings.discoveryTaskGroup, "networkDiscovery");
}

TEST(IdentificationSettingsOfTheProcess, AreOneSet)
{
    EXPECT_EQ(&identificationSettings(), &identificationSettings());
    const std::string before = identificationSettings().oidDeviceType;
    identificationSettings().oidDeviceType = ".1";
    EXPECT_EQ(identificationSettings().oidDeviceType, ".1");
    identificationSettings().oidDeviceType = before;
}

} // namespace
} // namespace PrinterDiscoveryPlugin
