#include "host/PluginLibrary.h"

#include "host/Errors.h"

#include <cstdio>
#include <memory>

namespace Host {

namespace {

template <class Function> Function asFunction(void* address)
{
    return reinterpret_cast<Function>(address);
}

} // namespace

PluginLibrary::PluginLibrary(const std::string& path)
    : library_(path), init_(asFunction<Init>(library_.find("dakPluginInit"))),
      call_(asFunction<Call>(library_.find("dakPluginCall"))),
      deinit_(asFunction<Deinit>(library_.find("dakPluginDeinit"))), free_(asFunction<Free>(library_.findTaskMemFree()))
{}

PluginLibrary::~PluginLibrary()
{
    try {
        deinit();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "printer-discovery: the plug-in did not end well: %s\n", error.what());
    }
}

std::string PluginLibrary::init(const std::string& config)
{
    const std::unique_ptr<char, Free> reply(init_(config.c_str()), free_);
    initialised_ = true;
    if (!reply)
        throw Failure("the plug-in gave no reply to its configuration");
    return reply.get();
}

std::string PluginLibrary::call(const PluginCall& call, const Entering& entering)
{
    const Kep::Host::Call scope;
    if (entering)
        entering(scope.id());
    char* block = nullptr;
    std::size_t size = 0; // counts the terminator
    call_(call.service.data(), call.service.size(), call.operation.data(), call.operation.size(), call.params.data(),
          call.params.size(), &block, &size);
    const std::unique_ptr<char, Free> reply(block, free_);
    if (!reply || size == 0)
        throw Failure("the plug-in gave no reply to " + call.operation);
    return {reply.get(), size - 1};
}

void PluginLibrary::withdraw(Kep::Host::CallId work)
{
    Kep::Host::withdraw(work);
}

void PluginLibrary::deinit()
{
    if (!initialised_)
        return;
    initialised_ = false;
    deinit_();
}

} // namespace Host
