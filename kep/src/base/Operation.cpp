#include "Kep/Platform/Operation.h"

namespace Kep::Platform {

std::string Operation::toJson() const
{
    Json::Object object;
    object.add("service", service);
    object.add("operation", operation);
    object.addJson("params", params);
    return object;
}

} // namespace Kep::Platform
