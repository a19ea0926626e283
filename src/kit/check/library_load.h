#pragma once

#include "check/findings.h"
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <vector>

namespace pm::kit {

// Something that the library said of a load.
struct Heard {
    std::uint32_t number = 0;
    std::uint64_t counted = 0; // the line that it told, in its own count; 0 if it told none
    std::string text;          // the line, or what else it told
};

[[nodiscard]] Heard heard_of(const Report& report);
[[nodiscard]] Heard heard_of(const ZT_Exception& exception);
// Which says nothing of the file.
[[nodiscard]] bool tells_want_of_memory(const ZT_Exception& exception) noexcept;

// What a load says, of a stream of this content or of anything that `load` does.
[[nodiscard]] std::vector<Heard> hear(std::string_view content, PM_Object::FileType type);
template<class Load>
std::vector<Heard> hear_of(Tree& tree, Load load) {
    std::vector<Heard> all;
    std::optional<Heard> last;
    try {
        load(tree);
    } catch (const ZT_Exception& e) {
        if (tells_want_of_memory(e)) throw;
        last = heard_of(e);
    }
    for (const Report& report : tree.reports()) {
        all.push_back(heard_of(report));
    }
    if (last) all.push_back(std::move(*last));
    return all;
}

// The text of a number as a sentence.
[[nodiscard]] std::string sentence_of(std::uint32_t number);

// Adds what was heard and what the scanner hasn't found by itself since `first`, a former count(): a number
// is found if it stands on the line that lines[counted - 1] tells, or anywhere if no line was told.
void add_unfound(const std::vector<Heard>& heard, const std::vector<std::uint64_t>& lines, const Place& where,
                 std::size_t first, Findings& findings);

} // namespace pm::kit
