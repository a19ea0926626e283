#pragma once

#include "block.h"
#include <optional>
#include <pm/kit/stored.h>
#include <string>
#include <string_view>
#include <vector>

// Texts of the kit in the structs of the interface.
namespace pm::c {

// The lines of a text, empty ones left out.
inline std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (end > 0) lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// A value that may be missing, as kit::value_text() has it.
template<class Item>
void add_stored(ArrayBlock<Item>& block, const char* Item::*data, std::size_t Item::*length,
                const std::optional<kit::Stored>& stored) {
    if (stored) block.add_text(data, length, kit::value_text(*stored));
}

} // namespace pm::c
