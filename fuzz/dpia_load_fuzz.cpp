#include "cost.h"
#include "fuzz_support.h"
#include "memory_file.h"
#include <pm/pm.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

// The section that the directory in the tree names at the index, if it names one.
bool load_section(PM_Object& object, const pm::fuzz::MemoryFile& file, int index) {
    char16_t name[4097] = {};
    if (!object.GetProperty(u"DPIA_directory\\*\\descriptor", name, sizeof name, index)) return false;
    name[4096] = 0;
    object.load_section(file.name(), PM_Object::FILE_DPIA, u"section", name);
    return true;
}

// A directory that can be listed tells as many sections as the file is known by.
void list_sections(const std::string& content) {
    std::stringstream stream(content);
    const auto identity = pm::identify_content(content);
    try {
        const std::vector<pm::DpiaSection> sections = pm::dpia_sections(stream);
        const bool known = identity && identity->type == PM_Object::FILE_DPIA;
        pm::fuzz::require(!known || identity->section_count == sections.size());
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
}

// Hardly a directory names this one.
void look_for_no_section(const pm::fuzz::MemoryFile& file) {
    PM_Object object;
    try {
        object.load_section(file.name(), PM_Object::FILE_DPIA, u"section", u"\n\n no section \n\n");
    } catch (const ZT_Exception& e) {
        pm::fuzz::require(e.m_number != 0);
    }
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
    list_sections(content);
    look_for_no_section(file);
    return 0;
}
