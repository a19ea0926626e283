#pragma once

// Marks what leaves the shared library. Everything else is built hidden, so that a name of a program's own
// can't take the place of one of the library's. Under Windows the library itself is built with PM_BUILD, and
// a program that links its objects in place of the DLL with PM_STATIC.
#if !defined(_WIN32)
#define PM_API __attribute__((visibility("default")))
#elif defined(PM_BUILD)
#define PM_API __declspec(dllexport)
#elif defined(PM_STATIC)
#define PM_API
#else
#define PM_API __declspec(dllimport)
#endif
