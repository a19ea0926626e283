#include "check/rules.h"
#include "header.h"
#include "text_reader.h"
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/kit/loss.h>

namespace pm::kit {

namespace {

constexpr std::array<std::string_view, 10> loss_names{"lost",    "cut",   "retyped",  "re-encoded", "changed",
                                                      "renamed", "moved", "appeared", "order",      "source"};

constexpr std::string_view compression_word = "compress";

// What tells of content that isn't in the tree, or not as it was.
constexpr Rule losing_rules[] = {
    Rule::bad_element,     Rule::bad_header,          Rule::bad_line,         Rule::cut_file,
    Rule::cut_text,        Rule::damaged_compression, Rule::damaged_file,     Rule::ignored_text,
    Rule::long_row,        Rule::lossy_value,         Rule::missing_equals,   Rule::mixed_encoding,
    Rule::odd_boolean,     Rule::partial_number,      Rule::repeated_name,    Rule::retyped_name,
    Rule::short_row,       Rule::trailing_data,       Rule::undecodable_byte, Rule::unknown_key,
    Rule::unknown_keyword, Rule::unknown_reference,   Rule::unknown_section,  Rule::unknown_type,
    Rule::unknown_value,   Rule::unread_line};

bool is_losing(std::string_view name) {
    return std::ranges::any_of(losing_rules, [&](Rule rule) { return rule_info(rule).name == name; });
}

std::string side_text(const std::optional<Stored>& stored) {
    return stored ? value_text(*stored) : "nothing";
}

std::string place_text(const Place& place) {
    std::string text;
    if (!place.section.empty()) text += fmt::format("section {}, ", printable_text(place.section));
    if (place.line != 0) text += fmt::format("line {}, ", place.line);
    return text;
}

Loss loss_of(const Diagnostic& diagnostic) {
    Loss loss;
    loss.kind = LossKind::source;
    loss.path = diagnostic.path;
    loss.reason = place_text(diagnostic.place) + diagnostic.message;
    return loss;
}

Loss loss_of(const FileReport& report) {
    Loss loss;
    loss.kind = LossKind::source;
    if (!report.section.empty()) loss.reason = fmt::format("section {}, ", printable_text(report.section));
    const std::string text = error_text(report.number);
    loss.reason +=
        text.empty() ? fmt::format("error {}", report.number) : fmt::format("{} ({})", text, report.number);
    std::string_view detail =
        report.detail.empty() && report.number == PM_ERR_UNKNOWN_VALUE ? report.place : report.detail;
    if (detail.starts_with('\n')) detail.remove_prefix(1);
    if (!detail.empty()) loss.reason += ": " + printable_text(detail);
    return loss;
}

std::string without_end(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of('\0') + 1));
}

// What stands behind the header of plain property text.
std::string body_of(const std::string& bytes) {
    return without_end(std::string_view(bytes).substr(read_header(bytes).end));
}

std::string without_comments(std::string_view body) {
    std::string kept;
    while (!body.empty()) {
        const std::size_t end = std::min(body.find('\n'), body.size() - 1) + 1;
        const std::string_view line = body.substr(0, end);
        const std::size_t begin = line.find_first_not_of(" \t\r");
        if (begin == std::string_view::npos || line[begin] != ';') kept += line;
        body.remove_prefix(line.size());
    }
    return kept;
}

bool is_compressed(std::string_view tag) {
    return tag.find(compression_word) != std::string_view::npos;
}

// A tag without the items that ask for compression, and their commas: with all that hold its word, or with
// those alone that are nothing else.
enum class Items { all, plain };

std::string without_compression(std::string_view tag, Items items) {
    std::string kept;
    while (!tag.empty()) {
        const std::size_t comma = std::min(tag.find(','), tag.size());
        const std::string_view item = tag.substr(0, comma);
        const bool goes = items == Items::all ? is_compressed(item) : item == compression_word;
        if (!goes) kept += (kept.empty() ? "" : ",") + std::string(item);
        tag.remove_prefix(std::min(comma + 1, tag.size()));
    }
    return kept;
}

