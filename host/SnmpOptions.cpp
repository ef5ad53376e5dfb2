#include "host/SnmpOptions.h"

#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/Platform.h"
#include "host/Secrets.h"

#include <charconv>
#include <utility>

namespace Host {

namespace {

std::optional<Given> given(const std::optional<std::string>& value, const char* option)
{
    return value ? std::optional(Given{*value, option}) : std::nullopt;
}

std::optional<Given> secret(const std::optional<std::string>& value, const char* option,
                            const std::optional<std::string>& file, const char* fileOption)
{
    return value || !file ? given(value, option) : Given{readSecretFile(*file, fileOption), fileOption};
}

} // namespace

Credentials credentialsOf(const SnmpArguments& arguments)
{
    Credentials result;
    result.version = given(arguments.version, "-v");
    result.community = secret(arguments.community, "-c", arguments.communityFile, "--community-file");
    result.user = given(arguments.user, "-u");
    result.level = given(arguments.level, "-l");
    result.authProtocol = given(arguments.authProtocol, "-a");
    result.authPassword = secret(arguments.authPassword, "-A", arguments.authPasswordFile, "--auth-password-file");
    result.privProtocol = given(arguments.privProtocol, "-x");
    result.privPassword = secret(arguments.privPassword, "-X", arguments.privPasswordFile, "--priv-password-file");
    result.context = given(arguments.context, "-n");
    return result;
}

std::vector<std::string> secretsOf(const SnmpArguments& arguments)
{
    std::vector<std::string> secrets;
    for (const auto* secret : {&arguments.community, &arguments.authPassword, &arguments.privPassword})
        if (*secret)
            secrets.push_back(**secret);
    return secrets;
}

std::optional<std::string> firstCredentialOption(const SnmpArguments& arguments)
{
    for (const auto& [value, option] : {std::pair{&arguments.version, "-v"},
                                        {&arguments.community, "-c"},
                                        {&arguments.communityFile, "--community-file"},
                                        {&arguments.user, "-u"},
                                        {&arguments.level, "-l"},
                                        {&arguments.authProtocol, "-a"},
                                        {&arguments.authPassword, "-A"},
                                        {&arguments.authPasswordFile, "--auth-password-file"},
                                        {&arguments.privProtocol, "-x"},
                                        {&arguments.privPassword, "-X"},
                                        {&arguments.privPasswordFile, "--priv-password-file"},
                                        {&arguments.context, "-n"}})
        if (*value)
            return option;
    return std::nullopt;
}

int portOf(const SnmpArguments& arguments)
{
    if (!arguments.port)
        return 161;
    const std::string& text = *arguments.port;
    int port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port < 1 || port > 65535)
        throw UsageError("--port: " + inQuotes(text) + " is no port; 1 to 65535 are accepted");
    return port;
}

Credentials environmentCredentials()
{
    const auto variable = [](const char* name) { return given(environmentVariable(name), name); };
    Credentials result;
    result.community = variable("PRINTER_DISCOVERY_COMMUNITY");
    result.authPassword = variable("PRINTER_DISCOVERY_AUTH_PASSWORD");
    result.privPassword = variable("PRINTER_DISCOVERY_PRIV_PASSWORD");
    return result;
}

const CredentialNames& optionNames()
{
    static const CredentialNames names = {.place = "",
                                          .version2 = "-v 2c",
                                          .version3 = "-v 3",
                                          .user = "-u",
                                          .authProtocol = "-a",
                                          .authPassword = "-A, --auth-password-file or its environment variable",
                                          .privProtocol = "-x",
                                          .privPassword = "-X, --priv-password-file or its environment variable"};
    return names;
}

} // namespace Host
