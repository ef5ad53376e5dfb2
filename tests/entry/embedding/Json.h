/*
 * As much of JSON as a host needs that has no library for it. What the plug-in writes comes without white space.
 */
#ifndef EMBEDDING_JSON_H
#define EMBEDDING_JSON_H

#include <stddef.h>
#include <stdio.h>

/* The value of an object's member, or NULL when it has none of that name. */
const char* jsonMember(const char* object, const char* name);

/* The first element of an array and the one after another; NULL when there is none. */
const char* jsonFirst(const char* array);
const char* jsonNext(const char* element);

/* Prints a text value without its quotes. What is escaped in it, control characters for the most part, becomes '?',
   quotes and backslashes excepted. */
void jsonPrintText(FILE* stream, const char* text);

/* Writes text as a JSON text, quotes included. Returns 0, or -1 when there is not enough room. */
int jsonQuote(char* to, size_t room, const char* text);

#endif
