#pragma once

#include <cstdint>
#include <span>

namespace pm {

// The keyword tables of the device description, in the order in which they are interned.
enum class Keywords {
    parity,
    dithering_type,
    handshake,
    bidi_status,
    io_type,
    data_bits,
    stop_bits,
    collating_type,
    cutting_time,
    media_group,
    folding_type,
    folding_time,
    feed,
    stapling_time,
    stapling_location,
    linetype,
    raster_ability,
    raster_orientation,
    color_system,
    selection_method,
    duplexing_mode,
    pen_optimization,
    linetype_user_flags,
    init_term_user_flags,
    pen_user_flags,
    res_color_mem_user_flags,
    io_user_flags,
    media_user_flags
};
inline constexpr int keyword_table_count = 28;

struct Keyword {
    std::uint32_t code;
    const char16_t* text;
};

// The code behind the last row of each table: what an unknown text gives.
inline constexpr std::uint32_t unknown_keyword = 0xFFFF;

// Interns all texts in the process-wide table, once in the process; the table is never freed. Goes before
// all calls below.
void init_static_tables();

// The code of the text, compared exactly, blanks and case included; unknown_keyword if the table doesn't
// have it. The text stays in the process-wide table.
std::uint32_t lookup_enum(Keywords table, const char16_t* text);
// The same, with `miss` for an unknown text.
std::int32_t lookup_enum_or(Keywords table, const char16_t* text, std::int32_t miss);
// The rows of a table that have a code.
std::span<const Keyword> keyword_rows(Keywords table);
// Whether the text is "ALL", which stands for every row of a table.
bool is_all_keyword(const char16_t* text);

} // namespace pm
