#include "Kep/Platform/Service.h"

#include "Kep/Exception.h"

#include <algorithm>

namespace Kep::Platform {

Service::Service() = default;
Service::~Service() = default;

Variant Service::call(const std::string& operation, const std::string& params)
{
    const auto found = std::find_if(operations_.begin(), operations_.end(),
                                    [&operation](const auto& entry) { return entry.first == operation; });
    if (found == operations_.end()) {
        throw Kep::NotFoundException("the service \"" + reference_ + "\" has no operation \"" + operation + "\"");
    }
    return found->second(params);
}

std::vector<std::string> Service::operationNames() const
{
    std::vector<std::string> names;
    names.reserve(operations_.size());
    for (const auto& entry : operations_) {
        names.push_back(entry.first);
    }
    return names;
}

Variant Service::resultSuccess()
{
    return Variant(Variant::Object{{"success", Variant(true)}});
}

Variant Service::resultSuccessJson(std::string json)
{
    return Variant(std::move(json));
}

void Service::addOperation(const std::string& name, OperationFunction function)
{
    const auto known = std::find_if(operations_.begin(), operations_.end(),
                                    [&name](const auto& entry) { return entry.first == name; });
    if (known == operations_.end()) {
        operations_.emplace_back(name, std::move(function));
    } else {
        known->second = std::move(function);
    }
}

IPlugin& Service::plugin() const
{
    if (plugin_ == nullptr) {
        throw InvalidOperationException("plugin");
    }
    return *plugin_;
}

} // namespace Kep::Platform
