#pragma once

#include <pm/code_page.h>

namespace pm::kit {

// Sets the system's code page for a while; 0 leaves it.
class CodePageScope {
public:
    explicit CodePageScope(unsigned code_page) : m_before(pm_system_code_page()) {
        if (code_page != 0) pm_set_system_code_page(code_page);
    }
    ~CodePageScope() { pm_set_system_code_page(m_before); }
    CodePageScope(const CodePageScope&) = delete;
    CodePageScope& operator=(const CodePageScope&) = delete;

private:
    unsigned m_before;
};

} // namespace pm::kit
