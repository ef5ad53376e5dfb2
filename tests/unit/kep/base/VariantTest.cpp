#include "Kep/Variant.h"

#include "Kep/Exception.h"
#include "Kep/Json.h"
#include "tests/unit/kep/base/Messages.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>

using Kep::Variant;
using Kep::VariantType;

namespace {

const Variant& request()
{
    static const Variant document = Kep::Json::parse(R"({"cookie":7,"nothing":null,"config":{"usePing":"secret",
        "includeRanges":[{"from":"a"},{"from":"b"},{"from":3}, "secret"], "matrix":[[1],[true]]}})");
    return document;
}

Variant elementOf(const Variant& list, int index)
{
    auto position = list.begin();
    for (; index > 0; --index) {
        ++position;
    }
    return position.value();
}

template <class Target> std::string messageOfReading(const Variant& value)
{
    return messageOf([&value] { static_cast<void>(static_cast<Target>(value)); });
}

TEST(Values, TypeCodesAreFixed)
{
    EXPECT_EQ(Variant().type(), 0);
    EXPECT_EQ(Variant(true).type(), 1);
    EXPECT_EQ(Variant(5).type(), 2);
    EXPECT_EQ(Variant(std::int64_t{5}).type(), 2);
    EXPECT_EQ(Variant(0.5).type(), 3);
    EXPECT_EQ(Variant("text").type(), 10);
    EXPECT_EQ(Variant(std::string()).type(), 10);
    EXPECT_EQ(Variant(Variant::Array{}).type(), 20);
    EXPECT_EQ(Variant(Variant::Object{}).type(), 21);
    for (int code = 40; code <= 46; ++code) {
        EXPECT_EQ(Variant::snmp(static_cast<VariantType>(code), "1").type(), code);
    }
}

TEST(Values, EmptyIsNullOrWithoutContent)
{
    EXPECT_TRUE(Variant().empty());
    EXPECT_TRUE(Variant("").empty());
    EXPECT_TRUE(Variant(Variant::Array{}).empty());
    EXPECT_TRUE(Variant(Variant::Object{}).empty());
    EXPECT_FALSE(Variant(false).empty());
    EXPECT_FALSE(Variant(0).empty());
    EXPECT_FALSE(Variant(" ").empty());
    EXPECT_FALSE(Variant(Variant::Array{Variant()}).empty());
    EXPECT_FALSE(Variant(Variant::Object{{"", Variant()}}).empty());
}

TEST(Values, TextIsEightBitClean)
{
    const std::string bytes("a\0b\xFF\x80", 5);
    EXPECT_EQ(static_cast<std::string>(Variant(bytes)), bytes);
}

TEST(Values, SnmpValuesConvertToTheirText)
{
    EXPECT_EQ(static_cast<std::string>(Variant::snmp(VariantType::snmpCounter64, "18446744073709551615")),
              "18446744073709551615");
    EXPECT_EQ(static_cast<std::string>(Variant::snmp(VariantType::snmpIpAddress, "10.0.0.1")), "10.0.0.1");
}

TEST(Values, SnmpValuesAreNoJsonNumbers)
{
    EXPECT_EQ(messageOfReading<int>(Variant::snmp(VariantType::snmpInteger, "5")),
              "document: expected integer of 32 bits, found SNMP value");
}

TEST(Values, IntTakesIntegralNumbersWithin32Bits)
{
    EXPECT_EQ(static_cast<int>(Variant(std::int64_t{2147483647})), 2147483647);
    EXPECT_EQ(static_cast<int>(Variant(std::int64_t{-2147483648})), std::numeric_limits<int>::min());
    EXPECT_EQ(static_cast<int>(Variant(5.0)), 5);
    EXPECT_EQ(static_cast<int>(Variant(-2147483648.0)), std::numeric_limits<int>::min());
}

