#include "host/CredentialsFile.h"

#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/IniFile.h"
#include "host/PrivateFile.h"

#include <algorithm>
#include <array>

namespace Host {

namespace {

constexpr std::size_t LongestFile = 65536;

struct Key {
    const char* name;
    std::optional<Given> Credentials::*member;
};

constexpr std::array Keys = {
    Key{"version", &Credentials::version},
    Key{"community", &Credentials::community},
    Key{"user", &Credentials::user},
    Key{"level", &Credentials::level},
    Key{"auth-protocol", &Credentials::authProtocol},
    Key{"auth-password", &Credentials::authPassword},
    Key{"priv-protocol", &Credentials::privProtocol},
    Key{"priv-password", &Credentials::privPassword},
    Key{"context", &Credentials::context},
};

/// The key that is not known stays unsaid: a secret may have slipped into its place.
[[noreturn]] void refuseKey(const std::string& name, std::size_t line)
{
    std::string known;
    for (const Key& key : Keys)
        known += (known.empty() ? "" : ", ") + std::string(key.name);
    throw UsageError(name + ':' + std::to_string(line) + ": the key is not known; there are " + known);
}

Credentials credentialsOf(const IniSection& section, const std::string& name)
{
    Credentials result;
    for (const IniEntry& entry : section.entries) {
        const auto* key =
            std::find_if(Keys.begin(), Keys.end(), [&](const Key& each) { return each.name == entry.key; });
        if (key == Keys.end())
            refuseKey(name, entry.line);
        result.*key->member = Given{entry.value, key->name};
    }
    if (!result.version && result.user)
        result.version = Given{"3", "version"};
    return result;
}

CredentialNames namesFor(const IniSection& section, const std::string& name)
{
    return {.place = name + ": section " + inQuotes(section.name) + ": ",
            .version2 = "version = 2c",
            .version3 = "version = 3",
            .user = "user",
            .authProtocol = "auth-protocol",
            .authPassword = "auth-password",
            .privProtocol = "priv-protocol",
            .privPassword = "priv-password"};
}

} // namespace

std::vector<JsonValue> parseCredentials(std::string_view text, const std::string& name, int port)
{
    const std::vector<IniSection> sections = parseIni(text, name);
    if (sections.empty())
        throw UsageError(name + ": no credentials in it; a section [NAME] begins each");
    if (sections.size() > MostCredentials)
        throw UsageError(name + ": " + std::to_string(sections.size()) + " credentials; at most " +
                         std::to_string(MostCredentials) + " are accepted");
    std::vector<JsonValue> profiles;
    profiles.reserve(sections.size());
    for (const IniSection& section : sections)
        profiles.push_back(snmpProfile(credentialsOf(section, name), {}, namesFor(section, name), port));
    return profiles;
}

std::vector<JsonValue> readCredentialsFile(const std::string& path, int port)
{
    constexpr const char* option = "--credentials";
    const std::string text = readPrivateFile(path, option, LongestFile + 1);
    if (text.size() > LongestFile)
        throw UsageError(std::string(option) + ": " + path + " is longer than 64 KiB");
    if (text.find('\0') != std::string::npos)
        throw UsageError(std::string(option) + ": " + path + " holds no text");
    return parseCredentials(text, path, port);
}

} // namespace Host
