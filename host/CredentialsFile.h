/// Several credentials in one file.
///
///   [second floor]
///   version = 3
///   user = admin
///   auth-protocol = SHA
///   auth-password = ...
///
/// The form is that of IniFile.h, with one section for each; its name is for messages. The keys are version, community,
/// user, level, auth-protocol, auth-password, priv-protocol, priv-password and context; what they accept and default
/// to is as for the options of these names, but a section with a user is of version 3 if it names none.
#pragma once

#include "host/Credentials.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

constexpr std::size_t MostCredentials = 64;

/// The profiles of the sections, in their order, all for UDP port `port`. `name` calls the file in messages. Throws
/// `UsageError` that names file and place, and never repeats a secret, when the text is not as above, or holds no
/// section or more than `MostCredentials`.
std::vector<JsonValue> parseCredentials(std::string_view text, const std::string& name, int port);

/// As `parseCredentials` with the file at `path`. Throws `UsageError` also when the file cannot be read or anyone but
/// its owner may.
std::vector<JsonValue> readCredentialsFile(const std::string& path, int port);

} // namespace Host
