// What looks into files before a load. The whole input is the file.

#include "base/allocator.h"
#include "cost.h"
#include "filers/memory_stream.h"
#include "fuzz_support.h"
#include <pm/exception.h>
#include <pm/inspect.h>
#include <string>

namespace {

constexpr std::size_t most_memory = std::size_t{1} << 24;

// A failure is an exception of the family or none.
template<class List>
void list(std::string content, List list_stream) {
    pm::MemoryStream stream({content.data(), content.size()});
    try {
        (void)list_stream(stream);
    } catch (const ZT_Exception&) {
        return;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pm::set_allocation_filter([](std::size_t asked) { return asked > most_memory; });
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    const std::string content(reinterpret_cast<const char*>(data), size);
    const auto identity = pm::identify_content(content);
    pm::fuzz::require(!identity || identity->section_count <= size);
    list(content, [](std::iostream& stream) { return pm::dpia_sections(stream); });
    list(content, [](std::iostream& stream) { return pm::cfg_plotters(stream); });
    bound.require_held();
    return 0;
}
