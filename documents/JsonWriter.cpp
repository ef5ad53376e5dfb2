#include "documents/JsonWriter.h"

#include <string>

namespace PrinterDiscoveryPlugin {
namespace {

void addMember(Kep::Json::Object& object, std::string_view key, std::string_view json)
{
    std::string member = "\"";
    member.append(key).append("\":").append(json).append("}");
    object.prepareAdd();
    object.append(member);
}

} // namespace

void addString(Kep::Json::Object& object, std::string_view key, std::string_view value)
{
    addMember(object, key, Kep::Json::_encodeString(value));
}

void addInt(Kep::Json::Object& object, std::string_view key, std::int32_t value)
{
    addMember(object, key, std::to_string(value));
}

void addArray(Kep::Json::Object& object, std::string_view key, const Kep::Json::Array& value)
{
    addMember(object, key, value.toJson());
}

void addArrayString(Kep::Json::Array& array, std::string_view value)
{
    const std::string element = Kep::Json::_encodeString(value) + "]";
    array.prepareAdd();
    array.append(element);
}

} // namespace PrinterDiscoveryPlugin
