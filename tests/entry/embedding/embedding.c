/*
 * A host of the printer discovery plug-in: finds the printers of a range of addresses over SNMP version 2c.
 * Usage: embedding LIBRARY FROM TO [PORT [COMMUNITY]]
 * Prints address, description and serial number of a printer a line. Exit status: 0, 1 when it could not be done, 2
 * when the command line is wrong.
 */
#include "Json.h"
#include "Plugin.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char statusRequest[] = "{\"cookie\":\"embedding\",\"firstIdx\":%lu}";
static const char stopRequest[] = "{\"cookie\":\"embedding\"}";
static const char startRequest[] =
    "{\"cookie\":\"embedding\",\"config\":{\"usePing\":false,\"pingTimeout\":0,\"snmpTimeout\":0,"
    "\"includeRanges\":[{\"from\":\"%s\",\"to\":\"%s\"}],\"excludeRanges\":[],"
    "\"snmpProfile\":{\"snmpVersion\":2,\"snmpPort\":%u,\"communityRead\":%s,\"communityWrite\":\"\"}}}";

/* Reads a dotted quad. The plug-in takes ranges as they come, so the host looks at them first. */
static int readAddress(const char* text, unsigned long* address)
{
    unsigned octets[4];
    char rest = 0;
    if (strspn(text, "0123456789.") != strlen(text) ||
        sscanf(text, "%3u.%3u.%3u.%3u%c", &octets[0], &octets[1], &octets[2], &octets[3], &rest) != 4)
        return -1;
    *address = 0;
    for (int i = 0; i < 4; ++i) {
        if (octets[i] > 255)
            return -1;
        *address = *address * 256 + octets[i];
    }
    return 0;
}

/* Whether FROM and TO are a range, and PORT a port. */
static int readArguments(int count, char** arguments, unsigned* port)
{
    unsigned long from = 0;
    unsigned long to = 0;
    if (count < 4 || count > 6 || readAddress(arguments[2], &from) != 0 || readAddress(arguments[3], &to) != 0)
        return -1;
    *port = count > 4 ? (unsigned)strtoul(arguments[4], NULL, 10) : 161;
    return from <= to && *port > 0 && *port <= 65535 ? 0 : -1;
}

/* The reply of the plug-in, to be released. NULL when it was an error document, after saying what it says. */
static char* call(const Plugin* plugin, const char* operation, const char* params)
{
    static const char service[] = "PrinterDiscovery";
    char* reply = NULL;
    size_t size = 0; /* with the NUL at the end */
    plugin->call(service, strlen(service), operation, strlen(operation), params, strlen(params), &reply, &size);
    if (jsonMember(reply, "code") == NULL)
        return reply;
    fprintf(stderr, "%s: ", operation);
    jsonPrintText(stderr, jsonMember(reply, "message"));
    fputc('\n', stderr);
    plugin->release(reply);
    return NULL;
}

/* A call of which nothing but the success matters. */
static int order(const Plugin* plugin, const char* operation, const char* params)
{
    char* reply = call(plugin, operation, params);
    if (reply == NULL)
        return -1;
    plugin->release(reply);
    return 0;
}

/* Starts the plug-in's services; it says of itself what is wrong. */
static int start(const Plugin* plugin)
{
    char* description = plugin->init("{\"settings\":{\"host.snmp.retries\":2}}");
    const char* services = jsonMember(description, "services");
    const char* error = jsonMember(jsonFirst(services), "error");
    const int started = strncmp(error, "null", 4) == 0;
    if (!started)
        fprintf(stderr, "%s\n", description);
    plugin->release(description);
    return started ? 0 : -1;
}

static int startRun(const Plugin* plugin, const char* from, const char* to, unsigned port, const char* community)
{
    char text[512];
    char params[1024];
    if (jsonQuote(text, sizeof text, community) != 0) {
        fprintf(stderr, "the community is too long\n");
        return -1;
    }
    snprintf(params, sizeof params, startRequest, from, to, port, text);
    return order(plugin, "startDiscovery", params);
}

/* Prints the printers of a status and returns how many they are. */
static unsigned long printPrinters(const char* status)
{
    static const char* const members[] = {"ip", "name", "sn"};
    unsigned long count = 0;
    const char* printer = jsonFirst(jsonMember(status, "printers"));
    for (; printer != NULL; printer = jsonNext(printer), ++count)
        for (size_t i = 0; i < 3; ++i) {
            jsonPrintText(stdout, jsonMember(printer, members[i]));
            putchar(i < 2 ? '\t' : '\n');
        }
    fflush(stdout);
    return count;
}

/* Asks what is new until the run has ended. */
static int follow(const Plugin* plugin)
{
    unsigned long known = 0;
    for (;;) {
        char params[sizeof statusRequest + 20];
        snprintf(params, sizeof params, statusRequest, known);
        char* status = call(plugin, "getStatus", params);
        if (status == NULL)
            return -1;
        known += printPrinters(status);
        const int ended = *jsonMember(status, "state") == '1';
        plugin->release(status);
        if (ended)
            return 0;
        pauseMilliseconds(200);
    }
}

int main(int argc, char** argv)
{
    Plugin plugin;
    unsigned port = 0;
    if (readArguments(argc, argv, &port) != 0) {
        fprintf(stderr, "usage: embedding LIBRARY FROM TO [PORT [COMMUNITY]]\n");
        return 2;
    }
    if (pluginOpen(&plugin, argv[1]) != 0)
        return 1;
    int result = start(&plugin);
    if (result == 0)
        result = startRun(&plugin, argv[2], argv[3], port, argc > 5 ? argv[5] : "public");
    if (result == 0)
        result = follow(&plugin);
    if (result == 0)
        result = order(&plugin, "stopDiscovery", stopRequest);
    plugin.deinit(); /* ends the run, too, where something failed */
    pluginClose(&plugin);
    return result == 0 ? 0 : 1;
}
