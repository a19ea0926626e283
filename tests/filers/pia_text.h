#pragma once

#include "support/recording_handler.h"
#include "support/tree_text.h"
#include <pm/object.h>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

using Lines = std::vector<std::string>;

inline const std::string pia_header = "PIAFILEVERSION_2.0,test\r\n";

inline std::stringstream byte_stream(const std::string& bytes) {
    return std::stringstream(bytes, std::ios::in | std::ios::out | std::ios::binary);
}

// Loads the bytes of a whole file.
inline void load_bytes(PM_Object& object, const std::string& bytes, const char16_t* base = u"\\") {
    std::stringstream stream = byte_stream(bytes);
    object.load(stream, PM_Object::FILE_PIA, base);
}

// Loads a plain body behind a header of one line.
inline void load_body(PM_Object& object, const std::string& body, const char16_t* base = u"\\") {
    load_bytes(object, pia_header + body, base);
}

// The tree that the bytes of a whole file give.
inline Lines loaded_bytes(const std::string& bytes) {
    PM_Object object;
    load_bytes(object, bytes);
    return tree_text(object);
}

// The tree that a body gives.
inline Lines loaded(const std::string& body) {
    PM_Object object;
    load_body(object, body);
    return tree_text(object);
}

// The tree that a body gives with a handler that lets everything pass.
inline Lines loaded_with(ZT_Error_Handler& handler, const std::string& body) {
    PM_Object object(&handler);
    load_body(object, body);
    return tree_text(object);
}

inline std::string saved(const PM_Object& object, const char16_t* tag = u"test",
                         const char16_t* subtree = u"\\", bool utf8_text = false) {
    std::stringstream stream = byte_stream("");
    object.save(stream, PM_Object::FILE_PIA, tag, subtree, utf8_text);
    return stream.str();
}

} // namespace pm::test
