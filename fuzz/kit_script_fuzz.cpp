// Scripts of edits. Each edit's line reads back; what a script makes of a tree, another script makes of it,
// too.

#include "cost.h"
#include "fuzz_support.h"
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/error.h>
#include <string_view>

namespace {

using namespace pm::kit;

void require_reads_back(const Edit& edit) {
    std::vector<Edit> again = parse_script(edit_line(edit));
    pm::fuzz::require(again.size() == 1);
    again.front().line = edit.line;
    pm::fuzz::require(again.front() == edit);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    pm::Tree tree;
    tree.set("\\a\\b", 1);
    tree.set("\\a\\c\\d", "text");
    try {
        const pm::fuzz::CostBound bound(pm::fuzz::linear_cost(size, 1024));
        const std::vector<Edit> edits = parse_script(text);
        bound.require_held();
        for (const Edit& edit : edits) {
            require_reads_back(edit);
        }
        if (edits.size() > 100) return 0; // trees that double with each edit
        const pm::Tree changed = applied(tree, edits);
        apply_edits(tree, parse_script(script(compare(tree, changed))));
        pm::fuzz::require(identical(tree, changed));
    } catch (const Error& e) {
        pm::fuzz::require(e.line() > 0);
    }
    return 0;
}
