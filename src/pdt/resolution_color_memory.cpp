#include "pdt/branch.h"

#include "base/text.h"
#include "pdt/record_rows.h"

namespace {

// What an unknown colour system is stored as: the number of rows of its table.
constexpr std::int32_t unknown_color_system = 5;

float narrow_number(const char16_t* cell) {
    return static_cast<float>(pm::cell_number(cell));
}

} // namespace

// Columns: memory, text, size, longest plot.
void PM_PDTFile::convert_memory_area(PM_Object& object, const char16_t* base) {
    static constexpr CellItem printable_area = {'D', 'D', u"\\printable_area", CellForm::number, {}};
    Branch area(object, base, {u"\\res_color_mem\\mem_area_list\\"});
    read_records(
        pm::Section::memory_area, 4, m_memory_areas,
        [&](UC_Memory_Area& record, const pm::Row& row) {
            record.device_memory = pm::scan_long(row['C']);
            record.printable_area = pm::scan_long(row['D']);
            area.enter({record.name.text()});
            area.set_long(u"\\caps_type", m_caps_type);
            area.set_string(u"\\localized_name", record.localized_name);
            area.set_long(u"\\device_memory", record.device_memory);
            area.set_present(printable_area, row, m_res_color_mem_abilities);
        },
        [this](UC_Memory_Area&, const pm::Row& row) {
            if (row.has('D')) mark(m_res_color_mem_abilities, {6});
        });
}

// Columns: resolution, text, physical, addressable and effective resolution in x and y, dithering, and one
// name for the list of memory areas: the first one is the default. Column K is a remark.
void PM_PDTFile::read_resolution(PM_Object&, const char16_t*) {
    read_records(
        pm::Section::resolution, 11, m_resolutions,
        [](UC_Resolution& record, const pm::Row& row) {
            record.physical_x = narrow_number(row['C']);
            record.physical_y = narrow_number(row['D']);
            record.addressable_x = narrow_number(row['E']);
            record.addressable_y = narrow_number(row['F']);
            record.effective_x = narrow_number(row['G']);
            record.effective_y = narrow_number(row['H']);
            record.default_mem_area.copy(row.name('J'));
            record.dithering.copy(row.name('I'));
        },
        [](UC_Resolution& record, const pm::Row& row) { append_name(record.mem_areas, row, 'J'); });
}

// Columns: colour mode, text, colours, depth, undithered colours, colour system, one name for the list of
// resolutions, resolution by default, colour control. A mode without a default of its own, or without a
// resolution in its first row, has the default of the mode before (kept: files depend on it).
void PM_PDTFile::read_resolution_color_memory(PM_Object&, const char16_t*) {
    read_records(
        pm::Section::resolution_color_memory, 9, m_color_modes,
        [this](UC_Resolution_Color_Memory& record, const pm::Row& row) {
            mark(m_res_color_mem_abilities, {0});
            record.number_of_colors = pm::scan_long(row['C']);
            record.color_depth = pm::scan_long(row['D']);
            record.undithered_colors = pm::scan_long(row['E']);
            record.color_system =
                pm::lookup_enum_or(pm::Keywords::color_system, row['F'], unknown_color_system);
            if (row.has('G') && row.has('H')) record.default_resolution.copy(row.name('H'));
            if (pm::to_lower(*row['I']) == u'y') mark(m_res_color_mem_abilities, {23});
        },
        [this](UC_Resolution_Color_Memory& record, const pm::Row& row) {
            if (!row.has('G')) return;
            append_name(record.resolutions, row, 'G');
            mark(m_res_color_mem_abilities, {2});
        });
}

void PM_PDTFile::publish_res_color_mem(PM_Object& object, const char16_t* base) {
    Branch mode(object, base, {u"\\res_color_mem\\rcm_list\\"});
    for (const UC_Resolution_Color_Memory& record : m_color_modes) {
        mode.enter({record.name.text()});
        mark(m_res_color_mem_abilities, {1});
        mode.set_string(u"\\localized_name", record.localized_name);
        mode.set_long(u"\\number_of_colors", record.number_of_colors);
        mode.set_long(u"\\color_depth", record.color_depth);
        mode.set_long(u"\\undithered_colors", record.undithered_colors);
        mode.set_long(u"\\color_system", record.color_system);
        if (record.default_resolution.length() > 0) {
            mode.set_string(u"\\default_resolution", record.default_resolution);
        }
        mode.set_long(u"\\caps_type", m_caps_type);
        bool first = true;
        for (const ZT_String& name : record.resolutions) {
            if (const UC_Resolution* found = m_resolutions.find_by_name(name.text())) {
                write_resolution(mode, *found, std::exchange(first, false));
            }
        }
    }
}

void PM_PDTFile::write_resolution(const Branch& mode, const UC_Resolution& record, bool first) {
    struct Pair {
        int ability;
        const char16_t* item_x;
        const char16_t* item_y;
        float UC_Resolution::*x;
        float UC_Resolution::*y;
    };
    static constexpr Pair pairs[] = {
        {8, u"\\physical_resolution_x", u"\\physical_resolution_y", &UC_Resolution::physical_x,
         &UC_Resolution::physical_y},
        {9, u"\\addressable_resolution_x", u"\\addressable_resolution_y", &UC_Resolution::addressable_x,
         &UC_Resolution::addressable_y},
        {10, u"\\effective_resolution_x", u"\\effective_resolution_y", &UC_Resolution::effective_x,
         &UC_Resolution::effective_y},
    };
    count_joined(first ? 4 : 3);
    Branch branch = mode.below({u"\\resolution_list\\", record.name.text()});
    mark(m_res_color_mem_abilities, {3});
    branch.set_long(u"\\caps_type", m_caps_type);
    branch.set_string(u"\\localized_name", record.localized_name);
    for (const Pair& pair : pairs) {
        if (record.*pair.x == 0.0F) continue;
        count_joined(2);
        mark(m_res_color_mem_abilities, {pair.ability});
        branch.set_double(pair.item_x, record.*pair.x);
        branch.set_double(pair.item_y, record.*pair.y);
    }
    if (record.default_mem_area.length() > 0) {
        count_joined(1);
        branch.set_string(u"\\default_mem_area", record.default_mem_area);
    }
    if (record.dithering.length() > 0) {
        count_joined(2);
        mark(m_res_color_mem_abilities, {4});
        // Below the resolution, whatever its name says (kept: readers look there).
        branch.set_string(u"\\res_color_mem\\dithering_list", record.dithering);
    }
    write_memory_areas(branch, record.mem_areas);
}

void PM_PDTFile::write_memory_areas(Branch& resolution, const UC_Name_List& names) {
    int index = 0;
    for (const ZT_String& name : names) {
        const UC_Memory_Area* area = m_memory_areas.find_by_name(name.text());
        if (area == nullptr) continue;
        count_joined(index == 0 ? 4 : 3);
        mark(m_res_color_mem_abilities, {7});
        resolution.set_long(u"\\mem_area\\*\\caps_type", m_caps_type, index);
        resolution.set_string(u"\\mem_area\\*\\name", area->name, index);
        ++index;
    }
}