TEST(Values, IntRefusesEveryOtherNumber)
{
    const std::string refused = "document: expected integer of 32 bits, found number";
    EXPECT_EQ(messageOfReading<int>(Variant(std::int64_t{2147483648})), refused);
    EXPECT_EQ(messageOfReading<int>(Variant(std::int64_t{-2147483649})), refused);
    for (const double number : {1.5, 2147483648.0, -2147483649.0, 1e300, HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(messageOfReading<int>(Variant(number)), refused) << number;
    }
}

TEST(Values, NothingConvertsToAnotherKind)
{
    EXPECT_EQ(messageOfReading<int>(Variant("5")), "document: expected integer of 32 bits, found text");
    EXPECT_EQ(messageOfReading<int>(Variant(true)), "document: expected integer of 32 bits, found boolean");
    EXPECT_EQ(messageOfReading<bool>(Variant(1)), "document: expected boolean, found number");
    EXPECT_EQ(messageOfReading<bool>(Variant()), "document: expected boolean, found nothing");
    EXPECT_EQ(messageOfReading<std::string>(Variant(1.5)), "document: expected text, found number");
    EXPECT_EQ(messageOfReading<std::string>(Variant(Variant::Array{})), "document: expected text, found list");
    EXPECT_EQ(messageOfReading<std::string>(Variant(Variant::Object{})), "document: expected text, found object");
}

TEST(Values, AbsentMembersAreNullAndNamed)
{
    const Variant absent = request()["cokie"];
    EXPECT_TRUE(absent.isNull());
    EXPECT_EQ(messageOfReading<std::string>(absent), "member \"cokie\": expected text, found nothing");
    EXPECT_EQ(messageOfReading<std::string>(request()["nothing"]), "member \"nothing\": expected text, found nothing");
}

TEST(Values, MessagesNameTheMemberAndWhereItLies)
{
    const Variant config = request()["config"];
    EXPECT_EQ(messageOfReading<std::string>(request()["cookie"]), "member \"cookie\": expected text, found number");
    EXPECT_EQ(messageOfReading<bool>(config["usePing"]),
              "member \"usePing\": expected boolean, found text (in \"config\")");
    EXPECT_EQ(messageOfReading<std::string>(elementOf(config["includeRanges"], 2)["from"]),
              "member \"from\": expected text, found number (in \"config.includeRanges[2]\")");
    EXPECT_EQ(messageOf([&] { elementOf(config["includeRanges"], 3)["from"]; }),
              "element \"config.includeRanges[3]\": expected object, found text");
    EXPECT_EQ(messageOfReading<int>(elementOf(elementOf(config["matrix"], 1), 0)),
              "element \"config.matrix[1][0]\": expected integer of 32 bits, found boolean");
}

TEST(Values, MessagesNeverQuoteAValue)
{
    const Variant config = request()["config"];
    const Variant text = config["usePing"];
    Variant unused;
    for (const std::string& message :
         {messageOfReading<bool>(text), messageOfReading<int>(text), messageOf([&] { text["x"]; }),
          messageOf([&] { text.begin(); }), messageOf([&] { text.contains("x", unused); })}) {
        EXPECT_NE(message.find("expected"), std::string::npos) << message;
        EXPECT_EQ(message.find("secret"), std::string::npos) << message;
    }
}

TEST(Values, IndexContainsAndWalkNeedTheRightKind)
{
    Variant out;
    EXPECT_EQ(messageOf([] { Variant(1)["x"]; }), "document: expected object, found number");
    EXPECT_EQ(messageOf([] { Variant()["x"]; }), "document: expected object, found nothing");
    EXPECT_EQ(messageOf([&] { Variant(Variant::Array{}).contains("x", out); }),
              "document: expected object, found list");
    EXPECT_EQ(messageOf([] { request()["config"].begin(); }), "member \"config\": expected list, found object");
    EXPECT_EQ(messageOf([] { request()["config"].end(); }), "member \"config\": expected list, found object");
}

TEST(Values, ReadingFailuresAreNeverNotFound)
{
    try {
        static_cast<void>(static_cast<int>(request()["absent"]));
        FAIL() << "nothing thrown";
    } catch (const Kep::NotFoundException&) {
        FAIL() << "a missing member is no missing operation";
    } catch (const Kep::GenericException&) {
    }
}

TEST(Values, ContainsTellsNullFromAbsent)
{
    Variant out("kept");
    EXPECT_FALSE(request().contains("absent", out));
    EXPECT_EQ(static_cast<std::string>(out), "kept");
    EXPECT_TRUE(request().contains("nothing", out));
    EXPECT_TRUE(out.isNull());
    EXPECT_TRUE(request().contains("cookie", out));
    EXPECT_EQ(messageOfReading<bool>(out), "member \"cookie\": expected boolean, found number");
}

TEST(Values, AWalkVisitsElementsInOrder)
{
    std::string seen;
    for (const Variant& element : Kep::Json::parse(R"(["a","b","c"])")) {
        seen += static_cast<std::string>(element);
    }
    EXPECT_EQ(seen, "abc");
    const Variant none{Variant::Array{}};
    EXPECT_FALSE(none.begin() != none.end());
}

TEST(Values, APositionKeepsItsListAlive)
{
    auto position = Kep::Json::parse(R"(["kept"])").begin();
    EXPECT_EQ(static_cast<std::string>(*position), "kept");
}

TEST(Values, ManyThreadsReadOneValue)
{
    const Variant shared = request();
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 4; ++reader) {
        readers.emplace_back([&shared] {
            for (int round = 0; round < 200; ++round) {
                const Variant copy = shared;
                EXPECT_EQ(static_cast<std::string>(elementOf(copy["config"]["includeRanges"], 1)["from"]), "b");
            }
        });
    }
    for (auto& reader : readers) {
        reader.join();
    }
}

