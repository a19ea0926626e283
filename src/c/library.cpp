#include "block.h"
#include "failure.h"
#include <new>
#include <pm/code_page.h>
#include <pm/pm_c.h>
#include <pm/tree.h>
#include <pm/version.h>

using namespace pm::c;

namespace {

std::string text_of(pm9_status number) {
    switch (number) {
    case PM9_BAD_INPUT:
        return "The input isn't valid";
    case PM9_UNEXPECTED:
        return "An unexpected failure";
    default:
        return pm::error_text(static_cast<std::uint32_t>(number));
    }
}

} // namespace

pm9_status pm9_error_text(pm9_status number, char** text, size_t* length, pm9_error* error) {
    return guarded(error, [&] { hand_out(text_of(number), text, length); });
}

void pm9_free(const void* block) {
    ::operator delete(const_cast<void*>(block));
}

int32_t pm9_version(void) {
    return pm_version();
}

int32_t pm9_abi_version(void) {
    return PM9_ABI_VERSION;
}

pm9_status pm9_set_code_page(uint32_t code_page, pm9_error* error) {
    return guarded(error, [&] { pm_set_system_code_page(code_page); });
}

uint32_t pm9_code_page(void) {
    return pm_system_code_page();
}
