/// The profiles that a farm is made of, by name.
#pragma once

#include "lab/Profile.h"

#include <map>

namespace Lab {

/// Profiles in the order of their names. The name is the file's name without `.snmprec`.
using ProfileLibrary = std::map<std::string, ProfilePtr>;

/// The profiles of lab/profiles, which are part of the program.
ProfileLibrary builtInProfiles();

/// The profiles of a folder's `.snmprec` files. Throws `Error` when the folder cannot be read, holds none, or a file
/// is wrong.
ProfileLibrary readProfiles(const std::string& folder);

/// The profile `name`. Throws `Error` with the names there are when it is none of them.
ProfilePtr findProfile(const ProfileLibrary& library, const std::string& name);

} // namespace Lab