TEST(ValuesAsJson, KeepTheOrderOfMembersAndNoWhiteSpace)
{
    const std::string text = R"({"z":1,"a":[true,null,"x"],"m":{"k":-2.5}})";
    EXPECT_EQ(Kep::Json::parse(" { \"z\" : 1 , \"a\" : [ true, null, \"x\" ], \"m\" : { \"k\" : -2.5 } } ").toJson(),
              text);
    EXPECT_EQ(Variant().toJson(), "null");
    EXPECT_EQ(Variant(Variant::Object{}).toJson(), "{}");
    EXPECT_EQ(Variant(Variant::Array{}).toJson(), "[]");
    EXPECT_EQ(Variant(false).toJson(), "false");
}

TEST(ValuesAsJson, EncodeKeysAndTexts)
{
    EXPECT_EQ(Variant(Variant::Object{{"a\"b", Variant("c\xE4")}}).toJson(), "{\"a\\\"b\":\"c\xC3\xA4\"}");
}

TEST(ValuesAsJson, SnmpNumbersAreNumbersAndTheRestTexts)
{
    EXPECT_EQ(Variant::snmp(VariantType::snmpInteger, "-5").toJson(), "-5");
    EXPECT_EQ(Variant::snmp(VariantType::snmpCounter32, "1").toJson(), "1");
    EXPECT_EQ(Variant::snmp(VariantType::snmpGauge32, "2").toJson(), "2");
    EXPECT_EQ(Variant::snmp(VariantType::snmpTimeTicks, "3").toJson(), "3");
    EXPECT_EQ(Variant::snmp(VariantType::snmpCounter64, "18446744073709551615").toJson(), "18446744073709551615");
    EXPECT_EQ(Variant::snmp(VariantType::snmpIpAddress, "10.0.0.1").toJson(), "\"10.0.0.1\"");
    EXPECT_EQ(Variant::snmp(VariantType::snmpOpaque, "\xFF").toJson(), "\"\xC3\xBF\"");
}

TEST(ValuesAsJson, IntegersReadBackAtTheirLimits)
{
    for (const std::int64_t number :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(Variant(number).toJson(), std::to_string(number));
        EXPECT_EQ(Kep::Json::parse(Variant(number).toJson()).toJson(), std::to_string(number));
    }
}

TEST(ValuesAsJson, RealsReadBackAsTheSameRealNumber)
{
    std::vector<double> numbers = {0.0, -0.0, 0.1, 1.0, 1e22, 1e-300, 5e-324, 1.7976931348623157e308, 123456789.0};
    std::mt19937_64 random(20);
    for (int round = 0; round < 2000; ++round) {
        const auto number = std::bit_cast<double>(std::uint64_t{random()});
        if (std::isfinite(number)) {
            numbers.push_back(number);
        }
    }
    for (const double number : numbers) {
        const std::string json = Variant(number).toJson();
        const Variant back = Kep::Json::parse(json);
        EXPECT_EQ(back.type(), 3) << json;
        EXPECT_EQ(back.toJson(), json);
        EXPECT_EQ(std::strtod(json.c_str(), nullptr), number);
    }
}

TEST(ValuesAsJson, NumbersWithoutAJsonFormAreNull)
{
    EXPECT_EQ(Variant(std::nan("")).toJson(), "null");
    EXPECT_EQ(Variant(HUGE_VAL).toJson(), "null");
    EXPECT_EQ(Variant(-HUGE_VAL).toJson(), "null");
}

} // namespace
