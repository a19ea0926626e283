#pragma once

#include <optional>
#include <pm/kit/error.h>
#include <string>

namespace pm::kit::test {

// What `action` threw of the kit's own: "2:5: the message", without what is 0; empty if it threw nothing.
template<class Action>
std::string error_of(Action action) {
    try {
        action();
    } catch (const Error& e) {
        std::string place;
        if (e.line() != 0) place += std::to_string(e.line()) + ':';
        if (e.column() != 0) place += std::to_string(e.column()) + ':';
        return place.empty() ? e.what() : place + ' ' + e.what();
    }
    return {};
}

} // namespace pm::kit::test
