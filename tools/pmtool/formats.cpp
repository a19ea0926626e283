#include "formats.h"

#include "dpia_directory.h"
#include "failure.h"
#include "files.h"
#include "plotter_numbers.h"
#include "text.h"
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <system_error>
#include <vector>

namespace pmtool {

namespace {

using Evidence = std::optional<std::string>;

constexpr std::string_view compound_magic = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::string_view pia_header = "PIAFILEVERSION_";
constexpr std::string_view pc2_header = "PC2Version";
constexpr std::string_view pcp_marker = ";Created by Draftex";
constexpr std::string_view string_key = "DRFX_";
constexpr std::string_view table_extension = ".pdt";
constexpr std::string_view string_file_name = "strings.pdt";

// The first line that `wanted` takes, trimmed; empty if there is none.
template<class Wanted>
std::string_view find_line(std::string_view text, Wanted wanted) {
    while (!text.empty()) {
        const std::string_view line = trim(take_line(text));
        if (wanted(line)) return line;
    }
    return {};
}

bool is_blank(std::string_view line) {
    return line.empty();
}

bool is_blank_or_comment(std::string_view line) {
    return line.empty() || line.front() == ';';
}

Evidence first_line(std::string_view line) {
    return fmt::format("first line {}", in_quotes(printable(line)));
}

Evidence compound_evidence(const Content& content) {
    if (!content.bytes.starts_with(compound_magic)) return std::nullopt;
    return "compound file signature";
}

Evidence dpia_evidence(const Content& content) {
    const std::optional<DpiaDirectory> directory = read_dpia_directory(content.bytes);
    if (!directory) return std::nullopt;
    const std::uint32_t count = directory->sections;
    return fmt::format("version {}.0, directory of {} section{}", directory->version, count,
                       count == 1 ? "" : "s");
}

Evidence pia_evidence(const Content& content) {
    const std::string_view line = find_line(content.bytes, std::not_fn(is_blank));
    return starts_with_ignoring_case(line, pia_header) ? first_line(line) : std::nullopt;
}

Evidence pcp_evidence(const Content& content) {
    const std::string_view line = find_line(content.bytes, [](std::string_view candidate) {
        return starts_with_ignoring_case(candidate, pcp_marker);
    });
    if (line.empty()) return std::nullopt;
    return fmt::format("comment {}", in_quotes(printable(line)));
}

Evidence pc2_evidence(const Content& content) {
    const std::string_view line = find_line(content.bytes, std::not_fn(is_blank_or_comment));
    return line.starts_with(pc2_header) ? first_line(line) : std::nullopt;
}

bool is_section_line(std::string_view line) {
    return line.starts_with('[') && line.find(']') != std::string_view::npos;
}

Evidence cfg_evidence(const Content& content) {
    if (!is_section_line(find_line(content.bytes, std::not_fn(is_blank_or_comment)))) return std::nullopt;
    const std::vector<int> numbers = plotter_numbers(content.bytes);
    if (numbers.empty()) return "sections without a version line";
    return fmt::format("sections of plotter{} {}", numbers.size() == 1 ? "" : "s", fmt::join(numbers, ", "));
}

bool is_string_file(std::string_view bytes) {
    return !find_line(bytes, [](std::string_view line) {
                return line.starts_with(string_key) && line.find('"') != std::string_view::npos;
            }).empty();
}

Evidence pdt_evidence(const Content& content) {
    if (content.folder.empty()) {
        if (!is_string_file(content.bytes)) return std::nullopt;
        return "string file with DRFX_ keys";
    }
    const std::optional<std::string> string_file = find_string_file(content.folder);
    if (!string_file) return std::nullopt;
    return fmt::format("folder with {}", std::filesystem::path(*string_file).filename().string());
}

constexpr Format table[] = {
    {"doc", "compound file", ".doc", compound_evidence, PM_Object::FILE_DOC, true, false},
    {"dpia", "sections of PIA text in one file", ".dpia", dpia_evidence, PM_Object::FILE_DPIA, true, false},
    {"pia", "property text, plain or compressed", ".pia", pia_evidence, PM_Object::FILE_PIA, true, true},
    {"pcp", "plot parameters", ".pcp", pcp_evidence, PM_Object::FILE_PCP, false, true},
    {"pc2", "configuration of one plotter", ".pc2", pc2_evidence, PM_Object::FILE_PC2, false, true},
    {"cfg", "configuration of several plotters", ".cfg", cfg_evidence, PM_Object::FILE_CFG, false, true},
    {"pdt", "folder of driver tables", ".pdt", pdt_evidence, PM_Object::FILE_PDT, false, false},
};

std::string extension_of(const std::filesystem::path& path) {
    return lower_case(path.extension().string());
}

Content open_content(const std::string& file, std::string& bytes) {
    if (is_folder(file)) return {{}, file};
    bytes = read_file(file);
    return {bytes, {}};
}

} // namespace

std::span<const Format> formats() {
    return table;
}

std::string format_names(bool written_only) {
    std::vector<std::string_view> names;
    for (const Format& format : table) {
        if (format.is_written || !written_only) names.push_back(format.name);
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

const Format& format_named(const std::string& name) {
    const auto* found = std::ranges::find(table, lower_case(name), &Format::name);
    if (found != std::ranges::end(table)) return *found;
    throw Failure(fmt::format("{}: no such format; there are {}", name, format_names(false)));
}

const Format& format_of_output(const std::string& file) {
    const std::string extension = extension_of(file);
    const auto* found = std::ranges::find(table, extension, &Format::extension);
    if (found != std::ranges::end(table) && found->is_written) return *found;
    throw Failure(fmt::format("{}: the name doesn't tell a format to write; say it with --to ({})", file,
                              format_names(true)));
}

Identity identify(const std::string& file) {
    std::string bytes;
    const Content content = open_content(file, bytes);
    for (const Format& format : table) {
        if (Evidence evidence = format.evidence(content)) return {&format, std::move(*evidence)};
    }
    if (!content.folder.empty()) throw system_failure(file, EISDIR);
    throw Failure(fmt::format("{}: the content is of no known format; say which with --from ({})", file,
                              format_names(false)));
}

std::optional<std::string> find_string_file(const std::string& folder) {
    std::vector<std::filesystem::path> tables;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        if (extension_of(it->path()) == table_extension) tables.push_back(it->path());
    }
    std::ranges::sort(tables);
    const auto named = std::ranges::find(tables, string_file_name, [](const std::filesystem::path& path) {
        return lower_case(path.filename().string());
    });
    if (named != tables.end()) return named->string();
    const auto found = std::ranges::find_if(
        tables, [](const std::filesystem::path& path) { return is_string_file(read_file(path.string())); });
    if (found != tables.end()) return found->string();
    return std::nullopt;
}

} // namespace pmtool
