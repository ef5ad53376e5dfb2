/// Marks what `Kep` offers across its library boundary. Everything else stays inside it.
#pragma once

#if defined(_WIN32) && defined(KEP_BUILDING)
#define KEP_API __declspec(dllexport)
#elif defined(_WIN32)
#define KEP_API // the linker finds out, so that the same objects link with the library and with parts of it or fakes
#else
#define KEP_API __attribute__((visibility("default")))
#endif
