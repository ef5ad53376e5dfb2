#include "host/SnmpOptions.h"

#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/Platform.h"
#include "host/Secrets.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace Host {

namespace {

constexpr std::size_t ShortestPassword = 8; // RFC 3414, section 11.2

struct Spelling {
    std::string_view written;
    std::string_view meant;
};

/// Names of protocols as requests have them.
constexpr Spelling AuthProtocols[] = {{"md5", "MD5"}, {"sha", "SHA1"}, {"sha1", "SHA1"}, {"sha-1", "SHA1"}};

/// The forms that end in C lengthen a short key as Cisco devices do.
constexpr Spelling PrivProtocols[] = {
    {"des", "DES"},
    {"aes", "AES128"},
    {"aes128", "AES128"},
    {"aes-128", "AES128"},
    {"aes192", "AES192"},
    {"aes-192", "AES192"},
    {"aes256", "AES256"},
    {"aes-256", "AES256"},
    {"aes192c", "AES192W3DESKEYEXT"},
    {"aes-192-c", "AES192W3DESKEYEXT"},
    {"aes256c", "AES256W3DESKEYEXT"},
    {"aes-256-c", "AES256W3DESKEYEXT"},
};

constexpr Spelling Levels[] = {
    {"noauthnopriv", "noAuthNoPriv"}, {"authnopriv", "authNoPriv"}, {"authpriv", "authPriv"}};

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

template <std::size_t Count>
std::string meaning(const Spelling (&spellings)[Count], const std::string& written, const std::string& option,
                    const std::string& accepted)
{
    for (const Spelling& spelling : spellings)
        if (spelling.written == lowered(written))
            return std::string(spelling.meant);
    throw UsageError(option + ": " + inQuotes(written) + " is not known; " + accepted + " are accepted");
}

int portOf(const std::optional<std::string>& text)
{
    if (!text)
        return 161;
    int port = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), port);
    if (error != std::errc() || end != text->data() + text->size() || port < 1 || port > 65535)
        throw UsageError("--port: " + inQuotes(*text) + " is no port; 1 to 65535 are accepted");
    return port;
}

/// Refuses options that the version would silently ignore.
void refuseForeign(const std::string& what, std::initializer_list<std::pair<const char*, bool>> given)
{
    for (const auto& [option, present] : given)
        if (present)
            throw UsageError(std::string(option) + " is for SNMP " + what);
}

JsonValue communityProfile(int version, const SnmpArguments& arguments, const SnmpEnvironment& environment)
{
    refuseForeign("version 3; give -v 3", {{"-u", arguments.user.has_value()},
                                           {"-l", arguments.level.has_value()},
                                           {"-a", arguments.authProtocol.has_value()},
                                           {"-A", arguments.authPassword.has_value()},
                                           {"--auth-password-file", arguments.authPasswordFile.has_value()},
                                           {"-x", arguments.privProtocol.has_value()},
                                           {"-X", arguments.privPassword.has_value()},
                                           {"--priv-password-file", arguments.privPasswordFile.has_value()},
                                           {"-n", arguments.context.has_value()}});
    const auto community =
        resolveSecret({arguments.community, arguments.communityFile, environment.community}, "--community-file");
    return {{"snmpVersion", version},
            {"snmpPort", portOf(arguments.port)},
            {"communityRead", community.value_or("public")},
            {"communityWrite", ""}};
}

/// Without -l, what the protocols given amount to.
std::string levelOf(const SnmpArguments& arguments)
{
    if (arguments.level)
        return meaning(Levels, *arguments.level, "-l", "noAuthNoPriv, authNoPriv and authPriv");
    if (arguments.privProtocol)
        return "authPriv";
    return arguments.authProtocol ? "authNoPriv" : "noAuthNoPriv";
}

struct Protection {
    std::string protocol;
    std::string password;
};

/// What one of authentication and privacy is called on the command line.
struct ProtectionNames {
    const char* protocolOption;
    const char* passwordOption;
    const char* fileOption;
    const char* protocols;
};

constexpr ProtectionNames AuthNames{"-a", "-A", "--auth-password-file", "MD5 and SHA"};
constexpr ProtectionNames PrivNames{"-x", "-X", "--priv-password-file",
                                    "DES, AES, AES-192, AES-256, AES-192-C and AES-256-C"};

template <std::size_t Count>
Protection protectionOf(const ProtectionNames& names, const Spelling (&spellings)[Count],
                        const std::optional<std::string>& protocol, const SecretSource& source,
                        const std::string& level)
{
    if (!protocol)
        throw UsageError(level + " needs " + names.protocolOption + "; " + names.protocols + " are accepted");
    Protection result{meaning(spellings, *protocol, names.protocolOption, names.protocols), {}};
    const auto password = resolveSecret(source, names.fileOption);
    if (!password)
        throw UsageError(level + " needs a password: " + names.passwordOption + ", " + names.fileOption +
                         " or its environment variable");
    if (password->size() < ShortestPassword)
        throw UsageError(std::string(names.passwordOption) + ": a password has at least 8 characters");
    result.password = *password;
    return result;
}

JsonValue userProfile(const SnmpArguments& arguments, const SnmpEnvironment& environment)
{
    refuseForeign("versions 1 and 2c",
                  {{"-c", arguments.community.has_value()}, {"--community-file", arguments.communityFile.has_value()}});
    if (!arguments.user || arguments.user->empty())
        throw UsageError("-v 3 needs a user name: -u");
    const std::string level = levelOf(arguments);
    Protection auth;
    Protection priv;
    if (level == "noAuthNoPriv")
        refuseForeign("levels authNoPriv and authPriv",
                      {{"-a", arguments.authProtocol.has_value()},
                       {"-A", arguments.authPassword.has_value()},
                       {"--auth-password-file", arguments.authPasswordFile.has_value()}});
    else
        auth = protectionOf(AuthNames, AuthProtocols, arguments.authProtocol,
                            {arguments.authPassword, arguments.authPasswordFile, environment.authPassword}, level);
    if (level != "authPriv")
        refuseForeign("level authPriv", {{"-x", arguments.privProtocol.has_value()},
                                         {"-X", arguments.privPassword.has_value()},
                                         {"--priv-password-file", arguments.privPasswordFile.has_value()}});
    else
        priv = protectionOf(PrivNames, PrivProtocols, arguments.privProtocol,
                            {arguments.privPassword, arguments.privPasswordFile, environment.privPassword}, level);
    return {{"snmpVersion", 3},
            {"snmpPort", portOf(arguments.port)},
            {"usm", *arguments.user},
            {"authProtocol", auth.protocol},
            {"authPwd", auth.password},
            {"privacyProtocol", priv.protocol},
            {"privacyPwd", priv.password},
            {"context", arguments.context.value_or("")}};
}

} // namespace

SnmpEnvironment snmpEnvironment()
{
    return {environmentVariable("PRINTER_DISCOVERY_COMMUNITY"), environmentVariable("PRINTER_DISCOVERY_AUTH_PASSWORD"),
            environmentVariable("PRINTER_DISCOVERY_PRIV_PASSWORD")};
}

JsonValue snmpProfile(const SnmpArguments& arguments, const SnmpEnvironment& environment)
{
    const std::string version = arguments.version.value_or("2c");
    if (version == "1")
        return communityProfile(1, arguments, environment);
    if (version == "2c")
        return communityProfile(2, arguments, environment);
    if (version == "3")
        return userProfile(arguments, environment);
    throw UsageError("-v: " + inQuotes(version) + " is not known; 1, 2c and 3 are accepted");
}

} // namespace Host
