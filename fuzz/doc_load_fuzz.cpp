#include "cost.h"
#include "fuzz_support.h"
#include "memory_file.h"
#include <pm/pm.h>
#include <string>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pm::fuzz::MemoryFile file(std::string(reinterpret_cast<const char*>(data), size));
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    PM_Object object;
    try {
        object.load(file.name(), PM_Object::FILE_DOC, u"\\");
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
    bound.require_held();
    char16_t version[80] = {};
    try {
        object.getFileVersion(file.name(), version, 80, PM_Object::FILE_DOC);
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number == 56 || e.m_number == 66);
    }
    return 0;
}
