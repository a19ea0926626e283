#pragma once

#include "platform/code_page.h"
#include <exception>
#include <gtest/gtest.h>
#include <optional>
#include <pm/exception.h>
#include <string>
#include <string_view>
#include <typeinfo>

namespace pm::test {

// Runs `action` and gives what it threw of the exception family, if anything.
template<class Action>
std::optional<ZT_Exception> thrown_by(Action action, const std::type_info** type = nullptr) {
    try {
        action();
    } catch (const ZT_Exception& e) {
        if (type != nullptr) *type = &typeid(e);
        return e;
    }
    return std::nullopt;
}

// A class as a failure shows it; compilers put lengths or the word "class" in front.
inline std::string class_name(const std::type_info& type) {
    const std::string name = type.name();
    return name.substr(name.find_first_not_of("0123456789"));
}

// An exception as a failure shows it: PM_Error 57 at "PM_PIAFile::load()" with "a=".
inline std::string exception_text(const std::type_info& type, std::uint32_t number, std::u16string_view place,
                                  std::u16string_view detail) {
    return class_name(type) + ' ' + std::to_string(number) + " at \"" + to_narrow(place, utf8_code_page) +
           "\" with \"" + to_narrow(detail, utf8_code_page) + '"';
}

// Expects exactly an exception of class E with this number, place and detail. A failure names the caller's
// line and shows what was thrown instead.
template<class E, class Action>
void expect_thrown(Action action, std::uint32_t number, const std::u16string& place,
                   const std::u16string& detail, const char* file = __builtin_FILE(),
                   int line = __builtin_LINE()) {
    const std::string expected = exception_text(typeid(E), number, place, detail);
    std::string met = "nothing was thrown";
    try {
        action();
    } catch (const ZT_Exception& e) {
        if (typeid(e) == typeid(E) && e.m_number == number && e.m_place == place && e.m_detail == detail) {
            return;
        }
        met = exception_text(typeid(e), e.m_number, e.m_place, e.m_detail);
    } catch (const std::exception& e) {
        met = class_name(typeid(e)) + ": " + e.what();
    }
    ADD_FAILURE_AT(file, line) << "expected: " << expected << "\n     met: " << met;
}

} // namespace pm::test
