#define _POSIX_C_SOURCE 200809L
#define _GNU_SOURCE /* RTLD_NOLOAD */
#include "entry/Driver.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

/* C has no conversion between pointers to objects and to functions, so the bytes are copied. */
static int find(void* handle, const char* name, void* function, size_t size)
{
    void* symbol = dlsym(handle, name);
    if (symbol == NULL) {
        fprintf(stderr, "no %s: %s\n", name, dlerror());
        return -1;
    }
    memcpy(function, &symbol, size);
    return 0;
}

int driverLoad(Driver* driver, const char* path)
{
    memset(driver, 0, sizeof *driver);
    driver->handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (driver->handle == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return -1;
    }
    if (find(driver->handle, "dakPluginInit", &driver->init, sizeof driver->init) != 0 ||
        find(driver->handle, "dakPluginCall", &driver->call, sizeof driver->call) != 0 ||
        find(driver->handle, "dakPluginDeinit", &driver->deinit, sizeof driver->deinit) != 0 ||
        find(driver->handle, "CoTaskMemFree", &driver->release, sizeof driver->release) != 0) {
        dlclose(driver->handle);
        return -1;
    }
    return 0;
}

int driverUnload(Driver* driver)
{
    void* handle = driver->handle;
    memset(driver, 0, sizeof *driver);
    if (dlclose(handle) != 0) {
        fprintf(stderr, "%s\n", dlerror());
        return -1;
    }
    return 0;
}

int driverIsLoaded(const char* path)
{
    void* handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle == NULL)
        return 0;
    dlclose(handle);
    return 1;
}

void driverSleep(unsigned milliseconds)
{
    const struct timespec time = {.tv_sec = milliseconds / 1000, .tv_nsec = milliseconds % 1000 * 1000000L};
    nanosleep(&time, NULL);
}
