#include "Json.h"

#include <string.h>

/* The place behind a text, given the place of its first quote. */
static const char* afterText(const char* at)
{
    for (++at; *at != '"'; ++at)
        if (*at == '\\')
            ++at;
    return at + 1;
}

/* The place behind a value: at the comma or bracket that follows it. */
static const char* afterValue(const char* at)
{
    int depth = 0;
    while (*at != '\0' && (depth > 0 || strchr(",]}", *at) == NULL)) {
        if (*at == '"') {
            at = afterText(at);
            continue;
        }
        if (*at == '{' || *at == '[')
            ++depth;
        if (*at == '}' || *at == ']')
            --depth;
        ++at;
    }
    return at;
}

const char* jsonMember(const char* object, const char* name)
{
    const size_t length = strlen(name);
    const char* at = object;
    while (*at == '{' || *at == ',') {
        const char* key = at + 1;
        if (*key != '"')
            return NULL; /* an empty object */
        at = afterText(key) + 1;
        if (strncmp(key + 1, name, length) == 0 && key[length + 1] == '"')
            return at;
        at = afterValue(at);
    }
    return NULL;
}

const char* jsonFirst(const char* array)
{
    return array[1] == ']' ? NULL : array + 1;
}

const char* jsonNext(const char* element)
{
    const char* end = afterValue(element);
    return *end == ',' ? end + 1 : NULL;
}

void jsonPrintText(FILE* stream, const char* text)
{
    for (const char* at = text + 1; *at != '"'; ++at) {
        if (*at != '\\') {
            fputc(*at, stream);
            continue;
        }
        ++at;
        fputc(*at == '"' || *at == '\\' ? *at : '?', stream);
        if (*at == 'u')
            at += 4;
    }
}

int jsonQuote(char* to, size_t room, const char* text)
{
    char* const end = to + room;
    if (room < sizeof "\"\"")
        return -1;
    *to++ = '"';
    for (; *text != '\0'; ++text) {
        char escaped[sizeof "\\u0000"] = {*text};
        if ((unsigned char)*text < 0x20 || *text == '"' || *text == '\\')
            snprintf(escaped, sizeof escaped, "\\u%04x", (unsigned)(unsigned char)*text);
        const size_t length = strlen(escaped);
        if ((size_t)(end - to) < length + sizeof "\"")
            return -1;
        memcpy(to, escaped, length);
        to += length;
    }
    memcpy(to, "\"", sizeof "\"");
    return 0;
}
