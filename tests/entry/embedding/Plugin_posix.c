#define _POSIX_C_SOURCE 200809L
#include "Plugin.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

/* C has no conversion between pointers to objects and to functions, so the bytes are copied. */
static int find(const Plugin* plugin, const char* name, void* function)
{
    void* symbol = dlsym(plugin->library, name);
    if (symbol == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return -1;
    }
    memcpy(function, &symbol, sizeof symbol);
    return 0;
}

int pluginOpen(Plugin* plugin, const char* path)
{
    plugin->library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (plugin->library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return -1;
    }
    if (find(plugin, "dakPluginInit", &plugin->init) == 0 && find(plugin, "dakPluginCall", &plugin->call) == 0 &&
        find(plugin, "dakPluginDeinit", &plugin->deinit) == 0 && find(plugin, "CoTaskMemFree", &plugin->release) == 0)
        return 0;
    pluginClose(plugin);
    return -1;
}

void pluginClose(Plugin* plugin)
{
    dlclose(plugin->library);
}

void pauseMilliseconds(unsigned milliseconds)
{
    const struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
    nanosleep(&time, NULL);
}
