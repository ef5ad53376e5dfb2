#include "documents/DiscoveryConfig.h"

#include "Kep/Exception.h"
#include "Kep/Json.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

MATCHER_P2(RangeOf, from, to, "")
{
    return arg.from == from && arg.to == to;
}

class DiscoveryRequest : public testing::Test {
protected:
    void with(const std::string& key, const std::string& json) { members_[key] = json; }
    std::string without(const std::string& key) { return members_.extract(key).mapped(); }

    DiscoveryConfig parse() const
    {
        std::string text;
        for (const auto& [key, json] : members_)
            text += (text.empty() ? "{\"" : ",\"") + key + "\":" + json;
        return parseDiscoveryConfig(Kep::Json::parse(text + "}"));
    }

    void expectRefused(const std::string& reason) const
    {
        EXPECT_THAT([this] { parse(); }, ThrowsMessage<Kep::GenericException>(HasSubstr(reason)));
    }

private:
    std::map<std::string, std::string> members_ = {
        {"usePing", "true"},     {"pingTimeout", "700"},
        {"snmpTimeout", "900"},  {"includeRanges", R"([{"from":"10.0.0.1","to":"10.0.0.9"}])"},
        {"excludeRanges", "[]"}, {"snmpProfile", R"({"snmpVersion":1,"communityRead":"r","communityWrite":"w"})"},
    };
};

TEST(DiscoveryConfigRecord, StartsFromItsInitialValues)
{
    const DiscoveryConfig config;
    EXPECT_FALSE(config.usePing);
    EXPECT_EQ(config.pingTimeout, 500);
    EXPECT_EQ(config.snmpTimeout, 500);
    EXPECT_THAT(config.includeRanges, IsEmpty());
    EXPECT_THAT(config.excludeRanges, IsEmpty());
    EXPECT_EQ(config.snmpProfile, nullptr);
}

TEST(DiscoveryConfigRecord, MovingLeavesTheSourceEmpty)
{
    DiscoveryConfig source;
    source.includeRanges = {{"10.0.0.1", "10.0.0.2"}};
    source.excludeRanges = {{"10.0.0.2", "10.0.0.2"}};
    source.snmpProfile = std::make_shared<Kep::Snmp::ProfileV1>();
    const DiscoveryConfig target = std::move(source);
    EXPECT_THAT(target.includeRanges, ElementsAre(RangeOf("10.0.0.1", "10.0.0.2")));
    EXPECT_THAT(target.excludeRanges, ElementsAre(RangeOf("10.0.0.2", "10.0.0.2")));
    EXPECT_EQ(target.snmpProfile.use_count(), 1);
    EXPECT_THAT(source.includeRanges, IsEmpty()); // NOLINT(bugprone-use-after-move): this is what is tested
    EXPECT_THAT(source.excludeRanges, IsEmpty());
    EXPECT_EQ(source.snmpProfile, nullptr);
}

TEST_F(DiscoveryRequest, SettingsAreStoredAsGiven)
{
    with("usePing", "false");
    with("pingTimeout", "-7");
    with("snmpTimeout", "2147483647");
    const DiscoveryConfig config = parse();
    EXPECT_FALSE(config.usePing);
    EXPECT_EQ(config.pingTimeout, -7);
    EXPECT_EQ(config.snmpTimeout, 2147483647);
}

TEST_F(DiscoveryRequest, PingThatIsWantedIsStored)
{
    EXPECT_TRUE(parse().usePing);
}

TEST_F(DiscoveryRequest, RangesKeepTheOrderOfTheRequest)
{
    with("includeRanges", R"([{"from":"10.0.9.1","to":"10.0.9.2"},{"from":"10.0.1.1","to":"10.0.1.2"},
                             {"from":"10.0.9.1","to":"10.0.9.2"}])");
    with("excludeRanges", R"([{"from":"10.0.9.2","to":"10.0.9.2"},{"from":"10.0.1.1","to":"10.0.1.1"}])");
    const DiscoveryConfig config = parse();
    EXPECT_THAT(config.includeRanges, ElementsAre(RangeOf("10.0.9.1", "10.0.9.2"), RangeOf("10.0.1.1", "10.0.1.2"),
                                                  RangeOf("10.0.9.1", "10.0.9.2")));
    EXPECT_THAT(config.excludeRanges, ElementsAre(RangeOf("10.0.9.2", "10.0.9.2"), RangeOf("10.0.1.1", "10.0.1.1")));
}

