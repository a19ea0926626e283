#pragma once

#include <cstdint>
#include <pm/kit/check.h>

namespace pm::kit {

// The rules of check_rules(), in its order.
enum class Rule : std::uint8_t {
    bad_element,
    bad_header,
    bad_line,
    carriage_return,
    cut_file,
    cut_text,
    damaged_compression,
    damaged_file,
    directory_gap,
    directory_overlap,
    directory_range,
    empty_table,
    ignored_text,
    leftover_stream,
    long_row,
    lossy_value,
    missing_equals,
    missing_table,
    missing_translation,
    mixed_encoding,
    odd_boolean,
    odd_name,
    partial_number,
    random_bytes,
    repeated_name,
    retyped_name,
    round_trip,
    short_row,
    stale_bits,
    trailing_data,
    unclosed_block,
    unclosed_node,
    undecodable_byte,
    unknown_key,
    unknown_keyword,
    unknown_kind,
    unknown_reference,
    unknown_section,
    unknown_type,
    unknown_value,
    unopened_block,
    unopened_node,
    unread_line,
    unreadable,
    unused_translation
};

[[nodiscard]] const CheckRule& rule_info(Rule rule) noexcept;

} // namespace pm::kit
