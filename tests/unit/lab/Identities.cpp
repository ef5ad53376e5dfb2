#include "lab/Identity.h"
#include "lab/Snmprec.h"
#include "lab/Utf8.h"

#include <gmock/gmock.h>

namespace Lab {
namespace {

const std::string column = "1.3.6.1.2.1.25.3.2.1.2.";
const std::string description = "1.3.6.1.2.1.25.3.2.1.3.1|4|Printer\n";
const std::string mac = "1.3.6.1.2.1.2.2.1.6.";
const std::string serial = "1.3.6.1.2.1.43.5.1.1.17.1|";
const std::string serial1347 = "1.3.6.1.4.1.1347.43.5.1.1.28.1|";
const std::string serial367 = "1.3.6.1.4.1.367.3.2.1.2.1.4.0|";

Device device(const std::string& text, Individuality individuality = Individuality::Verbatim)
{
    return {readSnmprec("device", "device", text), parseIpv4("127.77.0.200").value(), individuality};
}

Identity identity(const std::string& text, Individuality individuality = Individuality::Verbatim)
{
    return identityOf(device(text, individuality));
}

TEST(Identities, APrinterHasAPrinterRowAnywhereInItsDeviceTable)
{
    EXPECT_TRUE(identity(column + "1|6|1.3.6.1.2.1.25.3.1.5\n").isPrinter);
    EXPECT_TRUE(identity(column + "1|6|1.3.6.1.2.1.25.3.1.3\n" + column + "2|6|1.3.6.1.2.1.25.3.1.5\n").isPrinter);
    EXPECT_FALSE(identity(column + "1|6|1.3.6.1.2.1.25.3.1.3\n").isPrinter);
    EXPECT_FALSE(identity(description).isPrinter);
}

TEST(Identities, TheNameIsTheFirstRowsDescription)
{
    EXPECT_EQ(identity(description).name, "Printer");
    EXPECT_EQ(identity("1.3.6.1.2.1.25.3.2.1.3.2|4|second row\n").name, "");
}

TEST(Identities, OnlyAddressesOf6BytesAtInterfaces1And2AreMacs)
{
    EXPECT_THAT(identity(mac + "1|4x|001ba90c337e\n" + mac + "2|4x|0102030405FF\n" + mac + "3|4x|010203040506\n").mac,
                testing::ElementsAre("00-1B-A9-0C-33-7E", "01-02-03-04-05-FF"));
    EXPECT_THAT(identity(mac + "1|4x|\n" + mac + "2|4x|0102030405060708\n").mac, testing::IsEmpty());
}

TEST(Identities, TheSerialNumberIsTheFirstThatIsNotEmpty)
{
    EXPECT_EQ(identity(serial + "4|A\n" + serial1347 + "4|B\n" + serial367 + "4|C\n").serialNumber, "A");
    EXPECT_EQ(identity(serial + "4|\n" + serial1347 + "4|B\n" + serial367 + "4|C\n").serialNumber, "B");
    EXPECT_EQ(identity(serial367 + "4|C\n").serialNumber, "C");
    EXPECT_EQ(identity(serial + "2|4711\n").serialNumber, "4711");
    EXPECT_EQ(identity(description).serialNumber, "");
}

TEST(Identities, DevicesOfAKindDifferByTheirAddress)
{
    const auto own = Individuality::ByAddress;
    EXPECT_THAT(identity(mac + "1|4x|021a01000001\n" + mac + "2|4x|021a01000002\n", own).mac,
                testing::ElementsAre("02-1A-01-4D-00-C8", "02-1A-02-4D-00-C8"));
    EXPECT_EQ(identity(serial + "4|A\n", own).serialNumber, "A-4D00C8");
    EXPECT_EQ(identity(serial1347 + "4|B\n", own).serialNumber, "B-4D00C8");
    EXPECT_EQ(identity(serial367 + "4|C\n", own).serialNumber, "C-4D00C8");
    EXPECT_EQ(identity(serial + "2|1000\n", own).serialNumber, std::to_string(1000 + 0x4D00C8));
    EXPECT_EQ(identity(serial + "2|2147483647\n", own).serialNumber, std::to_string(0x4D00C8 - 1));
}

TEST(Identities, WhatIsEmptyOrNoMacStaysAsItIs)
{
    const auto own = Individuality::ByAddress;
    EXPECT_EQ(identity(serial + "4|\n", own).serialNumber, "");
    EXPECT_EQ(identity(description, own).name, "Printer");
    const Device other = device(mac + "1|4x|\n" + mac + "2|4x|0102030405060708\n", own);
    EXPECT_EQ(other.value(other.profile().records()[0]).contents, Bytes{});
    EXPECT_EQ(other.value(other.profile().records()[1]).contents, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Identities, TheEncodedValueIsTheDevicesOwn)
{
    const Device own = device(serial + "4|A\n" + description, Individuality::ByAddress);
    for (const Record& record : own.profile().records())
        EXPECT_THAT(own.encodedValue(record), testing::ElementsAreArray(own.value(record).encoded()));
}

TEST(Identities, ListAsOneLineOfJson)
{
    const std::string row = column + "1|6|1.3.6.1.2.1.25.3.1.5\n";
    EXPECT_EQ(identityLine(device(row + "1.3.6.1.2.1.25.3.2.1.3.1|4x|42fc726f220a\n" + mac + "1|4x|001ba90c337e\n" +
                                  serial + "4|X1\n")),
              R"({"ip":"127.77.0.200","profile":"device","printer":true,"name":"Büro\"\n","mac":["00-1B-A9-0C-33-7E"],)"
              R"("sn":"X1"})");
    EXPECT_EQ(identityLine(device(description)), R"({"ip":"127.77.0.200","profile":"device","printer":false})");
}

TEST(Utf8Repair, ValidTextPasses)
{
    for (const char* text : {"", "plain", "B\u00FCro", "\u20AC", "\U0001F5A8", "\uD7FF\uE000", "\U0010FFFF"})
        EXPECT_EQ(toUtf8(text), text);
}

TEST(Utf8Repair, OtherBytesBecomeLatin1Characters)
{
    EXPECT_EQ(toUtf8("B\xFCro"), "B\u00FCro");
    EXPECT_EQ(toUtf8("\xFC"), "\u00FC");
    EXPECT_EQ(toUtf8("\x80\xBF"), "\u0080\u00BF");
    EXPECT_EQ(toUtf8("\xC0\xAF"), "\u00C0\u00AF") << "overlong";
    EXPECT_EQ(toUtf8("\xE0\x9F\xBF"), "\u00E0\u009F\u00BF") << "overlong";
    EXPECT_EQ(toUtf8("\xED\xA0\x80"), "\u00ED\u00A0\u0080") << "surrogate";
    EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), "\u00F4\u0090\u0080\u0080") << "beyond the last character";
    EXPECT_EQ(toUtf8("\xE2\x82"), "\u00E2\u0082") << "cut off";
    EXPECT_EQ(toUtf8("\xE2\x82z"), "\u00E2\u0082z");
}

} // namespace
} // namespace Lab
