#include "entry/Driver.h"

#include <stdio.h>
#include <string.h>

#include <windows.h>

#include <objbase.h>

static int fail(const char* what)
{
    fprintf(stderr, "%s: error %lu\n", what, GetLastError());
    return -1;
}

static int find(HMODULE library, const char* name, void* function, size_t size)
{
    const FARPROC symbol = GetProcAddress(library, name);
    if (symbol == NULL)
        return fail(name);
    memcpy(function, &symbol, size);
    return 0;
}

static void release(void* block)
{
    CoTaskMemFree(block);
}

int driverLoad(Driver* driver, const char* path)
{
    HMODULE library = LoadLibraryExA(path, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
    memset(driver, 0, sizeof *driver);
    if (library == NULL)
        return fail(path);
    if (find(library, "dakPluginInit", &driver->init, sizeof driver->init) != 0 ||
        find(library, "dakPluginCall", &driver->call, sizeof driver->call) != 0 ||
        find(library, "dakPluginDeinit", &driver->deinit, sizeof driver->deinit) != 0) {
        FreeLibrary(library);
        return -1;
    }
    driver->handle = library;
    driver->release = release;
    return 0;
}

int driverUnload(Driver* driver)
{
    HMODULE library = driver->handle;
    memset(driver, 0, sizeof *driver);
    return FreeLibrary(library) != 0 ? 0 : fail("FreeLibrary");
}

int driverIsLoaded(const char* path)
{
    const char* name = strrchr(path, '/');
    return GetModuleHandleA(name == NULL ? path : name + 1) != NULL;
}

void driverSleep(unsigned milliseconds)
{
    Sleep(milliseconds);
}
