#ifndef PM_C_EXPORT_H
#define PM_C_EXPORT_H

// Marks what leaves the C interface's shared library. A program needs to define nothing, but for PM_STATIC
// under Windows if it links the objects in place of the DLL; PM_C_BUILD is the library's own.
#if defined(_WIN32) && defined(PM_C_BUILD)
#define PM9_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(PM_STATIC)
#define PM9_API __declspec(dllimport)
#elif defined(_WIN32)
#define PM9_API
#else
#define PM9_API __attribute__((visibility("default")))
#endif

#endif
