#include "entry/Driver.h"

#include <string.h>

char* driverCall(const Driver* driver, const char* operation, const char* params, size_t* size)
{
    static const char service[] = "PrinterDiscovery";
    char* result = NULL;
    driver->call(service, sizeof service - 1, operation, strlen(operation), params, strlen(params), &result, size);
    return result;
}
