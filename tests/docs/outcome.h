#pragma once

#include <functional>
#include <pm/object.h>
#include <string>
#include <string_view>
#include <vector>

// What the library makes of an input, in the words of the pages.
namespace pm::test {

// `path: type = value` for each property, in the tree's order. Values: 12, 2.5, true, "text", 0AFF for raw
// bytes. What isn't printable ASCII or a character beyond it stands as \xHH or \uHHHH; "\" as \\.
[[nodiscard]] std::vector<std::string> tree_lines(const PM_Object& object);

// Bytes as a page shows them within a code span: "\" as \\, zero as \0, what isn't printable ASCII as \xHH.
[[nodiscard]] std::string shown_bytes(std::string_view bytes);

// Everything that comes of a load whose handler goes on, joined by ", ": each property as a code span, each
// report as "reports 57 at line 2" and what ends the load as "stops with 84"; "nothing" if there is nothing.
// The line is told where the failure tells one.
[[nodiscard]] std::string outcome_of(const std::function<void(PM_Object&)>& load);

// A load of the bytes as a file of that type, from a stream.
[[nodiscard]] std::string load_outcome(std::string_view bytes, PM_Object::FileType type);

} // namespace pm::test
