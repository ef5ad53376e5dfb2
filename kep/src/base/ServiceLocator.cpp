#include "Kep/ServiceLocator.h"

#include "base/FormatText.h"

namespace Kep {

ServiceLocator::ServiceLocator() = default;
ServiceLocator::~ServiceLocator() = default;

void ServiceLocator::store(const std::string& reference, std::any function)
{
    MutexLock lock(mutex_);
    factories_[reference].swap(function); // an earlier one is destroyed with the parameter, after the lock
}

std::any ServiceLocator::find(const std::string& reference) const
{
    MutexLock lock(mutex_);
    const auto found = factories_.find(reference);
    if (found == factories_.end()) {
        throw NoFactoryException(formatText("Factory: no factory for the reference %s", reference.c_str()));
    }
    return found->second;
}

void ServiceLocator::throwInvalidFactory(const std::string& reference)
{
    throw GenericException(formatText("Factory: invalid factory type for the reference %s", reference.c_str()));
}

} // namespace Kep
