/*
 * A host that leaves in the middle of a run: usage: run-and-exit LIBRARY CONFIGURATION PARAMETERS
 * Loads the library, initialises it, starts the run of the cookie "c", waits for its first step, lets its other probes
 * settle, and exits with 0, without deinit and without unloading.
 */
#include "entry/Driver.h"

#include <stdio.h>
#include <string.h>

/* Whether the reply to the operation begins with a text. */
static int replies(const Driver* driver, const char* operation, const char* params, const char* beginning)
{
    size_t size = 0;
    char* reply = driverCall(driver, operation, params, &size);
    const int matches = strncmp(reply, beginning, strlen(beginning)) == 0;
    driver->release(reply);
    return matches;
}

int main(int argc, char** argv)
{
    Driver driver;
    if (argc != 4) {
        fprintf(stderr, "usage: run-and-exit LIBRARY CONFIGURATION PARAMETERS\n");
        return 2;
    }
    if (driverLoad(&driver, argv[1]) != 0)
        return 1;
    driver.release(driver.init(argv[2]));
    if (!replies(&driver, "startDiscovery", argv[3], "{\"success\":true}"))
        return 1;
    while (replies(&driver, "getStatus", "{\"cookie\":\"c\",\"firstIdx\":0}", "{\"step\":0,"))
        continue;
    driverSleep(500); /* Wine hangs when a process ends while its threads begin */
    return 0;
}
