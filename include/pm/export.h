#pragma once

// Marks what leaves the shared library. Everything else is built with hidden visibility, so that a name of a
// program's own can't take the place of one of the library's.
#if defined(_WIN32)
#define PM_API
#else
#define PM_API __attribute__((visibility("default")))
#endif
