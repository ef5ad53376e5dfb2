/// Finds the makers of objects by their type.
#pragma once

#include "Kep/Exception.h"
#include "Kep/Export.h"
#include "Kep/Mutex.h"

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <typeinfo>

namespace Kep {

/// A map from type name to factory. Any thread; one mutex of its own guards the map, held while registering and while
/// resolving a factory and never while one runs. A lock that fails throws `std::system_error`. Neither copied nor
/// moved.
class KEP_API ServiceLocator {
public:
    template <class T> using Factory = std::function<std::shared_ptr<T>()>;

    ServiceLocator();
    ~ServiceLocator();
    ServiceLocator(const ServiceLocator&) = delete;
    ServiceLocator& operator=(const ServiceLocator&) = delete;

    /// Registers `factory` for `T`, in place of an earlier one.
    template <class T> void registerFactory(Factory<T> factory) { store(typeid(T).name(), std::move(factory)); }

    /// Calls the factory of `T`, outside the mutex, and returns what it makes; the caller shares it. What the factory
    /// throws passes. Throws `NoFactoryException`, "Factory: no factory for the reference " and the type's run-time
    /// name, when none is registered, and `GenericException`, "Factory: invalid factory type for the reference " and
    /// the name, when the function registered under the name makes something else.
    template <class T> std::shared_ptr<T> get() const
    {
        const std::any function = find(typeid(T).name());
        const auto* factory = std::any_cast<Factory<T>>(&function);
        if (factory == nullptr) {
            throwInvalidFactory(typeid(T).name());
        }
        return (*factory)();
    }

    /// Registers `function` under a type's run-time name, whatever it is; `get` tests it. What `registerFactory`
    /// rests on.
    void store(const std::string& reference, std::any function);

private:
    std::any find(const std::string& reference) const;
    [[noreturn]] static void throwInvalidFactory(const std::string& reference);

    mutable Mutex mutex_;
    std::map<std::string, std::any> factories_ KEP_GUARDED_BY(mutex_);
};

} // namespace Kep
