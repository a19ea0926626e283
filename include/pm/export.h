#pragma once

// Marks what leaves the shared library. Everything else is built with hidden visibility.
#if defined(_WIN32)
#define PM_API
#else
#define PM_API __attribute__((visibility("default")))
#endif
