#include "pdt/section_reader.h"

#include "pdt/failure.h"
#include "platform/files.h"
#include <cerrno>
#include <filesystem>
#include <pm/error_number.h>

namespace pm {

namespace {

struct SectionFile {
    const char16_t* name;
    const char16_t* key_prefix;
};

constexpr SectionFile section_files[section_count] = {
    {u"Baud Rate", u""},
    {u"Custom Capability", u"DRFX_CUSTOM_CAPABILITY_"},
    {u"Dithering Method", u"DRFX_DITHERING_METHOD_"},
    {u"IO Method", u""},
    {u"Media Collating", u"DRFX_MEDIA_COLLATING_"},
    {u"Media Cutting", u"DRFX_MEDIA_CUTTING_"},
    {u"Media Description", u"DRFX_MEDIA_DESCRIPTION_"},
    {u"Media Destination", u"DRFX_MEDIA_DESTINATION_"},
    {u"Media Folding", u"DRFX_MEDIA_FOLDING_"},
    {u"Media Source Size", u""},
    {u"Media Source", u"DRFX_MEDIA_SOURCE_"},
    {u"Media Size", u"DRFX_MEDIA_SIZE_"},
    {u"Media Stapling", u"DRFX_MEDIA_STAPLING_"},
    {u"Media Type", u"DRFX_MEDIA_TYPE_"},
    {u"Memory Area", u"DRFX_MEMORY_AREA_"},
    {u"Resolution", u"DRFX_RESOLUTION_"},
    {u"Resolution Color Memory", u"DRFX_RESOLUTION_COLOR_MEMORY_"},
    {u"Misc Non-Localizable Info", u""},
    {u"Misc Localizable Information", u"DRFX_MISC_LOCALIZABLE_INFORMATION_"},
    {u"Global Static Lists", u""},
    {u"Line Type Capabilities", u""},
    {u"Raster Capability", u""},
    {u"Protocol ", u"DRFX_PROTOCOL__"}, // the file's name has a blank before the dot
    {u"Media Source Entry", u"DRFX_MEDIA_SOURCE_ENTRY_"},
};

struct OpenFailureRow {
    int code;
    OpenFailure failure;
};

constexpr OpenFailureRow open_failures[] = {
    {ENOENT, {PM_ERR_NO_SUCH_FILE, true}},    {EACCES, {PM_ERR_ACCESS_DENIED, true}},
    {EMFILE, {PM_ERR_TOO_MANY_FILES, false}}, {ENOMEM, {PM_ERR_NO_MEMORY_FOR_FILE, false}},
    {ENOSPC, {PM_ERR_DISK_FULL, true}},       {EISDIR, {PM_ERR_IS_A_FOLDER, true}},
};

[[noreturn]] void fail(int code, const std::u16string& path) {
    const OpenFailure failure = open_failure(code);
    throw_pdt_failure(failure.number, failure.names_file ? path.c_str() : nullptr);
}

std::u16string section_path(std::u16string_view folder, Section section) {
    std::u16string path(folder);
    path += section_name(section);
    path += u".pdt";
    return path;
}

} // namespace

const char16_t* section_name(Section section) {
    return section_files[static_cast<int>(section)].name;
}

const char16_t* section_key_prefix(Section section) {
    return section_files[static_cast<int>(section)].key_prefix;
}

std::u16string_view folder_of(std::u16string_view file_name) {
    return file_name.substr(0, file_name.find_last_of(u"\\/") + 1);
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

void SectionReader::open() {
    if (m_path.empty()) fail(ENOENT, m_path);
    const std::string name = native_file_name(m_path);
    std::error_code ignored;
    // A folder can be opened here and there; only reading it fails.
    if (std::filesystem::is_directory(name, ignored)) fail(EISDIR, m_path);
    errno = 0;
    m_stream.open(name, std::ios::in | std::ios::binary);
    if (!m_stream) fail(errno, m_path);
}

LineReader::Line SectionReader::read_line() {
    constexpr std::size_t longest = RowLine::capacity - 1;
    LineReader::Line line = m_reader.read_line(RowLine::capacity);
    if (line.end == LineReader::End::line && line.text.ends_with('\r')) line.text.remove_suffix(1);
    if (line.text.size() > longest || m_stream.bad()) throw_pdt_failure(PM_ERR_NOT_OPENED, m_path.c_str());
    return line;
}

bool SectionReader::read_row(RowLine& line) {
    const LineReader::Line read = read_line();
    m_wide.clear();
    m_code_page.decode(read.text, m_wide);
    line.assign(m_wide);
    return read.end == LineReader::End::line;
}

} // namespace pm
