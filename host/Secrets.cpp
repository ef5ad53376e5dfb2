#include "host/Secrets.h"

#include "host/Errors.h"
#include "host/Platform.h"
#include "host/PrivateFile.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace Host {

namespace {

constexpr std::size_t LongestSecret = 4096;

} // namespace

std::string readSecretFile(const std::string& path, const std::string& option)
{
    std::string secret = readPrivateFile(path, option, LongestSecret);
    secret.erase(std::min(secret.find_first_of("\r\n"), secret.size()));
    if (secret.empty())
        throw UsageError(option + ": " + path + " is empty; its first line is to hold the secret");
    if (secret.find('\0') != std::string::npos)
        throw UsageError(option + ": " + path + " holds no text");
    return secret;
}

void hideArguments(std::span<char*> arguments, const std::vector<std::string>& secrets)
{
    for (char* argument : arguments)
        for (const std::string& secret : secrets) {
            const std::string_view text(argument);
            if (!secret.empty() && text.ends_with(secret))
                std::memset(argument + (text.size() - secret.size()), '*', secret.size());
        }
    hideCommandLine(secrets);
}

} // namespace Host
