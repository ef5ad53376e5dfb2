/// The secret that clients of a console have to know.
#pragma once

#include <string>
#include <string_view>

namespace Host {

class Token {
public:
    static constexpr std::size_t ShortestToken = 16;

    /// `source` begins the message. Throws `UsageError` when the text is shorter than `ShortestToken` or holds anything
    /// but visible ASCII characters, which is what fits the header field; the message does not repeat it.
    Token(std::string secret, const std::string& source);

    /// Whether the value of an Authorization field is the one of the scheme Bearer with this token (RFC 6750,
    /// section 2.1). Takes the same time wherever a wrong token of the right length differs.
    bool allows(std::string_view authorization) const;

private:
    std::string secret_;
};

/// The token in the first line of the file at `path`. Throws `UsageError` that begins with `option` when it cannot be
/// read, when others than its owner have access to it, unless it lies in the folder of credentials that a service
/// manager made ($CREDENTIALS_DIRECTORY), or as the constructor does.
Token readTokenFile(const std::string& path, const std::string& option);

} // namespace Host
