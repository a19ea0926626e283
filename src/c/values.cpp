#include "values.h"

#include "arguments.h"
#include "block.h"
#include <type_traits>

namespace pm::c {

namespace {

Bytes bytes_of(const pm9_value& given) {
    const std::string_view bytes(given.data, given.data != nullptr ? given.length : 0);
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
    return {first, first + bytes.size()};
}

// Numbers lie in the struct itself, texts and bytes in a block of their own.
struct HandOut {
    pm9_value& out;

    void operator()(std::monostate) const {}
    void operator()(std::int32_t number) const { out.number = number; }
    void operator()(double real) const { out.real = real; }
    void operator()(bool truth) const { out.number = truth ? 1 : 0; }
    void operator()(const std::string& text) const { give(text); }
    void operator()(const Bytes& bytes) const {
        give({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    void give(std::string_view bytes) const {
        out.data = copy_of(bytes).release();
        out.length = bytes.size();
    }
};

} // namespace

Value value_of(const pm9_value& given) {
    switch (given.type) {
    case PM9_NONE:
        return {};
    case PM9_LONG:
        return given.number;
    case PM9_DOUBLE:
        return given.real;
    case PM9_STRING:
        return std::string(text(given.data, given.length));
    case PM9_BOOL:
        return given.number != 0;
    case PM9_RAW:
        return bytes_of(given);
    default:
        refuse(u"type", PM_ERR_INVALID_ARGUMENT);
    }
}

void hand_out_value(const Value& value, pm9_value& out) {
    pm9_value filled{};
    std::visit(HandOut{filled}, value);
    filled.size = out.size;
    filled.type = type_of(value);
    out = filled;
}

} // namespace pm::c
