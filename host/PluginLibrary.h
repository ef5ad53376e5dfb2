/// The plug-in library, reached through its three C entry points alone.
#pragma once

#include "host/DynamicLibrary.h"
#include "host/IPluginCalls.h"

#include <cstddef>
#include <string>

namespace Host {

/// Loaded while the object lives. `init` and `deinit` are for one thread, while no call is under way.
class PluginLibrary : public IPluginCalls {
public:
    /// Throws `Failure` when the file at `path` (UTF-8) cannot be loaded or is not a plug-in.
    explicit PluginLibrary(const std::string& path);

    /// As `deinit`, if that is due.
    ~PluginLibrary() override;
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// Hands the configuration document over and gives back the plug-in's description of itself, JSON text. Once.
    std::string init(const std::string& config);

    std::string call(const PluginCall& call, const Entering& entering) override;
    void withdraw(Kep::Host::CallId work) override;

    /// Ends the plug-in; waits for the tasks that it has running. Does nothing before `init` and the second time.
    void deinit();

private:
    using Init = char* (*)(const char* config);
    using Call = void (*)(const char* service, std::size_t serviceLength, const char* operation,
                          std::size_t operationLength, const char* params, std::size_t paramsLength, char** result,
                          std::size_t* resultSize);
    using Deinit = void (*)();
    using Free = void (*)(void* block);

    DynamicLibrary library_;
    Init init_;
    Call call_;
    Deinit deinit_;
    Free free_;
    bool initialised_ = false;
};

} // namespace Host
