#pragma once

#include "filers/line_reader.h"
#include "pdt/row.h"
#include "platform/code_page.h"
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace pm {

// The tables of a device description, by their numbers.
enum class Section {
    baud_rate,
    custom_capability,
    dithering_method,
    io_method,
    media_collating,
    media_cutting,
    media_description,
    media_destination,
    media_folding,
    media_source_size,
    media_source,
    media_size,
    media_stapling,
    media_type,
    memory_area,
    resolution,
    resolution_color_memory,
    misc_info,
    misc_localizable_info,
    global_static_lists,
    line_type_capabilities,
    raster_capability,
    protocol,
    media_source_entry
};
inline constexpr int section_count = 24;

// The name of the section's file, without ".pdt".
const char16_t* section_name(Section section);
// What the keys of its translatable cells begin with in the string file; empty if it has none.
const char16_t* section_key_prefix(Section section);

// The part of a file name up to and with its last "\" or "/".
std::u16string_view folder_of(std::u16string_view file_name);

// What a table that can't be opened is told as.
struct OpenFailure {
    std::uint32_t number;
    bool names_file; // whether the detail is the file's name
};
// By the value of errno.
OpenFailure open_failure(int code);

// Reads the lines of one table, always in the system's code page.
class SectionReader {
public:
    static constexpr int heading_lines = 2;
    // Of the first data row. Rows are numbered by their lines in the file.
    static constexpr int first_row = heading_lines + 1;

    // Opens the section's file in `folder`, which ends in its separator or is empty, and passes over
    // `skipped` lines. Numbers: those of open_failure(), 56 for a line that is too long; the detail is the
    // file's name.
    SectionReader(std::u16string_view folder, Section section, int skipped);
    // The same for a file by its name; an empty name is number 63.
    SectionReader(std::u16string path, int skipped);

    // The next line. False at the end of the file, also when it ends behind a line without line end: `line`
    // then holds what there was of it, and nothing ever after. A line of 2048 bytes or more, or a failed
    // read, is number 56.
    bool read_row(RowLine& line);

private:
    void open();
    [[noreturn]] void fail(int code) const;
    LineReader::Line read_line();

    std::u16string m_path;
    const CodePage& m_code_page;
    std::ifstream m_stream;
    LineReader m_reader;
    std::u16string m_wide;
};

} // namespace pm
