#include "host/DynamicLibrary.h"

#include "host/Errors.h"
#include "host/Paths.h"
#include "host/WindowsText.h"

#include <filesystem>
#include <system_error>

#include <windows.h>

#include <objbase.h>

namespace Host {

namespace {

// A library is looked up together with those that it needs, which then stand beside it.
void* load(const std::string& path)
{
    return LoadLibraryExW(wideText(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

std::string reason(const std::string& path)
{
    const DWORD error = GetLastError();
    std::error_code ignored;
    if (error == ERROR_MOD_NOT_FOUND && std::filesystem::exists(pathOf(path), ignored))
        return path + ": a library that it needs, such as Kep.dll, is missing beside it";
    return path + ": " + systemMessage(error);
}

} // namespace

void DynamicLibrary::Unload::operator()(void* handle) const noexcept
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

DynamicLibrary::DynamicLibrary(const std::string& path) : path_(path), handle_(load(path))
{
    if (!handle_)
        throw Failure("the plug-in cannot be loaded: " + reason(path));
}

void* DynamicLibrary::find(const char* name) const
{
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(handle_.get()), name);
    if (address == nullptr)
        throw Failure(path_ + " is not a plug-in: it has no " + name);
    return reinterpret_cast<void*>(address);
}

void* DynamicLibrary::findTaskMemFree() const
{
    return reinterpret_cast<void*>(&CoTaskMemFree); // the system's, whoever calls it
}

} // namespace Host
