#include "pdt/pmpdt.h"

#include "base/text.h"
#include "pdt/branch.h"
#include "pdt/failure.h"
#include <pm/error_number.h>

namespace {

constexpr int mark_value = 5;
constexpr int version_column = 62;

template<class Capabilities, class UserFlags>
std::u16string all_unset() {
    Capabilities states;
    for (int item = 0; item < UserFlags::count; ++item) {
        states.set_one_caps_state(false, static_cast<typename UserFlags::Enum>(item));
    }
    return states.get_abilities();
}

void check_arguments(const PM_Object* object, const char16_t* root, PM_Object::FileType type) {
    if (object == nullptr) pm::throw_pdt_failure(PM_ERR_NOTHING_THERE, root);
    if (pm::view(root).empty()) pm::throw_pdt_failure(PM_ERR_BAD_PATH, root);
    if (type != PM_Object::FILE_PDT) pm::throw_pdt_failure(PM_ERR_WRONG_TYPE, root);
}

} // namespace

PM_PDTFile::~PM_PDTFile() = default;

void PM_PDTFile::load(PM_Object* object, const char16_t* root, PM_Object::FileType type) {
    // Each finds in the lists what earlier ones left there.
    static constexpr Converter converters[] = {
        &PM_PDTFile::convert_custom_capability,
        &PM_PDTFile::convert_dithering_method,
        &PM_PDTFile::read_protocol,
        &PM_PDTFile::convert_io_method,
        &PM_PDTFile::read_media_collating,
        &PM_PDTFile::read_media_cutting,
        &PM_PDTFile::convert_media_description,
        &PM_PDTFile::read_media_destination,
        &PM_PDTFile::read_media_folding,
        &PM_PDTFile::convert_media_size,
        &PM_PDTFile::read_media_source_entry,
        &PM_PDTFile::convert_media_source,
        &PM_PDTFile::read_media_stapling,
        &PM_PDTFile::convert_media_type,
        &PM_PDTFile::convert_media_destination,
        &PM_PDTFile::convert_memory_area,
        &PM_PDTFile::convert_raster,
        &PM_PDTFile::read_resolution,
        &PM_PDTFile::read_resolution_color_memory,
        &PM_PDTFile::convert_misc_info,
        &PM_PDTFile::convert_meta,
        &PM_PDTFile::convert_linetype,
    };
    pm::init_static_tables();
    load_strings();
    check_arguments(object, root, type);
    for (const Converter convert : converters) {
        (this->*convert)(*object, root);
    }
    write_capability_states(*object, root);
}

void PM_PDTFile::load_strings() {
    m_stream->clear();
    rewind_reader();
    m_strings.load_strings(m_reader, file_name());
    if (m_stream->bad()) pm::throw_pdt_failure(PM_ERR_NOT_OPENED, file_name());
}

pm::SectionReader PM_PDTFile::open_rows(pm::Section section) const {
    return pm::SectionReader(pm::folder_of(m_filename), section, pm::SectionReader::heading_lines);
}

void PM_PDTFile::getVersion(char16_t* buffer, std::size_t size) {
    pm::SectionReader section(pm::folder_of(m_filename), pm::Section::global_static_lists,
                              pm::SectionReader::heading_lines - 1);
    section.read_row(m_line);
    std::size_t position = 0;
    for (int column = 1; column < version_column; ++column) {
        m_line.next_field(position);
    }
    copy_version(m_line.next_field(position), buffer, size);
}

void PM_PDTFile::count_joined(std::uint32_t items) {
    if (items > most_joined - m_joined) pm::throw_pdt_failure(PM_ERR_NOT_READ, file_name());
    m_joined += items;
}

void PM_PDTFile::append_name(UC_Name_List& list, const pm::Row& row, char column) {
    if (row.has(column)) list.append(ZT_String(row.name(column)));
}

void PM_PDTFile::mark(ZT_Flags& flags, const Marks& marks) {
    for (const int index : marks) {
        flags.set_flag(index, mark_value);
    }
}

void PM_PDTFile::write_capability_states(PM_Object& object, const char16_t* base) {
    Branch root(object, base, {});
    root.set_string(u"\\res_color_mem\\caps_state",
                    all_unset<ZT_Std_ResColorMem_Capabilities, ZT_ResColorMem_User_Flags>().c_str());
    root.set_string(u"\\media\\caps_state",
                    all_unset<ZT_Std_Media_Capabilities, ZT_Media_User_Flags>().c_str());
    root.set_string(u"\\linetype\\caps_state",
                    all_unset<ZT_Std_Linetype_Capabilities, ZT_Linetype_User_Flags>().c_str());
    root.set_string(u"\\physical_pen\\caps_state",
                    all_unset<ZT_Std_PhysPen_Capabilities, ZT_Pen_User_Flags>().c_str());
    root.set_string(u"\\io\\caps_state",
                    all_unset<ZT_Std_Plotter_IO_Capabilities, ZT_Plotter_IO_User_Flags>().c_str());
    root.set_double(u"\\meta\\toolkit_version", 0.0);
}
