#pragma once

#include <pm/kit/file.h>
#include <pm/kit/loss.h>
#include <pm/tree.h>
#include <string>
#include <vector>

namespace pm::kit {

// What a comparison of what was asked for with what came back says.
struct Measured {
    std::vector<Loss> losses;
    std::vector<std::string> notes;
};

// What came back, and from what.
struct ReadBack {
    Node tree;
    PM_Object::FileType type;
    unsigned code_page;
    bool stopped; // the reading didn't come to the end
    bool guessed; // the code page is that of UTF-8 because all text could be
};

// Losses in the order of the intended tree, those of nothing in it behind.
[[nodiscard]] Measured measure(const Node& intended, const ReadBack& back);

} // namespace pm::kit
