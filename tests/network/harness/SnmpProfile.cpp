#include "tests/network/harness/SnmpProfile.h"

namespace NetworkTests {
namespace {

void append(std::vector<std::string>& words, const std::string& option, const std::string& value)
{
    if (!value.empty()) {
        words.push_back(option);
        words.push_back(value);
    }
}

} // namespace

std::string SnmpProfile::level() const
{
    if (authProtocol.empty()) {
        return "noAuthNoPriv";
    }
    return privacyProtocol.empty() ? "authNoPriv" : "authPriv";
}

std::vector<std::string> SnmpProfile::options(bool withPasswords) const
{
    std::vector<std::string> words = {"-v", version};
    if (version != "3") {
        append(words, "-c", community);
        return words;
    }
    append(words, "-u", user);
    append(words, "-l", level());
    append(words, "-a", authProtocol);
    append(words, "-x", privacyProtocol);
    append(words, "-n", context);
    if (withPasswords && !authProtocol.empty()) {
        append(words, "-A", authPassword);
    }
    if (withPasswords && !privacyProtocol.empty()) {
        append(words, "-X", privacyPassword);
    }
    return words;
}

SnmpProfile v1(const std::string& community)
{
    return {.name = "Version1", .version = "1", .community = community};
}

SnmpProfile v2c(const std::string& community)
{
    return {.name = "Version2c", .version = "2c", .community = community};
}

SnmpProfile v3(const std::string& authProtocol, const std::string& privacyProtocol)
{
    const std::string protocols =
        (authProtocol.empty() ? "None" : authProtocol) + (privacyProtocol.empty() ? "None" : privacyProtocol);
    return {.name = "Version3" + protocols,
            .version = "3",
            .user = "user" + protocols,
            .authProtocol = authProtocol,
            .authPassword = "authentication-of-" + protocols,
            .privacyProtocol = privacyProtocol,
            .privacyPassword = "privacy-of-" + protocols};
}

std::vector<SnmpProfile> commonProfiles()
{
    return {v1(), v2c(), v3("", ""), v3("MD5", ""), v3("SHA", ""), v3("MD5", "DES"), v3("SHA", "AES")};
}

void PrintTo(const SnmpProfile& profile, std::ostream* out)
{
    std::string text = profile.name;
    std::erase(text, '-');
    *out << text;
}

} // namespace NetworkTests
