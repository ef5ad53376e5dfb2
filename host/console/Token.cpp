#include "host/console/Token.h"

#include "host/Errors.h"
#include "host/Paths.h"
#include "host/Platform.h"
#include "host/Secrets.h"
#include "host/TextFile.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace Host {

namespace {

constexpr std::string_view Scheme = "bearer ";

bool hasScheme(std::string_view authorization)
{
    return authorization.size() >= Scheme.size() &&
           std::equal(Scheme.begin(), Scheme.end(), authorization.begin(), [](char expected, char found) {
               return expected == std::tolower(static_cast<unsigned char>(found));
           });
}

/// A service manager keeps others out of the folder of a service's credentials. The rights of the files in it say less:
/// where an access list lets the service's user read, they show the list's mask as the rights of a group.
bool isServiceCredential(const std::string& path)
{
    const auto folder = environmentVariable("CREDENTIALS_DIRECTORY");
    return folder && pathOf(path).parent_path() == pathOf(*folder);
}

std::string firstLine(const std::string& path, const std::string& option)
{
    const std::string text = readTextFile(path, option);
    return text.substr(0, text.find_first_of("\r\n"));
}

} // namespace

Token::Token(std::string secret, const std::string& source) : secret_(std::move(secret))
{
    if (secret_.size() < ShortestToken)
        throw UsageError(source + ": a token has at least " + std::to_string(ShortestToken) + " characters");
    if (!std::all_of(secret_.begin(), secret_.end(), [](char each) { return each > ' ' && each < '\x7F'; }))
        throw UsageError(source + ": a token is made of visible ASCII characters, without blanks");
}

bool Token::allows(std::string_view authorization) const
{
    if (!hasScheme(authorization))
        return false;
    const std::string_view given = authorization.substr(Scheme.size());
    if (given.size() != secret_.size())
        return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < secret_.size(); ++i)
        difference |= static_cast<unsigned char>(given[i]) ^ static_cast<unsigned char>(secret_[i]);
    return difference == 0;
}

Token readTokenFile(const std::string& path, const std::string& option)
{
    const std::string secret = isServiceCredential(path) ? firstLine(path, option) : readSecretFile(path, option);
    return {secret, option + ": " + path};
}

} // namespace Host
