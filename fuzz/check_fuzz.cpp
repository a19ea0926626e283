#include "check/library_load.h"
#include "cost.h"
#include "fuzz_support.h"
#include <algorithm>
#include <pm/kit/check.h>
#include <string>
#include <string_view>

namespace {

using pm::kit::CheckOptions;
using pm::kit::Diagnostic;

// The first byte tells the kind and the code page, the rest is the file.
constexpr PM_Object::FileType types[] = {PM_Object::FILE_PIA, PM_Object::FILE_DPIA, PM_Object::FILE_PC2,
                                         PM_Object::FILE_CFG, PM_Object::FILE_PCP,  PM_Object::FILE_DOC,
                                         PM_Object::FILE_PDT};
constexpr unsigned code_pages[] = {1252, 65001, 932};

// The shortest line is two bytes, and each may be told of by several rules, with its text and its place.
constexpr std::size_t check_bytes_a_byte = 4096;

pm::fuzz::Cost check_cost(std::string_view content) {
    const bool compressed = content.find("compress") != std::string_view::npos;
    const std::size_t text = compressed ? pm::most_expansion * content.size() : content.size();
    return pm::fuzz::linear_cost(text, check_bytes_a_byte, 200);
}

// What a scanner finds itself is told in its own words, the rest in the library's.
void require_own_words(const Diagnostic& each) {
    if (each.number == 0) return;
    std::string words = pm::kit::sentence_of(each.number);
    words.pop_back();
    pm::fuzz::require(!each.message.starts_with(words));
}

} // namespace

// Any content can be checked; of property text and the older formats the scanner finds whatever the library
// reports.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    CheckOptions options;
    options.type = types[data[0] % std::size(types)];
    options.code_page = code_pages[data[0] / std::size(types) % std::size(code_pages)];
    options.round_trip = data[0] >= 128;
    const std::string_view content(reinterpret_cast<const char*>(data) + 1, size - 1);
    const bool text = *options.type != PM_Object::FILE_DOC;
    const pm::fuzz::CostBound bound(check_cost(content));
    const std::vector<Diagnostic> found = pm::kit::check_content(content, "Media Size.pdt", options);
    bound.require_held();
    for (const Diagnostic& each : found) {
        pm::fuzz::require(pm::kit::find_check_rule(each.rule) != nullptr && !each.message.empty());
        if (text && each.rule != "round-trip" && options.code_page == 1252) require_own_words(each);
    }
    return 0;
}
