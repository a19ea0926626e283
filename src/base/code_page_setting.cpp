#include "base/text.h"
#include "platform/code_page.h"
#include <new>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/exception.h>

namespace {

constexpr const char16_t* place = u"pm_set_system_code_page()";
constexpr const char16_t* source = u"$Workfile: code_page $ $Revision: #1 $";

} // namespace

void pm_set_system_code_page(unsigned code_page) try {
    if (!pm::code_page_known(code_page)) {
        throw PM_Error(PM_ERR_INVALID_ARGUMENT, place, pm::to_decimal(code_page).c_str(), source);
    }
    pm::set_system_code_page(code_page);
} catch (const std::bad_alloc&) {
    throw PM_Memory_Exception(place, u"", source);
}

unsigned pm_system_code_page() {
    return pm::system_code_page();
}