void add_pia_changes(const FileContent& source, const WriteOptions& options,
                     std::vector<std::string>& lines) {
    const bool compressed = is_compressed(options.tag);
    if (source.compressed != compressed) {
        lines.emplace_back(compressed ? "the body is compressed now" : "the body is no longer compressed");
    }
    const std::string before = without_compression(source.tag, Items::plain);
    const std::string after = without_compression(options.tag, Items::plain);
    if (before != after) {
        lines.push_back(
            fmt::format("the header's tag {} becomes {}", quoted_text(before), quoted_text(after)));
    }
    const std::string text = read_header(source.bytes).text;
    if (text.find_first_not_of(' ') != std::string::npos) {
        lines.push_back(fmt::format("the header's text {} isn't kept", quoted_text(text)));
    }
    if (source.compressed || source.bytes.empty()) return;
    WriteOptions plain = options;
    plain.tag = without_compression(options.tag, Items::all);
    plain.subtree = "\\";
    const std::string body = body_of(source.bytes);
    const std::string uncommented = without_comments(body);
    if (uncommented != body) lines.emplace_back("comments aren't kept");
    if (body_of(prepare(source.tree, plain).bytes) != uncommented) {
        lines.emplace_back("numbers, blanks or line ends are written in another form");
    }
}

} // namespace

std::string_view loss_name(LossKind kind) noexcept {
    return loss_names[static_cast<std::size_t>(kind)];
}

std::string loss_text(const Loss& loss) {
    std::string text = loss.path.empty() ? std::string() : printable_text(loss.path) + ": ";
    text += fmt::format("{}: {}", loss_name(loss.kind), loss.reason);
    if (!loss.new_path.empty()) text += ": " + printable_text(loss.new_path);
    const bool same = loss.kind == LossKind::renamed || loss.kind == LossKind::moved;
    if (!same && (loss.before || loss.after)) {
        text += fmt::format(": {} -> {}", side_text(loss.before), side_text(loss.after));
    }
    return text;
}

std::vector<Loss> source_losses(const FileContent& source, std::span<const Diagnostic> diagnostics) {
    std::vector<Loss> losses;
    for (const FileReport& report : source.reports) {
        losses.push_back(loss_of(report));
    }
    for (const std::string& name : source.unread) {
        losses.push_back({LossKind::source,
                          {},
                          {},
                          fmt::format("another section named {} stands in front of it", quoted_text(name)),
                          {},
                          {}});
    }
    for (const Diagnostic& diagnostic : diagnostics) {
        const bool told = diagnostic.number != 0 && !source.reports.empty();
        if (!told && is_losing(diagnostic.rule) && diagnostic.severity != Severity::note) {
            losses.push_back(loss_of(diagnostic));
        }
    }
    return losses;
}

std::vector<std::string> form_changes(const FileContent& source, const WriteOptions& options) {
    std::vector<std::string> lines;
    if (source.type != options.type) {
        const bool tag_goes =
            !without_compression(source.tag, Items::plain).empty() && options.type != PM_Object::FILE_PIA;
        if (tag_goes) lines.push_back(fmt::format("the header's tag {} isn't kept", quoted_text(source.tag)));
        return lines;
    }
    if (source.version == 1) lines.emplace_back("version 1.0 becomes 2.0");
    if (source.type == PM_Object::FILE_PIA) add_pia_changes(source, options, lines);
    return lines;
}

WriteOptions options_of(const FileContent& source) {
    WriteOptions options;
    if (is_written(source.type)) options.type = source.type;
    if (source.type == PM_Object::FILE_PIA) options.tag = source.tag;
    if (source.by_section) options.sections = source.sections;
    return options;
}

} // namespace pm::kit
