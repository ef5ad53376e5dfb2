#include "documents/StatusDocument.h"

#include "documents/JsonWriter.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace PrinterDiscoveryPlugin {
namespace {

PrinterRecord printer(const std::string& ip)
{
    PrinterRecord record;
    record.ip = ip;
    return record;
}

TEST(StatusDocument, WithoutPrintersHasAnEmptyArray)
{
    DiscoveryStatus status;
    status.cookie = "c";
    EXPECT_EQ(statusToJson(status), R"({"step":0,"total":0,"state":1,"cookie":"c","printers":[]})");
}

TEST(StatusDocument, MembersKeepTheirOrder)
{
    DiscoveryStatus status;
    status.step = 3;
    status.total = 254;
    status.state = DiscoveryStatus::running;
    status.cookie = "run 1";
    status.printers = {printer("10.0.0.2"), printer("10.0.0.1")};
    EXPECT_EQ(statusToJson(status), R"({"step":3,"total":254,"state":2,"cookie":"run 1","printers":[)"
                                    R"({"hostname":"","ip":"10.0.0.2","mac":[],"name":"","sn":""},)"
                                    R"({"hostname":"","ip":"10.0.0.1","mac":[],"name":"","sn":""}]})");
}

TEST(StatusDocument, CountsAreWrittenAsSigned32Bit)
{
    DiscoveryStatus status;
    status.step = 0x7fffffff;
    status.total = 0x80000000;
    status.state = 0xffffffff;
    EXPECT_EQ(statusToJson(status), R"({"step":2147483647,"total":-2147483648,"state":-1,"cookie":"","printers":[]})");
}

TEST(StatusDocument, CookieIsEscaped)
{
    DiscoveryStatus status;
    status.cookie = "a\"b\\c\n";
    EXPECT_EQ(statusToJson(status), R"({"step":0,"total":0,"state":1,"cookie":"a\"b\\c\n","printers":[]})");
}

TEST(StatusDocument, StateCodes)
{
    EXPECT_EQ(DiscoveryStatus::finished, 1u);
    EXPECT_EQ(DiscoveryStatus::running, 2u);
}

TEST(PrinterDocument, MembersKeepTheirOrder)
{
    PrinterRecord record;
    record.ip = "10.0.0.7";
    record.name = "Laser";
    record.sn = "S1";
    record.mac = {"00-1B-A9-0C-33-7E"};
    record.hostname = "PRN";
    EXPECT_EQ(printerToJson(record),
              R"({"hostname":"PRN","ip":"10.0.0.7","mac":["00-1B-A9-0C-33-7E"],"name":"Laser","sn":"S1"})");
}

TEST(PrinterDocument, WithoutMacAddressHasAnEmptyArray)
{
    EXPECT_EQ(printerToJson({}), R"({"hostname":"","ip":"","mac":[],"name":"","sn":""})");
}

TEST(PrinterDocument, MacAddressesKeepTheirOrder)
{
    PrinterRecord record;
    record.mac = {"FF-00-00-00-00-02", "00-00-00-00-00-01"};
    EXPECT_EQ(printerToJson(record),
              R"({"hostname":"","ip":"","mac":["FF-00-00-00-00-02","00-00-00-00-00-01"],"name":"","sn":""})");
}

TEST(PrinterDocument, TextsAreEscaped)
{
    PrinterRecord record;
    record.name = R"(say "hi" \ there)";
    record.sn = "a\tb";
    EXPECT_EQ(printerToJson(record), R"({"hostname":"","ip":"","mac":[],"name":"say \"hi\" \\ there","sn":"a\tb"})");
}

TEST(PrinterDocument, AnyByteIsEncodedAsTheFrameworkDoes)
{
    PrinterRecord record;
    record.name = "B\xfcro\x01";
    EXPECT_EQ(printerToJson(record),
              R"({"hostname":"","ip":"","mac":[],"name":)" + Kep::Json::_encodeString(record.name) + R"(,"sn":""})");
}

TEST(JsonWriter, AddsMembersOfEachKind)
{
    Kep::Json::Array array;
    addArrayString(array, "x\"");
    addArrayString(array, "");
    Kep::Json::Object object;
    addString(object, "text", "v\\");
    addInt(object, "number", -5);
    addArray(object, "array", array);
    EXPECT_EQ(std::string(object), R"({"text":"v\\","number":-5,"array":["x\"",""]})");
}

TEST(JsonWriter, IntegersAreSigned32Bit)
{
    Kep::Json::Object object;
    addInt(object, "least", std::numeric_limits<std::int32_t>::min());
    addInt(object, "most", std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(std::string(object), R"({"least":-2147483648,"most":2147483647})");
}

TEST(JsonWriter, KeyIsWrittenAsItStands)
{
    Kep::Json::Object object;
    addInt(object, "a.b", 0);
    EXPECT_EQ(std::string(object), R"({"a.b":0})");
}

TEST(JsonWriter, EveryResultIsWholeInBetween)
{
    Kep::Json::Object object;
    EXPECT_EQ(std::string(object), "{}");
    addInt(object, "a", 1);
    EXPECT_EQ(std::string(object), R"({"a":1})");
    Kep::Json::Array array;
    EXPECT_EQ(array.toJson(), "[]");
    addArrayString(array, "a");
    EXPECT_EQ(array.toJson(), R"(["a"])");
}

} // namespace
} // namespace PrinterDiscoveryPlugin
