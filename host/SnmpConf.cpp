#include "host/SnmpConf.h"

#include "host/Errors.h"
#include "host/IniFile.h"
#include "host/Platform.h"
#include "host/PrivateFile.h"
#include "host/TextFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace Host {

namespace {

struct Directive {
    std::string_view name;
    std::optional<Given> Credentials::*member;
};

constexpr std::array Directives = {
    Directive{"defVersion", &Credentials::version},       Directive{"defCommunity", &Credentials::community},
    Directive{"defSecurityName", &Credentials::user},     Directive{"defSecurityLevel", &Credentials::level},
    Directive{"defAuthType", &Credentials::authProtocol}, Directive{"defAuthPassphrase", &Credentials::authPassword},
    Directive{"defPrivType", &Credentials::privProtocol}, Directive{"defPrivPassphrase", &Credentials::privPassword},
    Directive{"defContext", &Credentials::context},
};

constexpr std::string_view BothPassphrases = "defPassphrase";

bool sameWord(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string valueOf(std::string_view text)
{
    if (!text.starts_with('"'))
        return std::string(text);
    std::string value;
    for (std::size_t i = 1; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        value += text[i];
    }
    return value;
}

class SnmpConfReader {
public:
    explicit SnmpConfReader(const std::string& path) : path_(path) {}

    void take(std::string_view line)
    {
        line = trimmed(line);
        if (line.starts_with('['))
            takeProgram(line);
        else if (forTools_)
            takeDirective(line);
    }

    /// The passphrase for both stands in for those that are absent.
    Credentials credentials() const
    {
        Credentials both;
        both.authPassword = both.privPassword = bothPassphrases_;
        return overlaid(found_, both);
    }

private:
    /// "[snmp]" alone is for the lines that follow, with a directive behind it for that one.
    void takeProgram(std::string_view line)
    {
        const auto end = std::min(line.find(']'), line.size());
        const bool forTools = sameWord(trimmed(line.substr(1, end - 1)), "snmp");
        const std::string_view directive = trimmed(line.substr(std::min(end + 1, line.size())));
        if (directive.empty())
            forTools_ = forTools;
        else if (forTools)
            takeDirective(directive);
    }

    void takeDirective(std::string_view line)
    {
        const auto end = std::min(line.find_first_of(" \t"), line.size());
        const std::string_view name = line.substr(0, end);
        const std::string value = valueOf(trimmed(line.substr(end)));
        if (value.empty())
            return;
        if (sameWord(name, BothPassphrases))
            bothPassphrases_ = given(value, BothPassphrases);
        for (const Directive& directive : Directives)
            if (sameWord(name, directive.name))
                found_.*directive.member = given(value, directive.name);
    }

    Given given(const std::string& value, std::string_view name) const
    {
        return {value, std::string(name) + " of " + path_};
    }

    const std::string& path_;
    bool forTools_ = true;
    Credentials found_;
    std::optional<Given> bothPassphrases_;
};

/// The community "public" is none that could be kept secret.
void markExposed(Credentials& credentials, const std::string& path)
{
    for (auto member : {&Credentials::community, &Credentials::authPassword, &Credentials::privPassword})
        if (auto& secret = credentials.*member; secret && secret->value != "public")
            secret->sharedFile = path;
}

Credentials read(const std::string& path)
{
    try {
        Credentials credentials = parseSnmpConf(readTextFile(path, "snmp.conf"), path);
        if (isSharedFile(path))
            markExposed(credentials, path);
        return credentials;
    } catch (const UsageError&) {
        return {};
    }
}

} // namespace

Credentials parseSnmpConf(std::string_view text, const std::string& path)
{
    SnmpConfReader reader(path);
    forEachLine(text, [&](std::string_view line, std::size_t) { reader.take(line); });
    return reader.credentials();
}

Credentials snmpConfCredentials()
{
    Credentials result;
    for (const std::string& path : snmpConfFiles())
        result = overlaid(result, read(path));
    return result;
}

} // namespace Host
