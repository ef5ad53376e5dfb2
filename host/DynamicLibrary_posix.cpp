#include "host/DynamicLibrary.h"

#include "host/Errors.h"

#include <dlfcn.h>

namespace Host {

namespace {

std::string reason()
{
    const char* text = dlerror();
    return text == nullptr ? "unknown reason" : text;
}

} // namespace

void DynamicLibrary::Unload::operator()(void* handle) const noexcept
{
    dlclose(handle);
}

DynamicLibrary::DynamicLibrary(const std::string& path)
    : path_(path), handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!handle_)
        throw Failure("the plug-in cannot be loaded: " + reason());
}

void* DynamicLibrary::find(const char* name) const
{
    void* address = dlsym(handle_.get(), name);
    if (address == nullptr)
        throw Failure(path_ + " is not a plug-in: it has no " + name);
    return address;
}

void* DynamicLibrary::findTaskMemFree() const
{
    return find("CoTaskMemFree"); // the look-up includes the libraries that the plug-in depends on
}

} // namespace Host
