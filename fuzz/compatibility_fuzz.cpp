// A configuration and a description, both as PIA files, with a line "====" between them; what stands in front
// of a line "::::", if there is one, is a map. Neither tree nor map may make the check fail in another way
// than told.

#include "base/allocator.h"
#include "cost.h"
#include "fuzz_support.h"
#include <pm/exception.h>
#include <pm/kit/compatibility.h>
#include <pm/kit/error.h>
#include <sstream>
#include <string>

namespace {

constexpr std::size_t most_memory = std::size_t{1} << 24;

// The text in front of a mark, which is taken off; empty without one.
std::string take(std::string& input, const std::string& mark) {
    const std::size_t at = input.find(mark);
    if (at == std::string::npos) return {};
    std::string text = input.substr(0, at);
    input.erase(0, at + mark.size());
    return text;
}

pm::Tree tree_of(const std::string& pia) {
    pm::Tree tree;
    std::stringstream stream(pia);
    try {
        tree.load(stream);
    } catch (const ZT_Exception&) { // what was read stays
    }
    return tree;
}

pm::kit::CompatibilityMap map_of(const std::string& json) {
    try {
        if (!json.empty()) return pm::kit::load_map(json);
    } catch (const pm::kit::Error&) {
    }
    return pm::kit::built_in_map();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pm::set_allocation_filter([](std::size_t asked) { return asked > most_memory; });
    std::string input(reinterpret_cast<const char*>(data), size);
    const pm::kit::CompatibilityMap map = map_of(take(input, "::::\n"));
    pm::fuzz::require(pm::kit::load_map(pm::kit::map_to_json(map)) == map);
    const pm::Tree configuration = tree_of(take(input, "====\n"));
    const pm::Tree description = tree_of(input);
    const auto base = pm::kit::find_description(description);
    const pm::kit::CompatibilityOptions options{.description_base = "\\", .map = &map};
    // Each finding lists at most 64 offers, so that the description counts for each line of the
    // configuration.
    const pm::fuzz::CostBound bound(pm::fuzz::linear_cost(size, std::size_t{1} << 16, 1000));
    const auto explained = pm::kit::explain_compatibility(configuration, description, options);
    bound.require_held();
    // The same again, and each finding was a look.
    pm::fuzz::require(pm::kit::check_compatibility(configuration, description, options) ==
                      explained.findings);
    pm::fuzz::require(explained.looks.size() >= explained.findings.size());
    if (base) (void)pm::kit::findings_to_json(pm::kit::explain_description(description, {.map = &map}));
    return 0;
}
