/// Failures of service operations in the form that callers get them.
#pragma once

#include "Kep/Exception.h"
#include "Kep/Export.h"
#include "Kep/Platform/Operation.h"
#include "Kep/Variant.h"

#include <string>

namespace Kep::Platform {

/// A failure with a code that a caller can act on. Immutable.
class KEP_API ServiceException : public GenericException {
public:
    ServiceException(std::string code, const std::string& message, Variant data, Operation operation);
    ~ServiceException() override;

    /// The error document: {"code":text,"message":text,"data":any,"operation":{...}}. Throws only `std::bad_alloc`.
    std::string toJson() const;

private:
    std::string code_;
    Variant data_;
    Operation operation_;
};

/// Code "internalServerError".
class KEP_API InternalServerErrorException : public ServiceException {
public:
    InternalServerErrorException(const std::string& message, Variant data, Operation operation);
    ~InternalServerErrorException() override;
};

/// Code "notFound".
class KEP_API NotFoundException : public ServiceException {
public:
    NotFoundException(const std::string& message, Variant data, Operation operation);
    ~NotFoundException() override;
};

} // namespace Kep::Platform
