/// The profiles of hostile devices.
#pragma once

#include "lab/ProfileLibrary.h"

namespace Lab {

/// A profile for each trick, under the trick's name. All have the objects of an ordinary printer.
ProfileLibrary hostileProfiles();

} // namespace Lab
