#pragma once

// Marks what leaves the kit's shared library, as PM_API does for the library under it.
#if defined(_WIN32) && defined(PM_KIT_BUILD)
#define PM_KIT_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(PM_STATIC)
#define PM_KIT_API __declspec(dllimport)
#elif defined(_WIN32)
#define PM_KIT_API
#else
#define PM_KIT_API __attribute__((visibility("default")))
#endif
