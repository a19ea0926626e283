// Reading trees as JSON. What is read comes back from its own text as it is.

#include "cost.h"
#include "fuzz_support.h"
#include <pm/kit/difference.h>
#include <pm/kit/error.h>
#include <pm/kit/json.h>
#include <string_view>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    try {
        const pm::Tree tree = pm::kit::from_json(text);
        bound.require_held();
        const pm::Tree again = pm::kit::from_json(pm::kit::to_json(tree, {.indent = -1}));
        pm::fuzz::require(pm::kit::identical(tree, again));
        (void)pm::kit::to_json(tree, {.plain = true});
    } catch (const pm::kit::Error& e) {
        pm::fuzz::require(e.line() > 0 && e.column() > 0);
    }
    return 0;
}
