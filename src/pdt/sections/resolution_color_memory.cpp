#include "pdt/sections/resolution_color_memory.h"

#include "base/text.h"
#include "pdt/branch.h"
#include "pdt/enum_tables.h"
#include "pdt/record_rows.h"
#include <utility>

namespace pm {

// A memory, B text, C size, D longest plot.
void convert_memory_area(PdtLoad& load, Rows& rows) {
    static constexpr CellItem printable_area = {
        .column = 'D', .item = u"\\printable_area", .form = CellForm::number};
    Branch area(load, {u"\\res_color_mem\\mem_area_list\\"});
    read_records(
        rows, 4, load.memory_areas,
        [&](UC_Memory_Area& record, const Row& row) {
            record.device_memory = scan_long(row['C']);
            record.printable_area = scan_long(row['D']);
            area.enter({record.name.text()});
            area.set_long(u"\\caps_type", load.caps_type);
            area.set_string(u"\\localized_name", record.localized_name);
            area.set_long(u"\\device_memory", record.device_memory);
            area.set_present(printable_area, row, load.color_abilities);
        },
        [&load](UC_Memory_Area&, const Row& row) {
            if (row.has('D')) mark(load.color_abilities, {ColorAbility::printable_area});
        });
}

// A resolution, B text, C and D physical, E and F addressable, G and H effective resolution in x and y,
// I dithering, J one name for the list of memory areas: the first one is the default. K is a remark.
void read_resolution(PdtLoad& load, Rows& rows) {
    read_records(
        rows, 11, load.resolutions,
        [](UC_Resolution& record, const Row& row) {
            record.physical_x = narrow_cell_number(row['C']);
            record.physical_y = narrow_cell_number(row['D']);
            record.addressable_x = narrow_cell_number(row['E']);
            record.addressable_y = narrow_cell_number(row['F']);
            record.effective_x = narrow_cell_number(row['G']);
            record.effective_y = narrow_cell_number(row['H']);
            record.default_mem_area.copy(row.name('J'));
            record.dithering.copy(row.name('I'));
        },
        [](UC_Resolution& record, const Row& row) { append_name(record.mem_areas, row, 'J'); });
}

// A colour mode, B text, C colours, D depth, E undithered colours, F colour system, G one name for the list
// of resolutions, H resolution by default, I colour control. A mode without a default of its own, or without
// a resolution in its first row, has the default of the mode before (kept).
void read_resolution_color_memory(PdtLoad& load, Rows& rows) {
    constexpr auto unknown_color_system = static_cast<std::int32_t>(std::size(keywords::color_system));
    read_records(
        rows, 9, load.color_modes,
        [&load](UC_Resolution_Color_Memory& record, const Row& row) {
            mark(load.color_abilities, {ColorAbility::modes});
            record.number_of_colors = scan_long(row['C']);
            record.color_depth = scan_long(row['D']);
            record.undithered_colors = scan_long(row['E']);
            record.color_system = lookup_enum_or(keywords::color_system, row['F'], unknown_color_system);
            if (row.has('G') && row.has('H')) record.default_resolution.copy(row.name('H'));
            if (to_lower(*row['I']) == u'y') mark(load.color_abilities, {ColorAbility::color_control});
        },
        [&load](UC_Resolution_Color_Memory& record, const Row& row) {
            if (!row.has('G')) return;
            append_name(record.resolutions, row, 'G');
            mark(load.color_abilities, {ColorAbility::mode_resolutions});
        });
}

namespace {

struct Pair {
    int ability;
    const char16_t* item_x;
    const char16_t* item_y;
    float UC_Resolution::*x;
    float UC_Resolution::*y;
};

constexpr Pair pairs[] = {
    {ColorAbility::physical_resolution, u"\\physical_resolution_x", u"\\physical_resolution_y",
     &UC_Resolution::physical_x, &UC_Resolution::physical_y},
    {ColorAbility::addressable_resolution, u"\\addressable_resolution_x", u"\\addressable_resolution_y",
     &UC_Resolution::addressable_x, &UC_Resolution::addressable_y},
    {ColorAbility::effective_resolution, u"\\effective_resolution_x", u"\\effective_resolution_y",
     &UC_Resolution::effective_x, &UC_Resolution::effective_y},
};

void write_mode(PdtLoad& load, Branch& mode, const UC_Resolution_Color_Memory& record) {
    mark(load.color_abilities, {ColorAbility::joined_modes});
    mode.set_string(u"\\localized_name", record.localized_name);
    mode.set_long(u"\\number_of_colors", record.number_of_colors);
    mode.set_long(u"\\color_depth", record.color_depth);
    mode.set_long(u"\\undithered_colors", record.undithered_colors);
    mode.set_long(u"\\color_system", record.color_system);
    if (record.default_resolution.length() > 0) {
        mode.set_string(u"\\default_resolution", record.default_resolution);
    }
    mode.set_long(u"\\caps_type", load.caps_type);
}

// Of a pair without an x nothing is written.
void write_pairs(PdtLoad& load, Branch& branch, const UC_Resolution& record) {
    for (const Pair& pair : pairs) {
        if (record.*pair.x == 0.0F) continue;
        load.count_joined(2);
        mark(load.color_abilities, {pair.ability});
        branch.set_double(pair.item_x, record.*pair.x);
        branch.set_double(pair.item_y, record.*pair.y);
    }
}

void write_references(PdtLoad& load, Branch& branch, const UC_Resolution& record) {
    if (record.default_mem_area.length() > 0) {
        load.count_joined(1, {&record.default_mem_area});
        branch.set_string(u"\\default_mem_area", record.default_mem_area);
    }
    if (record.dithering.length() > 0) {
        load.count_joined(2, {&record.dithering});
        mark(load.color_abilities, {ColorAbility::dithering});
        // Below the resolution, whatever its name says (kept: readers look there).
        branch.set_string(u"\\res_color_mem\\dithering_list", record.dithering);
    }
}

void write_memory_areas(PdtLoad& load, Branch& resolution, const UC_Name_List& names) {
    int index = 0;
    for (const ZT_String& name : names) {
        const UC_Memory_Area* area = load.memory_areas.find_by_name(name.text());
        if (area == nullptr) continue;
        load.count_joined((index == 0 ? 2 : 1) + 2, {&area->name});
        mark(load.color_abilities, {ColorAbility::memory_areas});
        resolution.set_long(u"\\mem_area\\*\\caps_type", load.caps_type, index);
        resolution.set_string(u"\\mem_area\\*\\name", area->name, index);
        ++index;
    }
}

void write_resolution(PdtLoad& load, Branch branch, const UC_Resolution& record) {
    mark(load.color_abilities, {ColorAbility::joined_resolutions});
    branch.set_long(u"\\caps_type", load.caps_type);
    branch.set_string(u"\\localized_name", record.localized_name);
    write_pairs(load, branch, record);
    write_references(load, branch, record);
    write_memory_areas(load, branch, record.mem_areas);
}

} // namespace

void publish_res_color_mem(PdtLoad& load) {
    Branch mode(load, {u"\\res_color_mem\\rcm_list\\"});
    for (const UC_Resolution_Color_Memory& record : load.color_modes) {
        mode.enter({record.name.text()});
        write_mode(load, mode, record);
        std::size_t nodes = 2; // the list's, and that of its first resolution
        for (const ZT_String& name : record.resolutions) {
            const UC_Resolution* found = load.resolutions.find_by_name(name.text());
            if (found == nullptr) continue;
            load.count_joined(std::exchange(nodes, 1) + 2, {&found->localized_name});
            write_resolution(load, mode.below({u"\\resolution_list\\", found->name.text()}), *found);
        }
    }
}

} // namespace pm
