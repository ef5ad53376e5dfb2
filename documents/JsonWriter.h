/// Grows JSON objects and arrays, one function a kind of value.
///
/// The object or array belongs to the caller and is complete before and after each call. One thread at a time on each.
/// Only `std::bad_alloc` and `std::length_error` are thrown.
#pragma once

#include "Kep/Json.h"

#include <cstdint>
#include <string_view>

namespace PrinterDiscoveryPlugin {

/// Each adds a member. `key` is written as it stands, so it must need no escaping.
void addString(Kep::Json::Object& object, std::string_view key, std::string_view value);
void addInt(Kep::Json::Object& object, std::string_view key, std::int32_t value);
void addArray(Kep::Json::Object& object, std::string_view key, const Kep::Json::Array& value);

/// Adds an element.
void addArrayString(Kep::Json::Array& array, std::string_view value);

} // namespace PrinterDiscoveryPlugin
