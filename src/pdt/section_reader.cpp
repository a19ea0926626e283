#include "pdt/section_reader.h"

#include "pdt/failure.h"
#include "platform/files.h"
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <pm/error_number.h>

namespace pm {

namespace {

struct SectionFile {
    Section section;
    const char16_t* name;
    const char16_t* key_prefix;
};

constexpr SectionFile section_files[section_count] = {
    {Section::baud_rate, u"Baud Rate", u""},
    {Section::custom_capability, u"Custom Capability", u"DRFX_CUSTOM_CAPABILITY_"},
    {Section::dithering_method, u"Dithering Method", u"DRFX_DITHERING_METHOD_"},
    {Section::io_method, u"IO Method", u""},
    {Section::media_collating, u"Media Collating", u"DRFX_MEDIA_COLLATING_"},
    {Section::media_cutting, u"Media Cutting", u"DRFX_MEDIA_CUTTING_"},
    {Section::media_description, u"Media Description", u"DRFX_MEDIA_DESCRIPTION_"},
    {Section::media_destination, u"Media Destination", u"DRFX_MEDIA_DESTINATION_"},
    {Section::media_folding, u"Media Folding", u"DRFX_MEDIA_FOLDING_"},
    {Section::media_source_size, u"Media Source Size", u""},
    {Section::media_source, u"Media Source", u"DRFX_MEDIA_SOURCE_"},
    {Section::media_size, u"Media Size", u"DRFX_MEDIA_SIZE_"},
    {Section::media_stapling, u"Media Stapling", u"DRFX_MEDIA_STAPLING_"},
    {Section::media_type, u"Media Type", u"DRFX_MEDIA_TYPE_"},
    {Section::memory_area, u"Memory Area", u"DRFX_MEMORY_AREA_"},
    {Section::resolution, u"Resolution", u"DRFX_RESOLUTION_"},
    {Section::resolution_color_memory, u"Resolution Color Memory", u"DRFX_RESOLUTION_COLOR_MEMORY_"},
    {Section::misc_info, u"Misc Non-Localizable Info", u""},
    {Section::misc_localizable_info, u"Misc Localizable Information", u"DRFX_MISC_LOCALIZABLE_INFORMATION_"},
    {Section::global_static_lists, u"Global Static Lists", u""},
    {Section::line_type_capabilities, u"Line Type Capabilities", u""},
    {Section::raster_capability, u"Raster Capability", u""},
    {Section::protocol, u"Protocol ", u"DRFX_PROTOCOL__"}, // the file's name has a blank before the dot
    {Section::media_source_entry, u"Media Source Entry", u"DRFX_MEDIA_SOURCE_ENTRY_"},
};

constexpr std::size_t index_of(Section section) {
    return static_cast<std::size_t>(section);
}

constexpr bool each_row_stands_at_its_section() {
    std::size_t index = 0;
    return std::all_of(std::begin(section_files), std::end(section_files),
                       [&index](const SectionFile& file) { return index_of(file.section) == index++; });
}
static_assert(each_row_stands_at_its_section());

struct OpenFailureRow {
    int code;
    OpenFailure failure;
};

constexpr OpenFailureRow open_failures[] = {
    {ENOENT, {PM_ERR_NO_SUCH_FILE, true}},    {EACCES, {PM_ERR_ACCESS_DENIED, true}},
    {EMFILE, {PM_ERR_TOO_MANY_FILES, false}}, {ENOMEM, {PM_ERR_NO_MEMORY_FOR_FILE, false}},
    {ENOSPC, {PM_ERR_DISK_FULL, true}},       {EISDIR, {PM_ERR_IS_A_FOLDER, true}},
};

std::u16string section_path(std::u16string_view folder, Section section) {
    std::u16string path(folder);
    path += section_name(section);
    path += u".pdt";
    return path;
}

} // namespace

const char16_t* section_name(Section section) {
    return section_files[index_of(section)].name;
}

const char16_t* section_key_prefix(Section section) {
    return section_files[index_of(section)].key_prefix;
}

std::u16string_view folder_of(std::u16string_view file_name) {
    return file_name.substr(0, folder_length(file_name));
}

OpenFailure open_failure(int code) {
    for (const OpenFailureRow& row : open_failures) {
        if (row.code == code) return row.failure;
    }
    return {PM_ERR_NOT_OPENED, true};
}

SectionReader::SectionReader(std::u16string_view folder, Section section, int skipped)
    : SectionReader(section_path(folder, section), skipped) {}

SectionReader::SectionReader(std::u16string path, int skipped)
    : m_path(std::move(path)), m_code_page(code_page(default_code_page)) {
    open();
    m_reader.attach(m_stream);
    for (int line = 0; line < skipped; ++line) {
        read_line();
    }
}

// A folder can be opened here and there; only reading it fails.
void SectionReader::fail(int code) const {
    std::error_code ignored;
    const bool is_folder = std::filesystem::is_directory(native_file_name(m_path), ignored);
    const OpenFailure failure = open_failure(is_folder ? EISDIR : code);
    throw_pdt_failure(failure.number, failure.names_file ? m_path.c_str() : nullptr);
}

void SectionReader::open() {
    if (m_path.empty()) fail(ENOENT);
    const std::filesystem::path path = native_file_name(m_path);
    if (is_special_file(path)) fail(ENODEV);
    errno = 0;
    m_stream.open(path, std::ios::in | std::ios::binary);
    if (!m_stream) fail(errno);
}

LineReader::Line SectionReader::read_line() {
    constexpr std::size_t longest = RowLine::capacity - 1;
    LineReader::Line line = m_reader.read_line(RowLine::capacity);
    if (line.end == LineReader::End::line && line.text.ends_with('\r')) line.text.remove_suffix(1);
    if (m_stream.bad()) fail(EIO);
    if (line.text.size() > longest) throw_pdt_failure(PM_ERR_NOT_OPENED, m_path.c_str());
    return line;
}

bool SectionReader::read_row(RowLine& line) {
    const LineReader::Line read = read_line();
    if (line.assign_plain(read.text)) return read.end == LineReader::End::line;
    m_wide.clear();
    m_code_page.decode(read.text, m_wide);
    line.assign(m_wide);
    return read.end == LineReader::End::line;
}

} // namespace pm
