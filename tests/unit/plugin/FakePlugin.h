/// A stand-in for the framework's plug-in object, linked in its place.
///
/// It records what is done to it and answers what the test says. The class is the framework's own; only its functions
/// are defined here.
#pragma once

#include "Kep/Platform/Plugin.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Kep::Platform {

class CallbacksService {};
class IServiceCaller {};

} // namespace Kep::Platform

/// What the plug-in objects of the process did and shall do. Reset it at the start of a test.
struct FakePluginScript {
    /// The set-up calls in order, with their arguments: `setName PrinterDiscovery`.
    std::vector<std::string> events;
    std::vector<std::shared_ptr<Kep::Platform::Service>> services;

    std::function<Kep::Variant(const std::string& config)> init;
    std::function<Kep::Variant(const std::string& service, const std::string& operation, const std::string& params)>
        call;
    std::function<void()> deinit;
    std::function<void()> destroyed;

    int alive = 0; ///< plug-in objects
};

FakePluginScript& fakePlugin();
