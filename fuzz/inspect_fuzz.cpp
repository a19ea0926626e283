// What looks into files before a load. The whole input is the file, given as a stream and by its name.

#include "base/allocator.h"
#include "cost.h"
#include "filers/memory_stream.h"
#include "fuzz_support.h"
#include "memory_file.h"
#include <optional>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t most_memory = std::size_t{1} << 24;

// Nothing, or what the list has; a failure is an exception of the family.
template<class List>
std::optional<std::size_t> size_of(List list) {
    try {
        return list().size();
    } catch (const ZT_Exception&) {
        return std::nullopt;
    }
}

// By its name a file gives what it gives as a stream.
template<class List>
void list(std::string content, const pm::fuzz::MemoryFile& file, List list_of) {
    pm::MemoryStream stream({content.data(), content.size()});
    const auto of_stream = size_of([&] { return list_of(static_cast<std::iostream&>(stream)); });
    const auto of_file = size_of([&] { return list_of(std::u16string_view(file.name())); });
    pm::fuzz::require(of_stream == of_file);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pm::set_allocation_filter([](std::size_t asked) { return asked > most_memory; });
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    const std::string content(reinterpret_cast<const char*>(data), size);
    const auto identity = pm::identify_content(content);
    pm::fuzz::require(!identity || identity->section_count <= size);
    const pm::fuzz::MemoryFile file(content);
    const auto of_file = pm::identify(file.name());
    pm::fuzz::require(identity.has_value() == of_file.has_value());
    pm::fuzz::require(!identity || identity->type == of_file->type);
    list(content, file, [](auto&& each) { return pm::dpia_sections(each); });
    list(content, file, [](auto&& each) { return pm::cfg_plotters(each); });
    bound.require_held();
    return 0;
}
