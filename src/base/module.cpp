#include "base/module.h"

#include "base/no_memory.h"
#include "platform/resource_library.h"
#include <array>
#include <atomic>
#include <pm/error_text.h>
#include <pm/exception.h>

namespace pm {

namespace {

// Not one of the system's.
constexpr std::uint64_t not_looked_for = ~std::uint64_t{0};

std::uint64_t module_handle = 0;
std::atomic<std::uint64_t> resource_handle{not_looked_for};

// Opens the message library when it is first asked for. Of several threads that do at once the first counts.
std::uint64_t message_library() {
    std::uint64_t handle = resource_handle;
    if (handle != not_looked_for) return handle;
    const std::uint64_t opened = open_resource_library();
    if (resource_handle.compare_exchange_strong(handle, opened)) return opened;
    if (opened != 0) close_resource_library(opened);
    return handle;
}

void close_message_library() {
    const std::uint64_t handle = resource_handle.exchange(0);
    if (handle != 0 && handle != not_looked_for) close_resource_library(handle);
}

struct ModuleLife {
    ModuleLife() {
        if (resource_library_lives_with_module()) module_entry(0, process_start);
    }
    ~ModuleLife() {
        if (resource_library_lives_with_module()) module_entry(0, process_end);
    }
    ModuleLife(const ModuleLife&) = delete;
    ModuleLife& operator=(const ModuleLife&) = delete;
} module_life;

} // namespace

int module_entry(std::uint64_t module, std::uint32_t reason) {
    if (reason == process_start) {
        module_handle = module;
        std::uint64_t none = 0;
        resource_handle.compare_exchange_strong(none, not_looked_for);
        message_library();
    } else if (reason == process_end) {
        close_message_library();
    }
    return 1;
}

} // namespace pm

std::uint64_t GetPMErrResHandle() {
    return pm::message_library();
}

bool pm_error_text(std::uint32_t number, ZT_String& out) {
    const std::u16string_view text = pm::resource_text(pm::message_library(), number);
    if (text.empty()) return false;
    std::array<char16_t, 0x400> line{}; // longer than any text; a longer one is cut
    text.copy(line.data(), line.size() - 1);
    pm::telling_no_memory(u"pm_error_text()", u"", u"$Workfile: module $ $Revision: #1 $",
                          [&] { out.copy(line.data()); });
    return true;
}
