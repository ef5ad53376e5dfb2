/// Passwords and communities, kept out of the process list and away from other users.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace Host {

/// The first line of the file at `path`, without its end. Throws `UsageError` that begins with `option` when the file
/// cannot be read, when anyone but its owner may read or write it, or when the line is empty or not text.
std::string readSecretFile(const std::string& path, const std::string& option);

/// Writes asterisks over those arguments of the program, or ends of them, that hold one of `secrets`, so that they no
/// longer show in the process list where the system lists a program's arguments from its own memory.
void hideArguments(std::span<char*> arguments, const std::vector<std::string>& secrets);

} // namespace Host
