#include "Plugin.h"

#include <windows.h>

#include <objbase.h>
#include <stdio.h>
#include <string.h>

static int find(const Plugin* plugin, const char* name, void* function)
{
    FARPROC symbol = GetProcAddress(plugin->library, name);
    if (symbol == NULL) {
        fprintf(stderr, "no function %s: error %lu\n", name, GetLastError());
        return -1;
    }
    memcpy(function, &symbol, sizeof symbol);
    return 0;
}

/* With the whole path and this flag, the libraries that stand beside the plug-in's are found there and not sought
   beside the host. */
static HMODULE load(const char* path)
{
    char whole[MAX_PATH];
    const DWORD length = GetFullPathNameA(path, sizeof whole, whole, NULL);
    if (length == 0 || length >= sizeof whole)
        return NULL;
    return LoadLibraryExA(whole, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
}

int pluginOpen(Plugin* plugin, const char* path)
{
    plugin->library = load(path);
    if (plugin->library == NULL) {
        fprintf(stderr, "%s: error %lu\n", path, GetLastError());
        return -1;
    }
    plugin->release = CoTaskMemFree;
    if (find(plugin, "dakPluginInit", &plugin->init) == 0 && find(plugin, "dakPluginCall", &plugin->call) == 0 &&
        find(plugin, "dakPluginDeinit", &plugin->deinit) == 0)
        return 0;
    pluginClose(plugin);
    return -1;
}

void pluginClose(Plugin* plugin)
{
    FreeLibrary(plugin->library);
}

void pauseMilliseconds(unsigned milliseconds)
{
    Sleep(milliseconds);
}
