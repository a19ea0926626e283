#include "base/module.h"

#include "platform/resource_library.h"
#include <atomic>
#include <pm/error_text.h>
#include <pm/exception.h>

namespace pm {

namespace {

std::uint64_t module_handle = 0;
std::atomic<std::uint64_t> resource_handle{0};

struct ModuleLife {
    ModuleLife() { module_entry(0, process_start); }
    ~ModuleLife() { module_entry(0, process_end); }
    ModuleLife(const ModuleLife&) = delete;
    ModuleLife& operator=(const ModuleLife&) = delete;
} module_life;

} // namespace

int module_entry(std::uint64_t module, std::uint32_t reason) {
    if (reason == process_start) {
        module_handle = module;
        resource_handle = open_resource_library();
    } else if (reason == process_end) {
        const std::uint64_t handle = resource_handle.exchange(0);
        if (handle != 0) close_resource_library(handle);
    }
    return 1;
}

} // namespace pm

std::uint64_t GetPMErrResHandle() {
    return pm::resource_handle;
}

bool pm_error_text(std::uint32_t number, ZT_String& out) {
    const char16_t* text = pm::resource_text(pm::resource_handle, number);
    if (text == nullptr) return false;
    out.copy(text);
    return true;
}
