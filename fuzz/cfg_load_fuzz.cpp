// First byte: the number of the plotter. The rest: a CFG file, loaded to the root and to a base that
// takes the place of a "-"; its plotters are listed too.

#include "legacy/pmpc2.h"
#include "legacy_fuzz.h"
#include <algorithm>
#include <pm/inspect.h>

namespace {

// What PM_Object::load_cfg_section() does, on a stream.
void load_section(PM_Object& object, ZT_Error_Handler* handler, const std::string& content, int plotter,
                  const char16_t* base) {
    std::stringstream stream(content);
    PM_CFGFile filer(handler);
    filer.attach(&stream);
    filer.load_section(&object, base, plotter);
    filer.close();
}

// A plotter is listed once, in the order of the numbers.
void list_plotters(const std::string& content) {
    std::stringstream stream(content);
    const std::vector<pm::CfgPlotter> plotters = pm::cfg_plotters(stream);
    const auto follows = [](const pm::CfgPlotter& a, const pm::CfgPlotter& b) {
        return a.number >= b.number;
    };
    pm::fuzz::require(std::adjacent_find(plotters.begin(), plotters.end(), follows) == plotters.end());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string content(data + 1, data + size);
    for (const char16_t* base : {u"\\", u"\\plotter-1"}) {
        pm::fuzz::load_with_each_answer(size, [&](PM_Object& object, ZT_Error_Handler* handler) {
            load_section(object, handler, content, data[0], base);
        });
    }
    list_plotters(content);
    return 0;
}
