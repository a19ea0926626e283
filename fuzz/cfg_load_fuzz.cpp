// First byte: the number of the plotter. The rest: a CFG file.

#include "legacy/pmpc2.h"
#include "legacy_fuzz.h"

namespace {

// What PM_Object::load_cfg_section() does, on a stream.
void load_section(PM_Object& object, ZT_Error_Handler* handler, const std::string& content, int plotter) {
    std::stringstream stream(content);
    PM_CFGFile filer(handler);
    filer.attach(&stream);
    filer.load_section(&object, u"\\", plotter);
    filer.close();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string content(data + 1, data + size);
    pm::fuzz::load_with_each_answer(size, [&](PM_Object& object, ZT_Error_Handler* handler) {
        load_section(object, handler, content, data[0]);
    });
    return 0;
}
