/*
 * The plug-in as a foreign host has it: plain C, the library loaded at run time, nothing of it but its C header.
 */
#ifndef ENTRY_DRIVER_H
#define ENTRY_DRIVER_H

#include "plugin/include/PrinterDiscovery.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A loaded library. Its members are set while it is loaded. */
typedef struct Driver {
    void* handle;
    dakPluginInitFunction init;
    dakPluginCallFunction call;
    dakPluginDeinitFunction deinit;
    void (*release)(void* block);
} Driver;

/* Loads the library at path and finds the functions. Returns 0, or -1 after saying why on standard error. */
int driverLoad(Driver* driver, const char* path);

/* Unloads it. Returns 0, or -1 after saying why on standard error. */
int driverUnload(Driver* driver);

/* Whether the library at path is in the process. */
int driverIsLoaded(const char* path);

/* Calls an operation of the service "PrinterDiscovery" with NUL-terminated texts. The reply is to be released. */
char* driverCall(const Driver* driver, const char* operation, const char* params, size_t* size);

/* Sleeps that long. */
void driverSleep(unsigned milliseconds);

#ifdef __cplusplus
}
#endif

#endif
