// First byte: which code page. The rest: the string file of a device description.

#include "cost.h"
#include "fuzz_support.h"
#include "pdt/string_table.h"
#include <cstdlib>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr const char* code_pages[] = {"0", "1251", "65001", "932", "950", "not a number"};

void look_up_all(pm::StringTable& table) {
    for (int section = 0; section < pm::section_count; ++section) {
        for (const char16_t column : {u'B', u'C'}) {
            for (int row = 3; row < 20; ++row) {
                const std::u16string_view text =
                    table.localized(static_cast<pm::Section>(section), column, row);
                pm::fuzz::require(text.size() < pm::StringTable::text_capacity);
                pm::fuzz::require(text.find(u'"') == std::u16string_view::npos);
            }
        }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    setenv("CODEP", code_pages[data[0] % std::size(code_pages)], 1);
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    pm::LineReader reader;
    reader.attach(stream);
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    pm::StringTable table;
    try {
        table.load_strings(reader, nullptr);
    } catch (const PM_Severe& e) {
        pm::fuzz::require(e.m_number == PM_ERR_NOT_OPENED);
    }
    look_up_all(table);
    bound.require_held();
    return 0;
}
