/// A named set of operations that a host can call.
#pragma once

#include "Kep/Export.h"
#include "Kep/Platform/IPlugin.h"
#include "Kep/Variant.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Kep::Platform {

/// Set up by one thread (reference, operations, dependencies, plug-in), then called by any number at once. Holds no
/// lock while an operation runs.
class KEP_API Service {
public:
    /// Takes an operation's parameter document as JSON text, gives its answer; what it throws reaches the caller.
    using OperationFunction = std::function<Variant(const std::string& params)>;

    Service();
    virtual ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Runs the operation named. Throws `Kep::NotFoundException` for an unknown name, and what the operation throws.
    virtual Variant call(const std::string& operation, const std::string& params);

    const std::string& reference() const noexcept { return reference_; }
    const std::vector<std::string>& dependencies() const noexcept { return dependencies_; }

    /// The names of the operations in the order of their registration.
    std::vector<std::string> operationNames() const;

    /// For the plug-in that the service is added to, which outlives it.
    void setPlugin(IPlugin& plugin) noexcept { plugin_ = &plugin; }

    /// A variant that says success and nothing else: {"success":true}.
    static Variant resultSuccess();

    /// A text variant that carries `json` byte for byte.
    static Variant resultSuccessJson(std::string json);

protected:
    void setReference(std::string reference) { reference_ = std::move(reference); }

    /// Registers an operation; of a name given twice the later function counts.
    void addOperation(const std::string& name, OperationFunction function);

    /// The plug-in that the service was added to. Throws `InvalidOperationException` before that.
    IPlugin& plugin() const;

    std::vector<std::string> dependencies_; ///< services that this one counts on; listed, not enforced

private:
    std::string reference_;
    std::vector<std::pair<std::string, OperationFunction>> operations_;
    IPlugin* plugin_ = nullptr;
};

} // namespace Kep::Platform
