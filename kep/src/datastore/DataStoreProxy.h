/// The data store for plug-ins.
#pragma once

#include "Kep/Platform/Proxy/DataStore.h"

#include <memory>
#include <string>

namespace Kep {

/// A proxy for the store in the file `path`; an empty path is an empty store.
std::shared_ptr<Platform::Proxy::DataStore::Proxy> makeDataStoreProxy(std::string path);

} // namespace Kep
