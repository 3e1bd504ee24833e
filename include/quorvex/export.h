// The export macro: it marks the public interface; all other symbols of the library are hidden.
#ifndef QUORVEX_EXPORT_H
#define QUORVEX_EXPORT_H

#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
#error quorvex needs C++20: compile with -std=c++20 or later
#include <quorvex needs C++20> // ends the compilation; the following lines would only give more errors
#endif

#if defined(QUORVEX_STATIC_DEFINE)
#define QUORVEX_API
#elif defined(_WIN32)
#if defined(QUORVEX_BUILDING)
#define QUORVEX_API __declspec(dllexport)
#else
#define QUORVEX_API __declspec(dllimport)
#endif
#else
#define QUORVEX_API __attribute__((visibility("default")))
#endif

// Thread-local data, initialised at compile time. A Windows library can not export such data; there the
// process has a single copy.
#if defined(_WIN32)
#define QUORVEX_THREAD_LOCAL constinit
#else
#define QUORVEX_THREAD_LOCAL constinit thread_local
#endif

#endif
