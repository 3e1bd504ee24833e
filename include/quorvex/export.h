// The export macro: what carries it is the public interface; everything else of the library is hidden.
#ifndef QUORVEX_EXPORT_H
#define QUORVEX_EXPORT_H

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

#endif
