#include "host/console/RunRequest.h"

#include "host/console/HttpReplies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

AddressRanges localNetworks()
{
    return {{0xC0000200, 0xC00002FF}}; // 192.0.2.0/24
}

AddressRanges planned(const std::string& targets, const std::string& exclude = "")
{
    return planOf(targets, exclude, localNetworks);
}

std::string text(const AddressRanges& ranges)
{
    std::string all;
    for (const AddressRange& range : ranges)
        all += (all.empty() ? "" : " ") + rangeText(range);
    return all;
}

/// The field at fault and what is said of it.
template <class Call> std::string faultOf(const Call& call)
{
    try {
        call();
        return "none";
    } catch (const HttpError& error) {
        return error.details().value("field", "") + ": " + error.what();
    }
}

std::string targetFault(const std::string& targets, const std::string& exclude = "")
{
    return faultOf([&] { planned(targets, exclude); });
}

RunRequest read(const std::string& json)
{
    JsonBody body(json);
    RunRequest request = readRunRequest(body, localNetworks);
    body.refuseOthers();
    return request;
}

RunRequest readWith(const std::string& credentials)
{
    return read(R"({"targets":"10.0.0.7","credentials":)" + credentials + "}");
}

std::string credentialsFault(const std::string& credentials)
{
    return faultOf([&] { readWith(credentials); });
}

TEST(TargetTexts, AreSeparatedByCommasBlanksAndLineEnds)
{
    const std::string expected = "10.0.0.1 10.0.0.5 10.0.0.9";
    for (const char* targets :
         {"10.0.0.1,10.0.0.5,10.0.0.9", "10.0.0.1, 10.0.0.5 ,10.0.0.9", "10.0.0.1,5,9", "10.0.0.1 10.0.0.5\t10.0.0.9",
          "10.0.0.1\n10.0.0.5\r\n10.0.0.9\n", "10.0.0.1 # the first\n#10.0.0.2\n10.0.0.5,,10.0.0.9,"})
        EXPECT_EQ(text(planned(targets)), expected) << targets;
}

TEST(TargetTexts, AreWhatTheCommandLineTakes)
{
    EXPECT_EQ(text(planned("10.0.0-1.1-3")), "10.0.0.1-10.0.0.3 10.0.1.1-10.0.1.3");
    EXPECT_EQ(text(planned("10.0.0.0/24", "10.0.0.10-10.0.0.19")), "10.0.0.0-10.0.0.9 10.0.0.20-10.0.0.255");
    EXPECT_EQ(text(planned("@local")), "192.0.2.0-192.0.2.255");
    EXPECT_EQ(text(planned("@local,10.0.0.1", "@local")), "10.0.0.1");
}

TEST(TargetTexts, AreRefusedInWordsAtTheirField)
{
    EXPECT_THAT(targetFault(""), HasSubstr("targets: "));
    EXPECT_THAT(targetFault(" ,\n# nothing"), HasSubstr("targets: "));
    EXPECT_THAT(targetFault("10.0.0.9-10.0.0.1"), AllOf(HasSubstr("targets: "), HasSubstr("10.0.0.9-10.0.0.1")));
    EXPECT_THAT(targetFault("10.0.0.256"), HasSubstr("10.0.0.256"));
    EXPECT_THAT(targetFault("printer.example"), HasSubstr("printer.example"));
    EXPECT_THAT(targetFault("-"), HasSubstr("targets: "));
    EXPECT_THAT(targetFault("10.0.0.1", "-"), HasSubstr("exclude: "));
    EXPECT_THAT(targetFault("10.0.0.1", "10.0.0.999"), AllOf(HasSubstr("exclude: "), HasSubstr("10.0.0.999")));
    EXPECT_THAT(targetFault("10.0.0.1", "10.0.0.0/24"), HasSubstr("exclude: nothing is left"));
    EXPECT_THAT(targetFault("10.0.0.0"), HasSubstr("targets: "));
}

TEST(TargetTexts, AreBounded)
{
    EXPECT_EQ(countProbed(planned("10.0.0.0/8")), 65536U * 254U);
    EXPECT_THAT(targetFault("10.0.0.0/7"), HasSubstr("targets: "));
    EXPECT_THAT(targetFault("0.0.0.0/0"), HasSubstr("targets: "));
    EXPECT_EQ(targetFault(std::string(65536 - 8, ' ') + "10.0.0.1"), "none");
    EXPECT_THAT(targetFault(std::string(65537 - 8, ' ') + "10.0.0.1"), HasSubstr("64 KiB"));
}

TEST(RunRequests, AskForTheUsualWhenTheySayNothing)
{
    const RunRequest request = read(R"({"targets":"10.0.0.1-10.0.0.9"})");
    EXPECT_EQ(request.targets, "10.0.0.1-10.0.0.9");
    EXPECT_EQ(request.port, 161);
    EXPECT_EQ(request.addresses, 9U);
    EXPECT_FALSE(request.confirmed);
    EXPECT_THAT(request.credentials, ElementsAre("v2c"));
    ASSERT_THAT(request.profiles, SizeIs(1));
    EXPECT_EQ(request.profiles[0].at("communityRead"), "public");
    EXPECT_EQ(request.profiles[0].at("snmpPort"), 161);
}

