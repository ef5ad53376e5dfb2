/// Starting of services, with its report.
#pragma once

#include "Kep/Platform/Service.h"
#include "Kep/Variant.h"

#include <memory>
#include <string>
#include <vector>

namespace Kep {

using Services = std::vector<std::shared_ptr<Platform::Service>>;

/// Starts the services in order and describes each as `Plugin::init` answers it; one that cannot start does not keep
/// the others from it. When `obstacle` is not empty none is started, and that is the reason given. Throws only
/// `std::bad_alloc`.
Variant startServices(const Services& services, const std::string& obstacle);

/// Stops the services in reverse order, all of them whatever happens; then throws what the first failing stop hook
/// threw.
void stopServices(const Services& services);

} // namespace Kep
