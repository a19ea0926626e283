#pragma once

#include "store/tree_cursor.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pm {

// Lines of PIA text that were loaded straight from their bytes.
struct PlainLines {
    std::int32_t count = 0;
    const char* end = nullptr; // behind the last of them

    // So many bytes behind a text must be readable.
    static constexpr std::size_t margin = 16;
    // For tests: no line is loaded.
    static bool none_is_plain;
};

// Loads lines from the start of a text on that are of ASCII and of the forms that the writer makes. The first
// one of another kind, or with something to report, is left to the reader of wide lines, with nothing done.
// `text` is empty or ends in a line feed.
PlainLines load_plain_lines(TreeCursor& place, std::string_view text);

} // namespace pm
