#include "arguments.h"
#include "block.h"
#include "failure.h"
#include <pm/inspect.h>
#include <pm/pm_c.h>
#include <pm/text.h>

using namespace pm::c;

namespace {

void hand_out_identity(const std::optional<pm::FileIdentity>& identity, pm9_identity* given) {
    pm9_identity& out = result(given, u"identity");
    pm9_identity filled{};
    filled.size = out.size;
    filled.type = PM9_FILE_ANY;
    if (identity) {
        filled.type = identity->type;
        filled.version = identity->version;
        filled.section_count = identity->section_count;
        filled.plotter_count = static_cast<std::uint32_t>(identity->plotters.size());
    }
    out = filled;
}

} // namespace

pm9_status pm9_identify(const char* file, size_t file_length, pm9_identity* identity, pm9_error* error) {
    return guarded(error, [&] { hand_out_identity(pm::identify(file_name(file, file_length)), identity); });
}

pm9_status pm9_identify_memory(const void* data, size_t length, pm9_identity* identity, pm9_error* error) {
    return guarded(error, [&] {
        const std::string_view bytes(static_cast<const char*>(data), data != nullptr ? length : 0);
        hand_out_identity(pm::identify_content(bytes), identity);
    });
}

pm9_status pm9_sections(const char* file, size_t file_length, size_t item_size, pm9_section** sections,
                        size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        ArrayBlock<pm9_section> block;
        for (const pm::DpiaSection& section : pm::dpia_sections(file_name(file, file_length))) {
            pm9_section item{};
            item.offset = section.offset;
            item.bytes = section.size;
            block.add(item);
            block.add_text(&pm9_section::name, &pm9_section::name_length, pm::to_utf8(section.name));
            if (!section.info) continue;
            block.add_text(&pm9_section::info, &pm9_section::info_length, pm::to_utf8(*section.info));
        }
        block.hand_out(item_size, sections, count);
    });
}

pm9_status pm9_plotters(const char* file, size_t file_length, size_t item_size, pm9_plotter** plotters,
                        size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        ArrayBlock<pm9_plotter> block;
        for (const pm::CfgPlotter& plotter : pm::cfg_plotters(file_name(file, file_length))) {
            pm9_plotter item{};
            item.number = plotter.number;
            block.add(item);
            block.add_text(&pm9_plotter::name, &pm9_plotter::name_length, pm::to_utf8(plotter.name));
        }
        block.hand_out(item_size, plotters, count);
    });
}
