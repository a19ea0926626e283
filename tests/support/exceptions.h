#pragma once

#include <gtest/gtest.h>
#include <optional>
#include <pm/exception.h>
#include <string>
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

// Expects exactly an exception of class E with this number, place and detail.
template<class E, class Action>
void expect_thrown(Action action, std::uint32_t number, const std::u16string& place,
                   const std::u16string& detail) {
    const std::type_info* type = nullptr;
    const std::optional<ZT_Exception> e = thrown_by(action, &type);
    ASSERT_TRUE(e.has_value()) << "nothing was thrown";
    EXPECT_EQ(typeid(E).name(), std::string(type->name()));
    EXPECT_EQ(number, e->m_number);
    EXPECT_EQ(place, e->m_place);
    EXPECT_EQ(detail, e->m_detail);
}

} // namespace pm::test
