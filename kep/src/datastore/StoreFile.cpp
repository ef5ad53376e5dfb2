#include "datastore/StoreFile.h"

#include "Kep/Exception.h"

namespace Kep {

void throwStoreFailure(const std::string& path, std::string_view reason)
{
    throw GenericException("data store \"" + path + "\": " + std::string(reason));
}

} // namespace Kep
