/*
 * The entry points of the printer discovery plug-in.
 *
 * A host loads the library, finds the three functions by name, calls dakPluginInit once, then dakPluginCall as often as
 * it likes and from any number of threads at once, then dakPluginDeinit once, and unloads the library. Loading builds
 * the plug-in, unloading destroys it; neither must happen while a thread is inside one of the functions.
 *
 * Texts are UTF-8. A text that a function hands out is a NUL-terminated block of the task allocator and belongs to the
 * host, which releases it with CoTaskMemFree(void*). On Windows that is the function of ole32; elsewhere the host finds
 * it by its name through the handle of this library, which brings the library that defines it along:
 *
 *     void* plugin = dlopen("libPrinterDiscovery.so", RTLD_NOW | RTLD_LOCAL);
 *     dakPluginCallFunction call = (dakPluginCallFunction)dlsym(plugin, "dakPluginCall");
 *     void (*release)(void*) = (void (*)(void*))dlsym(plugin, "CoTaskMemFree");
 */
#ifndef PRINTER_DISCOVERY_H
#define PRINTER_DISCOVERY_H

#include <stddef.h>

#if !defined(_WIN32)
#define PRINTER_DISCOVERY_API __attribute__((visibility("default")))
#elif defined(PRINTER_DISCOVERY_BUILDING)
#define PRINTER_DISCOVERY_API __declspec(dllexport)
#else
#define PRINTER_DISCOVERY_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The functions' types, for hosts that find them by name. */
typedef char* (*dakPluginInitFunction)(const char* config);
typedef void (*dakPluginCallFunction)(const char* service, size_t serviceLength, const char* operation,
                                      size_t operationLength, const char* params, size_t paramsLength, char** result,
                                      size_t* resultSize);
typedef void (*dakPluginDeinitFunction)(void);

/*
 * Starts the plug-in's services. config is the NUL-terminated configuration document, a JSON object; an empty text
 * counts as an empty one. Returns a JSON text, owned by the host, that describes the plug-in and says of each service
 * whether it started and, if not, why; a document that cannot be used is reported there, too.
 */
PRINTER_DISCOVERY_API char* dakPluginInit(const char* config);

/*
 * Calls an operation of a service ("PrinterDiscovery") with a parameter document in JSON. The three texts are given by
 * address and length in bytes and need no NUL; of a text of length 0 the address does not matter.
 *
 * *result becomes the JSON text of the answer, owned by the host, and *resultSize its length including the terminating
 * NUL. A call that fails answers the same way, with an error document:
 *
 *     {"code":"notFound"|"internalServerError","message":text,"data":any,
 *      "operation":{"service":text,"operation":text,"params":any}}
 *
 * "notFound" stands for a service or operation that does not exist. Blocks as long as the operation does; no lock is
 * held on the way to it.
 */
PRINTER_DISCOVERY_API void dakPluginCall(const char* service, size_t serviceLength, const char* operation,
                                         size_t operationLength, const char* params, size_t paramsLength, char** result,
                                         size_t* resultSize);

/*
 * Stops the services. Runs are told to stop, and the function returns when the work that they had under way has ended.
 */
PRINTER_DISCOVERY_API void dakPluginDeinit(void);

#ifdef __cplusplus
}
#endif

#endif
