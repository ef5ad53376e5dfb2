#include "Kep/Platform/ServiceException.h"

#include <utility>

namespace Kep::Platform {

ServiceException::ServiceException(std::string code, const std::string& message, Variant data, Operation operation)
    : GenericException(message), code_(std::move(code)), data_(std::move(data)), operation_(std::move(operation))
{}

ServiceException::~ServiceException() = default;

std::string ServiceException::toJson() const
{
    Json::Object object;
    object.add("code", code_);
    object.add("message", what());
    object.addJson("data", data_.toJson());
    object.addJson("operation", operation_.toJson());
    return object;
}

InternalServerErrorException::InternalServerErrorException(const std::string& message, Variant data,
                                                           Operation operation)
    : ServiceException("internalServerError", message, std::move(data), std::move(operation))
{}

InternalServerErrorException::~InternalServerErrorException() = default;

NotFoundException::NotFoundException(const std::string& message, Variant data, Operation operation)
    : ServiceException("notFound", message, std::move(data), std::move(operation))
{}

NotFoundException::~NotFoundException() = default;

} // namespace Kep::Platform
