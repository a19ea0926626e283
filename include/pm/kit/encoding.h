#pragma once

#include <pm/kit/export.h>
#include <pm/tree.h>

// What narrow texts of a file are in, where nothing in the file tells it.
//
//     pm::kit::Input input{.file = "plotter.pia"};
//     pm::kit::FileContent content = pm::kit::read_file(input);
//     if (pm::kit::text_encoding(content.tree) == pm::kit::TextEncoding::utf8) {
//         input.code_page = 65001;
//         content = pm::kit::read_file(input);
//     }
namespace pm::kit {

enum class TextEncoding {
    ascii, // nothing outside ASCII: every code page reads the same
    utf8,  // all that is outside ASCII is UTF-8: hardly by chance
    other, // none of it is UTF-8
    mixed  // some is and some isn't, or a text is partly
};

// Of the names and texts of a tree that was read with code page 1252. One that a page of UTF-8 was read with
// never counts as UTF-8. Takes time in proportion to the texts.
[[nodiscard]] PM_KIT_API TextEncoding text_encoding(const Tree& tree);

} // namespace pm::kit
