#include "Kep/Exception.h"

namespace Kep {

// NOLINTNEXTLINE(bugprone-throw-keyword-missing): the member is an exception because those share their text
GenericException::GenericException(const std::string& message) : message_(message) {}
GenericException::~GenericException() = default;

const char* GenericException::what() const noexcept
{
    return message_.what();
}

NotFoundException::~NotFoundException() = default;
NoFactoryException::~NoFactoryException() = default;

InvalidOperationException::InvalidOperationException(std::string_view function)
    : GenericException("Invalid operation occurred in the function: " + std::string(function))
{}

InvalidOperationException::~InvalidOperationException() = default;

} // namespace Kep
