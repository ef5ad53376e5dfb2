/*
 * The plug-in's library in a host's process, and the one other thing that systems do differently.
 */
#ifndef EMBEDDING_PLUGIN_H
#define EMBEDDING_PLUGIN_H

#include <PrinterDiscovery.h>

typedef struct Plugin {
    void* library;
    dakPluginInitFunction init;
    dakPluginCallFunction call;
    dakPluginDeinitFunction deinit;
    void (*release)(void* text); /* gives a text of the plug-in back */
} Plugin;

/* Loads the library and finds its functions. Returns 0, or -1 after saying why on standard error. */
int pluginOpen(Plugin* plugin, const char* path);

/* Unloads it. No other thread may be inside one of its functions. */
void pluginClose(Plugin* plugin);

void pauseMilliseconds(unsigned milliseconds);

#endif
