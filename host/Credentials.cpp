#include "host/Credentials.h"

#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/PrivateFile.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <string_view>

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

enum Level { NoAuthNoPriv, AuthNoPriv, AuthPriv };

constexpr Spelling Levels[] = {
    {"noauthnopriv", "noAuthNoPriv"}, {"authnopriv", "authNoPriv"}, {"authpriv", "authPriv"}};

constexpr const char* AuthAccepted = "MD5 and SHA";
constexpr const char* PrivAccepted = "DES, AES, AES-192, AES-256, AES-192-C and AES-256-C";

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

const std::optional<Given>& either(const std::optional<Given>& first, const std::optional<Given>& second)
{
    return first ? first : second;
}

std::string textOf(const std::optional<Given>& given)
{
    return given ? given->value : std::string();
}

/// Makes the profile of one set of credentials.
class ProfileMaker {
public:
    ProfileMaker(const Credentials& given, const Credentials& defaults, const CredentialNames& names, int port)
        : given_(given), defaults_(defaults), names_(names), port_(port)
    {}

    JsonValue profile() const
    {
        const auto& version = either(given_.version, defaults_.version);
        if (!version || version->value == "2c")
            return communityProfile(2);
        if (version->value == "1")
            return communityProfile(1);
        if (version->value == "3")
            return userProfile();
        refuseValue(*version, "1, 2c and 3");
    }

private:
    [[noreturn]] void refuse(const std::string& message) const { throw UsageError(names_.place + message); }

    [[noreturn]] void refuseValue(const Given& given, const std::string& accepted) const
    {
        refuse(given.by + ": " + inQuotes(given.value) + " is not known; " + accepted + " are accepted");
    }

    /// Refuses values that would silently be ignored.
    void refuseForeign(const std::string& what, std::initializer_list<const std::optional<Given>*> values) const
    {
        for (const auto* value : values)
            if (*value)
                refuse((*value)->by + " is for SNMP " + what);
    }

    template <std::size_t Count>
    std::string meaning(const Spelling (&spellings)[Count], const Given& given, const std::string& accepted) const
    {
        for (const Spelling& spelling : spellings)
            if (spelling.written == lowered(given.value))
                return std::string(spelling.meant);
        refuseValue(given, accepted);
    }

    JsonValue communityProfile(int version) const
    {
        refuseForeign("version 3; give " + names_.version3,
                      {&given_.user, &given_.level, &given_.authProtocol, &given_.authPassword, &given_.privProtocol,
                       &given_.privPassword, &given_.context});
        const auto& community = either(given_.community, defaults_.community);
        return {{"snmpVersion", version},
                {"snmpPort", port_},
                {"communityRead", community ? secret(*community) : "public"},
                {"communityWrite", ""}};
    }

    JsonValue userProfile() const
    {
        refuseForeign("versions 1 and 2c; give " + names_.version2, {&given_.community});
        const std::string user = textOf(either(given_.user, defaults_.user));
        if (user.empty())
            refuse("SNMP version 3 needs a user name: " + names_.user);
        const Level level = securityLevel();
        refuseBeyond(level);
        const Protection auth = level >= AuthNoPriv ? authentication(level) : Protection();
        const Protection priv = level >= AuthPriv ? privacy() : Protection();
        return {{"snmpVersion", 3},
                {"snmpPort", port_},
                {"usm", user},
                {"authProtocol", auth.protocol},
                {"authPwd", auth.password},
                {"privacyProtocol", priv.protocol},
                {"privacyPwd", priv.password},
                {"context", textOf(either(given_.context, defaults_.context))}};
    }

    Level levelOf(const Given& given) const
    {
        const std::string level = meaning(Levels, given, "noAuthNoPriv, authNoPriv and authPriv");
        if (level == "authPriv")
            return AuthPriv;
        return level == "authNoPriv" ? AuthNoPriv : NoAuthNoPriv;
    }

    static Level levelOf(const std::optional<Given>& authProtocol, const std::optional<Given>& privProtocol)
    {
        if (privProtocol)
            return AuthPriv;
        return authProtocol ? AuthNoPriv : NoAuthNoPriv;
    }

    /// A level that was asked for; else the default one or what the protocols asked for amount to, whichever is
    /// higher; else what all protocols amount to.
    Level securityLevel() const
    {
        if (given_.level)
            return levelOf(*given_.level);
        if (defaults_.level)
            return std::max(levelOf(*defaults_.level), levelOf(given_.authProtocol, given_.privProtocol));
        return levelOf(either(given_.authProtocol, defaults_.authProtocol),
                       either(given_.privProtocol, defaults_.privProtocol));
    }

    void refuseBeyond(Level level) const
    {
        if (level < AuthNoPriv)
            refuseForeign("levels authNoPriv and authPriv", {&given_.authProtocol, &given_.authPassword});
        if (level < AuthPriv)
            refuseForeign("level authPriv", {&given_.privProtocol, &given_.privPassword});
    }

    struct Protection {
        std::string protocol;
        std::string password;
    };

    Protection authentication(Level level) const
    {
        const std::string name(Levels[level].meant);
        const auto& protocol = either(given_.authProtocol, defaults_.authProtocol);
        if (!protocol)
            refuse(name + " needs " + names_.authProtocol + "; " + AuthAccepted + " are accepted");
        return {meaning(AuthProtocols, *protocol, AuthAccepted),
                password(either(given_.authPassword, defaults_.authPassword), name, names_.authPassword)};
    }

    Protection privacy() const
    {
        const auto& protocol = either(given_.privProtocol, defaults_.privProtocol);
        if (!protocol)
            refuse("authPriv needs " + names_.privProtocol + "; " + PrivAccepted + " are accepted");
        return {meaning(PrivProtocols, *protocol, PrivAccepted),
                password(either(given_.privPassword, defaults_.privPassword), "authPriv", names_.privPassword)};
    }

    std::string password(const std::optional<Given>& given, const std::string& level, const std::string& name) const
    {
        if (!given)
            refuse(level + " needs a password: " + name);
        if (given->value.size() < ShortestPassword)
            refuse(given->by + ": a password has at least 8 characters");
        return secret(*given);
    }

    std::string secret(const Given& given) const
    {
        if (!given.sharedFile.empty())
            refuse(given.by + ": " + sharedFileText(given.sharedFile));
        return given.value;
    }

    const Credentials& given_;
    const Credentials& defaults_;
    const CredentialNames& names_;
    int port_;
};

} // namespace

Credentials overlaid(const Credentials& first, const Credentials& second)
{
    Credentials result;
    for (auto member : {&Credentials::version, &Credentials::community, &Credentials::user, &Credentials::level,
                        &Credentials::authProtocol, &Credentials::authPassword, &Credentials::privProtocol,
                        &Credentials::privPassword, &Credentials::context})
        result.*member = either(first.*member, second.*member);
    return result;
}

JsonValue snmpProfile(const Credentials& given, const Credentials& defaults, const CredentialNames& names, int port)
{
    return ProfileMaker(given, defaults, names, port).profile();
}

} // namespace Host
