// Credentials as people write them in files: a credentials file, and the configuration of the net-snmp tools.
#include "fuzz/Target.h"
#include "host/CredentialsFile.h"
#include "host/Errors.h"
#include "host/SnmpConf.h"

#include <optional>

namespace {

using Host::Credentials;
using Host::JsonValue;

void requireUsable(const JsonValue& profile)
{
    const int version = profile.at("snmpVersion").get<int>();
    Fuzz::require(version >= 1 && version <= 3, "a profile is of a version that there is");
    if (version < 3)
        return;
    Fuzz::require(!profile.at("usm").get<std::string>().empty(), "version 3 has a user");
    for (const auto& [protocol, password] : {std::pair{"authProtocol", "authPwd"}, {"privacyProtocol", "privacyPwd"}}) {
        const bool used = !profile.at(protocol).get<std::string>().empty();
        const std::size_t length = profile.at(password).get<std::string>().size();
        Fuzz::require(used ? length >= 8 : length == 0, "a protocol has its password, and none has none");
    }
}

void readAsCredentials(std::string_view text)
{
    try {
        const auto profiles = Host::parseCredentials(text, "file", 161);
        Fuzz::require(!profiles.empty() && profiles.size() <= Host::MostCredentials, "credentials are bounded");
        for (const JsonValue& profile : profiles)
            requireUsable(profile);
    } catch (const Host::UsageError& error) {
        Fuzz::require(std::string_view(error.what()).starts_with("file:"), "a refusal names the file");
    }
}

void readAsSnmpConf(std::string_view text)
{
    const Credentials credentials = Host::parseSnmpConf(text, "file");
    for (const auto* given : {&credentials.version, &credentials.user, &credentials.authPassword})
        Fuzz::require(!*given || (!(*given)->value.empty() && (*given)->by.ends_with(" of file")),
                      "a value is not empty and says where it is from");
    const Host::CredentialNames names{"", "2", "3", "u", "a", "A", "x", "X"};
    try {
        requireUsable(Host::snmpProfile({}, credentials, names, 161));
    } catch (const Host::UsageError& error) {
        Fuzz::require(*error.what() != '\0', "a refusal has words");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = Fuzz::textOf(data, size);
    readAsCredentials(text);
    readAsSnmpConf(text);
    return 0;
}
