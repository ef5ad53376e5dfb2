#include "lab/Identity.h"
#include "lab/ProfileLibrary.h"
#include "lab/WellKnownOids.h"

#include <gmock/gmock.h>

namespace Lab {
namespace {

/// Each profile of the program shows what it is there for.
class ShippedProfiles : public testing::Test {
protected:
    [[nodiscard]] const Profile& profile(const std::string& name) const { return *findProfile(_library, name); }

    [[nodiscard]] Identity identity(const std::string& name) const
    {
        return identityOf({findProfile(_library, name), parseIpv4("127.0.0.1").value(), Individuality::Verbatim});
    }

    [[nodiscard]] std::string text(const std::string& name, std::string_view oid) const
    {
        const Record* record = profile(name).find(parseOid(oid).value());
        return record == nullptr ? "nothing" : record->value.text();
    }

    [[nodiscard]] bool hasDeviceTable(const std::string& name) const
    {
        const Record* next = profile(name).findNext(WellKnown::deviceTypeColumn);
        return next != nullptr && startsWith(next->oid, WellKnown::deviceTypeColumn);
    }

    ProfileLibrary _library = builtInProfiles();
};

TEST_F(ShippedProfiles, AreAtLeastEight)
{
    EXPECT_GE(_library.size(), 8U);
}

TEST_F(ShippedProfiles, AllDescribeTheirSystem)
{
    for (const auto& [name, profile] : _library)
        EXPECT_NE(text(name, "1.3.6.1.2.1.1.1.0"), "nothing") << name;
}

TEST_F(ShippedProfiles, OrdinaryPrintersHaveNameMacAndSerialNumber)
{
    for (const char* name : {"laser-mono", "laser-colour", "mfp-office", "label-printer", "laser-latin1"}) {
        const Identity printer = identity(name);
        EXPECT_TRUE(printer.isPrinter) << name;
        EXPECT_NE(printer.name, "") << name;
        EXPECT_THAT(printer.mac, testing::Not(testing::IsEmpty())) << name;
        EXPECT_NE(printer.serialNumber, "") << name;
    }
    EXPECT_EQ(identity("laser-mono").mac.size(), 1U);
    EXPECT_EQ(identity("laser-colour").mac.size(), 2U);
}

TEST_F(ShippedProfiles, SomeDevicesAreNoPrinters)
{
    EXPECT_FALSE(hasDeviceTable("switch"));
    EXPECT_FALSE(hasDeviceTable("ups"));
    EXPECT_TRUE(hasDeviceTable("server"));
    EXPECT_TRUE(hasDeviceTable("scanner"));
    for (const char* name : {"switch", "server", "scanner", "ups"})
        EXPECT_FALSE(identity(name).isPrinter) << name;
}

TEST_F(ShippedProfiles, OnePrinterStandsInTheSecondRow)
{
    EXPECT_EQ(text("printer-second-row", "1.3.6.1.2.1.25.3.2.1.2.1"), ".1.3.6.1.2.1.25.3.1.3");
    EXPECT_EQ(text("printer-second-row", "1.3.6.1.2.1.25.3.2.1.2.2"), ".1.3.6.1.2.1.25.3.1.5");
    EXPECT_TRUE(identity("printer-second-row").isPrinter);
}

TEST_F(ShippedProfiles, SerialNumbersStandInEveryPlace)
{
    EXPECT_EQ(text("mfp-serial-1347", "1.3.6.1.2.1.43.5.1.1.17.1"), "");
    EXPECT_EQ(identity("mfp-serial-1347").serialNumber, "KO2035R804411");
    EXPECT_EQ(text("mfp-serial-367", "1.3.6.1.2.1.43.5.1.1.17.1"), "nothing");
    EXPECT_EQ(text("mfp-serial-367", "1.3.6.1.4.1.1347.43.5.1.1.28.1"), "nothing");
    EXPECT_EQ(identity("mfp-serial-367").serialNumber, "R305Q7700182");
    EXPECT_TRUE(identity("inkjet-no-serial").isPrinter);
    EXPECT_EQ(identity("inkjet-no-serial").serialNumber, "");
}

TEST_F(ShippedProfiles, OneSerialNumberIsAnInteger)
{
    const Record* record = profile("matrix-integer-serial").find(WellKnown::serialNumbers[0]);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->value.tag, Tag::integer);
    EXPECT_EQ(identity("matrix-integer-serial").serialNumber, "40113375");
}

TEST_F(ShippedProfiles, PhysicalAddressesMayBeLongOrEmpty)
{
    EXPECT_EQ(text("printer-long-mac", "1.3.6.1.2.1.2.2.1.6.1").size(), 8U);
    EXPECT_EQ(identity("printer-long-mac").mac.size(), 1U);
    EXPECT_EQ(text("print-server-empty-mac", "1.3.6.1.2.1.2.2.1.6.1"), "");
    EXPECT_EQ(identity("print-server-empty-mac").mac.size(), 1U);
}

TEST_F(ShippedProfiles, OneDescriptionIsLatin1)
{
    EXPECT_EQ(identity("laser-latin1").name, "Gr\xFCnwald B\xFCrodrucker 12");
}

} // namespace
} // namespace Lab
