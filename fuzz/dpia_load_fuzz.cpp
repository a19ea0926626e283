#include "cost.h"
#include "fuzz_support.h"
#include "memory_file.h"
#include <pm/pm.h>
#include <sstream>
#include <string>

namespace {

// The section that the directory in the tree names at the index, if it names one.
bool load_section(PM_Object& object, const pm::fuzz::MemoryFile& file, int index) {
    char16_t name[4097] = {};
    if (!object.GetProperty(u"DPIA_directory\\*\\descriptor", name, sizeof name, index)) return false;
    name[4096] = 0;
    object.load_section(file.name(), PM_Object::FILE_DPIA, u"section", name);
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const pm::fuzz::MemoryFile file(content);
    std::stringstream stream(content);
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(content));
    PM_Object object;
    try {
        object.load(stream, PM_Object::FILE_DPIA, u"\\");
        for (int index = 0; load_section(object, file, index); ++index) {
        }
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
    bound.require_held();
    return 0;
}
