/// The record of a call, as error replies carry it.
#pragma once

#include "Kep/Export.h"
#include "Kep/Json.h"

#include <string>

namespace Kep::Platform {

/// A plain value.
struct KEP_API Operation final : Json::IJsonable {
    std::string service;
    std::string operation;
    std::string params; ///< JSON text, or empty

    /// An object with "service", "operation" and "params", in this order; `params` goes in as the JSON that it is,
    /// null when empty. Throws only `std::bad_alloc`.
    std::string toJson() const override;
};

} // namespace Kep::Platform
