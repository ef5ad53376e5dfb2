/// Marks what `Kep` offers across its library boundary. Everything else stays inside it.
#pragma once

#if defined(_WIN32) && defined(KEP_BUILDING)
#define KEP_API __declspec(dllexport)
#elif defined(_WIN32)
#define KEP_API __declspec(dllimport)
#else
#define KEP_API __attribute__((visibility("default")))
#endif
