// Communities and passwords that requests carry stay inside: out of replies, standard error and the data store.
#include "entry/Host.h"
#include "unit/support/Privacy.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

using nlohmann::json;

namespace {

constexpr std::array operations = {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery",
                                   "getStatus",      "startService",           "getServiceConfig"};

// Words that occur nowhere else, not even in parts.
const std::string readCommunity = "qZ7xW2kV9jQ4";
const std::string writeCommunity = "Jw5Qz8Xv3Kq6";
const std::string authPassword = "vX4qK9zJ2wQ7";
const std::string privacyPassword = "Kz3jV6qX8wZ5";

/// Four bytes of a secret in a row give it away.
constexpr std::size_t tellingPart = 4;

/// A part of a secret that `text` holds; empty when there is none.
std::string leakIn(const std::string& text)
{
    for (const std::string& secret : {readCommunity, writeCommunity, authPassword, privacyPassword})
        for (std::size_t at = 0; at + tellingPart <= secret.size(); ++at)
            if (const std::string part = secret.substr(at, tellingPart); text.find(part) != std::string::npos)
                return part;
    return {};
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

json communityProfile(int version)
{
    return {{"snmpVersion", version}, {"communityRead", readCommunity}, {"communityWrite", writeCommunity}};
}

json userProfile(const std::string& authProtocol, const std::string& privacyProtocol)
{
    return {{"snmpVersion", 3},
            {"usm", "admin"},
            {"authProtocol", authProtocol},
            {"authPwd", authPassword},
            {"privacyProtocol", privacyProtocol},
            {"privacyPwd", privacyPassword},
            {"context", ""}};
}

std::vector<json> profiles()
{
    return {communityProfile(1),        communityProfile(2),           userProfile("", ""),
            userProfile("MD5", ""),     userProfile("SHA1", "DES"),    userProfile("SHA1", "AES256"),
            userProfile("MD5", "IDEA"), userProfile("", "AES128"),     userProfile("SHA1", "DES3EDE"),
            userProfile("SHA", "AES"),  userProfile("SHA1", "AES192"), userProfile("MD5", "AES128W3DESKEYEXT")};
}

/// The parameters of a start. An address that cannot be read counts as 0.0.0.0: a request for just that probes
/// nothing, whatever becomes of its bounds, and its run is finished at once.
json startOf(const json& profile, const std::string& address = "0.0.0.0", std::uint16_t port = 9)
{
    json params = startParameters("c", address, address, port);
    params["firstIdx"] = 0;
    params["config"]["excludeRanges"] = {{{"from", "127.20.0.7"}, {"to", "127.20.0.8"}}};
    params["config"]["snmpProfile"] = profile;
    params["config"]["snmpProfile"]["snmpPort"] = port;
    return params;
}

/// Where the members of a document are, those of members included.
std::vector<json::json_pointer> membersOf(const json& document)
{
    std::set<std::string> paths;
    const json flat = document.flatten();
    for (const auto& [path, value] : flat.items())
        for (json::json_pointer member(path); !member.empty(); member = member.parent_pointer())
            paths.insert(member.to_string());
    return {paths.begin(), paths.end()};
}

std::vector<json> wrongValues()
{
    const json keyed = {{readCommunity, authPassword}, {privacyPassword, json::array({writeCommunity})}};
    return {nullptr,
            true,
            -7,
            1.5,
            1e300,
            4294967296,
            readCommunity,
            json::array(),
            json::object(),
            keyed,
            json::array({authPassword, keyed})};
}

class Secrets : public WithHost {
protected:
    Secrets()
    {
        testing::internal::CaptureStderr();
        set("services.PrinterDiscovery.macAddressOids", macAddressOids);
        init();
    }

    /// Every test ends with what the process left outside its replies.
    void TearDown() override
    {
        driver.deinit();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        const std::filesystem::path store = dataStore();
        EXPECT_NE(contentOf(store).find(macAddressOids), std::string::npos) << "this is how the file keeps texts";
        for (const auto& entry : std::filesystem::directory_iterator(store.parent_path())) {
            EXPECT_EQ(leakIn(contentOf(entry.path())), "") << entry.path();
            EXPECT_TRUE(isPrivate(entry.path().string())) << entry.path();
        }
    }

    std::string ask(const std::string& operation, const std::string& params) const
    {
        std::string reply = call(operation, params);
        EXPECT_EQ(leakIn(reply), "") << operation << " answers " << reply;
        return reply;
    }

    void askAll(const std::string& params) const
    {
        for (const char* operation : operations)
            ask(operation, params);
    }

    static constexpr auto macAddressOids = ".1.3.6.1.2.1.2.2.1.6.1";
};

TEST_F(Secrets, StayOutOfTheRepliesToGoodParameters)
{
    const std::uint16_t closed = System::closedPort();
    const System::SilentHosts silent(1);
    for (const json& profile : profiles())
        for (const std::uint16_t port : {closed, silent.port()}) {
            ASSERT_EQ(ask("startDiscovery", startOf(profile, "127.20.0.1", port).dump()), success);
            const json last = finish("c");
            EXPECT_EQ(last.at("step"), 1);
            EXPECT_EQ(leakIn(last.dump()), "");
        }
    for (const json& profile : profiles())
        askAll(startOf(profile).dump());
}

TEST_F(Secrets, StayOutOfTheRepliesOfAStoppedService)
{
    ask("stopService", startOf(communityProfile(2)).dump());
    for (const json& profile : profiles())
        for (const char* operation : {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"})
            EXPECT_NE(ask(operation, startOf(profile).dump()), success);
}

TEST_F(Secrets, StayOutOfTheRepliesOfUnknownServicesAndOperations)
{
    const std::string params = startOf(userProfile("SHA1", "AES128")).dump();
    ask("startdiscovery", params);
    EXPECT_EQ(leakIn(callService("Nobody", "startDiscovery", params)), "");
}

TEST_F(Secrets, StayOutOfTheRepliesWhenAMemberIsMissing)
{
    for (const json& profile : {communityProfile(1), communityProfile(2), userProfile("SHA1", "AES128")}) {
        const json params = startOf(profile);
        for (const auto& member : membersOf(params)) {
            const json removal = {{"op", "remove"}, {"path", member.to_string()}};
            askAll(params.patch(json::array({removal})).dump());
        }
    }
}

TEST_F(Secrets, StayOutOfTheRepliesWhenAMemberIsOfAWrongKind)
{
    for (const json& profile : {communityProfile(1), communityProfile(2), userProfile("SHA1", "AES128")})
        for (const auto& member : membersOf(startOf(profile)))
            // A request is answered with its cookie, whatever that is.
            for (const json& value : wrongValues()) {
                json params = startOf(profile);
                params[member] = value;
                if (!params["cookie"].is_string() || leakIn(params["cookie"]).empty())
                    askAll(params.dump());
            }
}

TEST_F(Secrets, StayOutOfTheRepliesToUnknownVersionsAndCodes)
{
    for (const json& version : {json(0), json(4), json(-1), json(2147483647), json("3"), json(2.0), json(authPassword)})
        for (json profile : profiles()) {
            profile["snmpVersion"] = version;
            askAll(startOf(profile).dump());
        }
    for (const char* code : {"SHA-512", "md5", "AES128 ", "none"})
        for (const json& profile : {userProfile(code, "AES128"), userProfile("SHA1", code), userProfile(code, code)})
            EXPECT_EQ(ask("startDiscovery", startOf(profile).dump()), success);
    for (const json& profile : {userProfile(authPassword, "AES128"), userProfile("SHA1", privacyPassword)})
        EXPECT_EQ(ask("startDiscovery", startOf(profile).dump()), success);
}

TEST_F(Secrets, StayInsideWhenPasswordsAreTooShort)
{
    const std::uint16_t port = System::closedPort();
    for (const std::size_t length : {0U, 4U, 7U})
        for (const char* key : {"authPwd", "privacyPwd"}) {
            json profile = userProfile("SHA1", "AES128");
            profile[key] = profile[key].get<std::string>().substr(0, length);
            EXPECT_EQ(ask("startDiscovery", startOf(profile, "127.20.0.1", port).dump()), success);
            EXPECT_EQ(leakIn(finish("c").dump()), "");
        }
}

TEST_F(Secrets, StayOutOfTheRepliesToDocumentsCutAnywhere)
{
    for (const json& profile : {communityProfile(2), userProfile("SHA1", "AES128")})
        for (const int indent : {-1, 1}) {
            const std::string params = startOf(profile).dump(indent);
            for (std::size_t length = 0; length < params.size(); ++length)
                for (const char* operation : {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"})
                    EXPECT_NE(ask(operation, params.substr(0, length)).find("malformed JSON"), std::string::npos);
        }
}

TEST_F(Secrets, StayOutOfTheRepliesToDocumentsDamagedAnywhere)
{
    for (const json& profile : {communityProfile(2), userProfile("SHA1", "AES128")}) {
        const std::string params = startOf(profile).dump();
        for (const char damage : {'"', '\\', '{', ']', ',', '\n', '\0', '\xff', '\xc3'})
            for (std::size_t at = 0; at < params.size(); ++at) {
                std::string damaged = params;
                damaged[at] = damage;
                ask("startDiscovery", damaged);
                ask("stopDiscovery", damaged);
            }
    }
}

TEST_F(Secrets, StayOutOfTheRepliesWhenTheyAreNoValidText)
{
    for (const char* insert : {"\xff", "\xc3", "\xed\xa0\x80", "\\ud800", "\\udc00", "\\x", "\\u12", "\n", "\x01"})
        for (const std::string& secret : {readCommunity, writeCommunity, authPassword, privacyPassword})
            for (const json& profile : {communityProfile(2), userProfile("SHA1", "AES128")}) {
                std::string params = startOf(profile).dump();
                if (const auto at = params.find(secret); at != std::string::npos)
                    askAll(params.insert(at + secret.size() / 2, insert));
            }
}

TEST_F(Secrets, StayOutOfTheRepliesWhenExcludesAreWrong)
{
    const auto range = [](const json& from, const json& to) { return json{{"from", from}, {"to", to}}; };
    for (const json& profile : profiles())
        for (const json& excludes :
             {json(7), json(writeCommunity), json::array({range(readCommunity, authPassword)}),
              json::array({range("10.0.0.9", "10.0.0.1")}), json::array({range("10.0.0.300", "")}),
              json::array({range(nullptr, authPassword)}), json::array({{{"from", privacyPassword}}}),
              json::array({authPassword}), json{{authPassword, range("10.0.0.1", 7)}}}) {
            json params = startOf(profile);
            params["config"]["excludeRanges"] = excludes;
            askAll(params.dump());
        }
}

TEST_F(Secrets, OfAMalformedConfigurationAreNotRepeated)
{
    driver.deinit();
    const std::string configuration = configurationOf(dataStore());
    const std::string broken = R"({"password":")" + authPassword + "\" \"" + readCommunity + '"' + configuration;
    for (std::size_t length = 0; length < broken.size(); ++length) {
        EXPECT_EQ(leakIn(init(broken.substr(0, length))), "");
        driver.deinit();
    }
    init(configuration);
}

} // namespace
