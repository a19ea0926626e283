#include <pm/version.h>

#include <string_view>

static_assert(std::string_view(PM_VERSION_TEXT) == PM_PROJECT_VERSION, "version.h and the project disagree");

#define PM_TEXT_OF(number) #number
#define PM_JOIN(major, minor, patch) PM_TEXT_OF(major) "." PM_TEXT_OF(minor) "." PM_TEXT_OF(patch)
static_assert(std::string_view(PM_VERSION_TEXT) ==
                  PM_JOIN(PM_VERSION_MAJOR, PM_VERSION_MINOR, PM_VERSION_PATCH),
              "the numbers and the text disagree");

int pm_version() noexcept {
    return PM_VERSION;
}
