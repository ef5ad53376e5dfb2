/// The exceptions that the framework and its plug-ins throw. All are immutable values: they may be copied and read
/// from any thread, copying never throws, and `what` stays valid as long as the object lives.
#pragma once

#include "Kep/Export.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Kep {

/// Base of every exception that the framework defines.
class KEP_API GenericException : public std::exception {
public:
    explicit GenericException(const std::string& message);
    ~GenericException() override;
    GenericException(const GenericException&) noexcept = default;
    GenericException& operator=(const GenericException&) noexcept = default;

    /// The message, NUL-terminated; owned by the exception.
    const char* what() const noexcept override;

private:
    std::runtime_error message_; // shares its text, so a copy cannot throw
};

/// Something that the caller named does not exist: a service, an operation of a service.
class KEP_API NotFoundException : public GenericException {
public:
    using GenericException::GenericException;
    ~NotFoundException() override;
};

/// A service locator was asked for a type that nobody registered a factory for.
class KEP_API NoFactoryException : public GenericException {
public:
    using GenericException::GenericException;
    ~NoFactoryException() override;
};

/// An operation was called on an object whose state does not allow it, such as one that has been closed.
class KEP_API InvalidOperationException : public GenericException {
public:
    /// `function` is the name of the refused operation. The message is
    /// "Invalid operation occurred in the function: " followed by it.
    explicit InvalidOperationException(std::string_view function);
    ~InvalidOperationException() override;
};

} // namespace Kep
