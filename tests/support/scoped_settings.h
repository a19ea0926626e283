#pragma once

#include "support/ordinary_user.h"
#include <cstdlib>
#include <optional>
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
        if (const char* before = std::getenv(name)) m_before = before;
        set_variable(m_name, value);
    }
    ~ScopedVariable() { set_variable(m_name, m_before); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string m_name;
    std::optional<std::string> m_before;
};

// OrdinaryUser by its other name.
using DroppedPrivileges = OrdinaryUser;

} // namespace pm::test
