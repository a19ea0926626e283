#pragma once

// Marks what leaves the kit's shared library, as PM_API does for the library under it. Under Windows the
// kit itself is built with PM_KIT_BUILD, and a program that links its objects in place of the DLL with
// PM_STATIC.
#if defined(_WIN32) && defined(PM_KIT_BUILD)
#define PM_KIT_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(PM_STATIC)
#define PM_KIT_API __declspec(dllimport)
#elif defined(_WIN32)
#define PM_KIT_API
#else
#define PM_KIT_API __attribute__((visibility("default")))
#endif
