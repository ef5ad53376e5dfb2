/// The plug-in as its services see it.
#pragma once

#include "Kep/Export.h"
#include "Kep/ServiceLocator.h"

namespace Kep::Platform {

class KEP_API IPlugin {
public:
    virtual ~IPlugin();

    /// The plug-in's locator, owned by it. Any thread.
    virtual ServiceLocator& serviceLocator() = 0;
};

} // namespace Kep::Platform
