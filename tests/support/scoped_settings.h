#pragma once

#include "support/ordinary_user.h"
#include <cstdlib>
#include <pm/code_page.h>
#include <string>

namespace pm::test {

// The system's code page while one lives.
class ScopedCodePage {
public:
    explicit ScopedCodePage(unsigned code_page) : m_before(pm_system_code_page()) {
        pm_set_system_code_page(code_page);
    }
    ~ScopedCodePage() { pm_set_system_code_page(m_before); }
    ScopedCodePage(const ScopedCodePage&) = delete;
    ScopedCodePage& operator=(const ScopedCodePage&) = delete;

private:
    unsigned m_before;
};

// An environment variable while one lives.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : m_name(name) {
        const char* before = std::getenv(name);
        m_was_set = before != nullptr;
        if (m_was_set) m_before = before;
        setenv(name, value.c_str(), 1);
    }
    ~ScopedVariable() {
        if (m_was_set) {
            setenv(m_name.c_str(), m_before.c_str(), 1);
        } else {
            unsetenv(m_name.c_str());
        }
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string m_name;
    std::string m_before;
    bool m_was_set = false;
};

// OrdinaryUser by its other name.
using DroppedPrivileges = OrdinaryUser;

} // namespace pm::test