TEST(RunRequests, SayAllOfIt)
{
    const RunRequest request = read(R"({"name":"second floor","targets":"10.0.0.0/24","exclude":"10.0.0.7","port":1161,
        "confirmed":true,"credentials":[{"version":"1","community":"old"},
        {"version":"3","user":"admin","level":"authPriv","authProtocol":"SHA","authPassword":"first-secret",
         "privProtocol":"AES","privPassword":"second-secret","context":"c"}]})");
    EXPECT_EQ(request.name, "second floor");
    EXPECT_EQ(request.exclude, "10.0.0.7");
    EXPECT_EQ(request.addresses, 253U);
    EXPECT_TRUE(request.confirmed);
    EXPECT_THAT(request.credentials, ElementsAre("v1", "v3 user admin"));
    ASSERT_THAT(request.profiles, SizeIs(2));
    EXPECT_EQ(request.profiles[0].at("communityRead"), "old");
    EXPECT_EQ(request.profiles[0].at("snmpVersion"), 1);
    EXPECT_EQ(request.profiles[1].at("usm"), "admin");
    EXPECT_EQ(request.profiles[1].at("authProtocol"), "SHA1");
    EXPECT_EQ(request.profiles[1].at("authPwd"), "first-secret");
    EXPECT_EQ(request.profiles[1].at("privacyProtocol"), "AES128");
    EXPECT_EQ(request.profiles[1].at("privacyPwd"), "second-secret");
    EXPECT_EQ(request.profiles[1].at("context"), "c");
    EXPECT_EQ(request.profiles[1].at("snmpPort"), 1161);
}

TEST(RunRequests, FieldsLeftEmptyCountAsNone)
{
    const RunRequest request =
        readWith(R"([{"version":"2c","community":"","user":"","authPassword":"","context":null}])");
    EXPECT_EQ(request.profiles[0].at("communityRead"), "");
}

TEST(RunRequests, AreRefusedInWordsAtTheirField)
{
    EXPECT_THAT(faultOf([] { read(R"({"targets":7})"); }), HasSubstr("targets: \"targets\" is to be text"));
    EXPECT_THAT(faultOf([] { read(R"({})"); }), HasSubstr("targets: "));
    for (const char* port : {"0", "65536", "-1", "\"161\"", "1.5", "18446744073709551777"})
        EXPECT_THAT(faultOf([&] { read(R"({"targets":"10.0.0.1","port":)" + std::string(port) + "}"); }),
                    HasSubstr("port: "))
            << port;
    EXPECT_THAT(faultOf([] { read(R"({"targets":"10.0.0.1","confirmed":1})"); }), HasSubstr("confirmed: "));
    EXPECT_THAT(faultOf([] { read(R"({"targets":"10.0.0.1","name":")" + std::string(201, 'x') + "\"}"); }),
                HasSubstr("name: "));
    EXPECT_THAT(faultOf([] { read(R"({"targets":"10.0.0.1","target":"10.0.0.2"})"); }), HasSubstr("not known"));
}

TEST(RunRequests, CredentialsAreRefusedWithoutTheirSecrets)
{
    for (const char* credentials :
         {R"({"version":"2c"})", R"(["hidden-secret"])", R"([{"version":"4","community":"hidden-secret"}])",
          R"([{"community":"hidden-secret","user":"x"}])", R"([{"version":"3","authPassword":"hidden-secret"}])",
          R"([{"version":"3","user":"x","level":"authNoPriv","authPassword":"hidden-secret"}])",
          R"([{"version":"3","user":"x","level":"authNoPriv","authProtocol":"SHA","authPassword":"hidden"}])",
          R"([{"version":"3","user":"x","authProtocol":"SHA9","authPassword":"hidden-secret"}])",
          R"([{"version":"3","user":"x","comunity":"hidden-secret"}])", R"([{"community":["hidden-secret"]}])"})
        EXPECT_THAT(credentialsFault(credentials), AllOf(HasSubstr("credentials: "), Not(HasSubstr("hidden"))))
            << credentials;
}

TEST(RunRequests, OfSeveralCredentialsTheOneAtFaultIsNamed)
{
    EXPECT_THAT(credentialsFault(R"([{"version":"1"},{"version":"3"}])"), HasSubstr("credentials 2: "));
}

TEST(RunRequests, CredentialsAreBounded)
{
    std::string all = "{}";
    for (std::size_t i = 1; i < MostCredentialsOfRun; ++i)
        all += ",{}";
    EXPECT_THAT(readWith("[" + all + "]").profiles, SizeIs(MostCredentialsOfRun));
    EXPECT_THAT(credentialsFault("[" + all + ",{}]"), HasSubstr("at most 16"));
    EXPECT_THAT(readWith("[]").profiles, SizeIs(1));
}

TEST(JsonBodies, AreObjects)
{
    for (const char* wrong : {"", "[]", "7", "null", "{", "{\"a\":hidden}", "{} {}"})
        EXPECT_THAT(faultOf([&] { JsonBody body{std::string(wrong)}; }),
                    AllOf(HasSubstr("the request's body"), Not(HasSubstr("hidden"))))
            << wrong;
    const std::string deep = std::string(70, '[') + std::string(70, ']');
    EXPECT_THAT(faultOf([&] { JsonBody body("{\"a\":" + deep + "}"); }), HasSubstr("nested too deeply"));
}

} // namespace
} // namespace Host