TEST_F(DiscoveryRequest, ReversedRangeKeepsItsBounds)
{
    with("includeRanges", R"([{"from":"10.0.0.9","to":"10.0.0.1"}])");
    EXPECT_THAT(parse().includeRanges, ElementsAre(RangeOf("10.0.0.9", "10.0.0.1")));
}

TEST_F(DiscoveryRequest, BoundsAreNeitherTrimmedNorChecked)
{
    with("includeRanges", R"([{"from":" 10.0.0.1 ","to":"nonsense"},{"from":"","to":"10.0.0.1"}])");
    EXPECT_THAT(parse().includeRanges, ElementsAre(RangeOf(" 10.0.0.1 ", "nonsense"), RangeOf("", "10.0.0.1")));
}

TEST_F(DiscoveryRequest, EmptyListGivesNoRanges)
{
    with("includeRanges", "[]");
    EXPECT_THAT(parse().includeRanges, IsEmpty());
}

TEST_F(DiscoveryRequest, NullListsGiveNoRanges)
{
    with("includeRanges", "null");
    with("excludeRanges", "null");
    const DiscoveryConfig config = parse();
    EXPECT_THAT(config.includeRanges, IsEmpty());
    EXPECT_THAT(config.excludeRanges, IsEmpty());
}

TEST_F(DiscoveryRequest, AbsentListsGiveNoRanges)
{
    without("includeRanges");
    without("excludeRanges");
    const DiscoveryConfig config = parse();
    EXPECT_THAT(config.includeRanges, IsEmpty());
    EXPECT_THAT(config.excludeRanges, IsEmpty());
}

TEST_F(DiscoveryRequest, ProfileIsRead)
{
    const auto profile = std::dynamic_pointer_cast<Kep::Snmp::ProfileV1>(parse().snmpProfile);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->readCommunity, "r");
}

TEST_F(DiscoveryRequest, MissingMembersAreRefusedByName)
{
    for (const char* key : {"pingTimeout", "snmpTimeout", "usePing", "snmpProfile"}) {
        const std::string given = without(key);
        expectRefused(std::string("\"") + key + "\"");
        with(key, given);
    }
}

TEST_F(DiscoveryRequest, NullCountsAsMissingForEverythingButLists)
{
    with("pingTimeout", "null");
    expectRefused("\"pingTimeout\"");
}

TEST_F(DiscoveryRequest, ListOfAnotherKindIsRefused)
{
    with("excludeRanges", "\"10.0.0.1\"");
    expectRefused("\"excludeRanges\"");
}

TEST_F(DiscoveryRequest, RangeWithoutBoundIsRefused)
{
    with("includeRanges", R"([{"from":"10.0.0.1"}])");
    expectRefused("to\"");
    with("includeRanges", R"([{"to":"10.0.0.1"}])");
    expectRefused("from\"");
}

TEST_F(DiscoveryRequest, MembersAreReadInTheirOrder)
{
    // The first member that is wrong is the one reported.
    for (const char* key : {"snmpProfile", "excludeRanges", "includeRanges", "usePing", "snmpTimeout", "pingTimeout"}) {
        with(key, "\"wrong\"");
        expectRefused(std::string("\"") + key + "\"");
    }
}

TEST(RangeTextOfRequest, IsReadFromOneObject)
{
    EXPECT_THAT(parseIpRangeText(Kep::Json::parse(R"({"to":"10.0.0.2","from":"10.0.0.1"})")),
                RangeOf("10.0.0.1", "10.0.0.2"));
}

} // namespace
} // namespace PrinterDiscoveryPlugin
