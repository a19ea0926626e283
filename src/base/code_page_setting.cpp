#include "base/no_memory.h"
#include "base/text.h"
#include "platform/code_page.h"
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/exception.h>

namespace {

constexpr const char16_t* system_place = u"pm_set_system_code_page()";
constexpr const char16_t* thread_place = u"pm_set_thread_code_page()";
constexpr const char16_t* source = u"$Workfile: code_page $ $Revision: #1 $";

template<class Set>
auto set_known(unsigned code_page, const char16_t* place, Set set) {
    return pm::telling_no_memory(place, u"", source, [&] {
        if (!pm::code_page_known(code_page)) {
            throw PM_Error(PM_ERR_INVALID_ARGUMENT, place, pm::to_decimal(code_page).c_str(), source);
        }
        return set(code_page);
    });
}

} // namespace

void pm_set_system_code_page(unsigned code_page) {
    set_known(code_page, system_place, pm::set_system_code_page);
}

unsigned pm_set_thread_code_page(unsigned code_page) {
    return set_known(code_page, thread_place, pm::set_thread_code_page);
}

unsigned pm_system_code_page() {
    return pm::system_code_page();
}
