#include "plugin/Attach.h"

#include <new>

#include <windows.h>

namespace PrinterDiscoveryPlugin {

std::shared_ptr<Kep::Platform::Plugin> g_plugin;

namespace {

// When the process ends, its other threads are gone already, and what they held stays locked: the object is left to
// the system, which takes everything back. Otherwise there is nothing to wait for: tasks keep the library loaded.
void detachFrom(bool endingProcess)
{
    if (endingProcess)
        ::new std::shared_ptr<Kep::Platform::Plugin>(std::move(g_plugin));
    else
        detach();
}

} // namespace
} // namespace PrinterDiscoveryPlugin

// The system calls it under a lock of its own, so no thread is started or waited for in here.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, LPVOID endingProcess)
{
    if (reason == DLL_PROCESS_ATTACH)
        PrinterDiscoveryPlugin::attach();
    else if (reason == DLL_PROCESS_DETACH)
        PrinterDiscoveryPlugin::detachFrom(endingProcess != nullptr);
    return TRUE;
}
