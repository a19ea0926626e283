#include "check/library_load.h"

#include "check/narrow_text.h"
#include <charconv>
#include <fmt/format.h>
#include <map>
#include <pm/error_number.h>
#include <set>
#include <sstream>

namespace pm::kit {

namespace {

// The library's form of a bad line: line feed, its number, ", ", the line, ", ", the file.
void take_line(std::string_view detail, Heard& heard) {
    heard.text = detail;
    if (!detail.starts_with('\n')) return;
    detail.remove_prefix(1);
    const auto [end, error] = std::from_chars(detail.data(), detail.data() + detail.size(), heard.counted);
    if (error != std::errc()) return;
    detail.remove_prefix(static_cast<std::size_t>(end - detail.data()));
    if (detail.starts_with(", ")) heard.text = detail.substr(2);
}

Rule rule_of(std::uint32_t number) {
    switch (number) {
    case PM_ERR_BAD_LINE:
    case PM_ERR_BAD_RAW_DATA:
    case PM_ERR_BAD_PATH:
    case PM_ERR_NOT_HEXADECIMAL:
        return Rule::bad_line;
    case PM_ERR_UNKNOWN_VALUE:
        return Rule::unknown_type;
    case PM_ERR_WRONG_TYPE:
        return Rule::retyped_name;
    case PM_ERR_UNKNOWN_VERSION:
    case PM_ERR_NOT_A_HEADER:
        return Rule::bad_header;
    case PM_ERR_STREAM_FAILED:
        return Rule::cut_file;
    case PM_ERR_NOT_DECODED:
    case PM_ERR_NO_BLOCK:
    case PM_ERR_INFLATE_START:
    case PM_ERR_INFLATE:
        return Rule::damaged_compression;
    default:
        return Rule::damaged_file;
    }
}

Heard make_heard(std::uint32_t number, std::string_view place, std::string_view detail) {
    Heard heard{number, 0, {}};
    take_line(number == PM_ERR_UNKNOWN_VALUE && detail.empty() ? place : detail, heard);
    return heard;
}

// How often the scanner told a number, by line and in all.
struct Told {
    std::set<std::pair<std::uint32_t, std::uint64_t>> lines;
    std::map<std::uint32_t, std::size_t> count;
};

} // namespace

Heard heard_of(const Report& report) {
    return make_heard(report.number, report.place, report.detail);
}

Heard heard_of(const ZT_Exception& exception) {
    const char16_t* const place = exception.m_place != nullptr ? exception.m_place : u"";
    return make_heard(exception.m_number, to_utf8(place), to_utf8(exception.m_detail));
}

bool tells_want_of_memory(const ZT_Exception& exception) noexcept {
    return exception.m_number == PM_ERR_NO_MEMORY || exception.m_number == PM_ERR_NO_MEMORY_FOR_FILE;
}

std::vector<Heard> hear(std::string_view content, PM_Object::FileType type) {
    Tree tree;
    return hear_of(tree, [&](Tree& target) {
        std::stringstream stream{std::string(content)};
        target.load(stream, {.type = type});
    });
}

std::string sentence_of(std::uint32_t number) {
    std::string text = error_text(number);
    if (text.empty()) return fmt::format("The library raises number {}.", number);
    if (!text.ends_with('.')) text += '.';
    return text;
}

void add_unfound(const std::vector<Heard>& heard, const std::vector<std::uint64_t>& lines, const Place& where,
                 std::size_t first, Findings& findings) {
    Told told;
    for (const auto& [number, line] : findings.numbers_from(first)) {
        told.lines.emplace(number, line);
        ++told.count[number];
    }
    std::map<std::uint32_t, std::size_t> unplaced;
    for (const Heard& each : heard) {
        const bool placed = each.counted > 0 && each.counted <= lines.size();
        Place place = where;
        if (placed) place.line = lines[each.counted - 1];
        if (placed ? told.lines.contains({each.number, place.line})
                   : unplaced[each.number]++ < told.count[each.number]) {
            continue;
        }
        std::string message = sentence_of(each.number);
        if (!each.text.empty()) message.insert(message.size() - 1, ": " + in_quotes(each.text));
        findings.add({.rule = rule_of(each.number),
                      .place = place,
                      .message = std::move(message),
                      .number = each.number});
    }
}

} // namespace pm::kit
