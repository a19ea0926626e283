#pragma once

#include <pm/export.h>

// The version of these headers. The library's file name carries the major number: libraries of one major
// number can stand in for each other if they aren't older than the headers that a program was built with.
//
// The minor number grows with what is added, the patch number with what is mended.
// #if PM_VERSION >= 90100 asks for 9.1.
#define PM_VERSION_MAJOR 9
#define PM_VERSION_MINOR 0
#define PM_VERSION_PATCH 0
#define PM_VERSION_TEXT "9.0.0"
// As one number that grows: 90000 for 9.0.0.
#define PM_VERSION (PM_VERSION_MAJOR * 10000 + PM_VERSION_MINOR * 100 + PM_VERSION_PATCH)

// PM_VERSION of the library that the program runs with, whatever headers it was built with.
PM_API int pm_version() noexcept;
