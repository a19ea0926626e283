#include "formats.h"

#include "failure.h"
#include "file_name.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/kit/stored.h>
#include <vector>

namespace pmtool {

namespace {

constexpr Format table[] = {
    {"doc", "compound file", ".doc", PM_Object::FILE_DOC, true, false},
    {"dpia", "sections of PIA text in one file", ".dpia", PM_Object::FILE_DPIA, true, false},
    {"pia", "property text, plain or compressed", ".pia", PM_Object::FILE_PIA, true, true},
    {"pcp", "plot parameters", ".pcp", PM_Object::FILE_PCP, false, true},
    {"pc2", "configuration of one plotter", ".pc2", PM_Object::FILE_PC2, false, true},
    {"cfg", "configuration of several plotters", ".cfg", PM_Object::FILE_CFG, false, true},
    {"pdt", "folder of driver tables", ".pdt", PM_Object::FILE_PDT, false, false},
    {"json", "canonical JSON of a tree", ".json", std::nullopt, true, false},
};

constexpr std::string_view page = "html";

// "html" is spelt out when it is said.
const char* article(std::string_view kind) {
    return kind == page ? "an" : "a";
}

const char* plural(std::size_t count) {
    return count == 1 ? "" : "s";
}

std::string plotters_text(const std::vector<std::int32_t>& plotters) {
    if (plotters.empty()) return "sections without a version line";
    return fmt::format("sections of plotter{} {}", plural(plotters.size()), fmt::join(plotters, ", "));
}

std::string evidence_text(const pm::FileIdentity& identity) {
    switch (identity.evidence) {
    case pm::Evidence::signature:
        return "compound file signature";
    case pm::Evidence::directory:
        return fmt::format("version {}.0, directory of {} section{}", identity.version,
                           identity.section_count, plural(identity.section_count));
    case pm::Evidence::first_line:
        return fmt::format("first line {}", in_quotes(printable(identity.line)));
    case pm::Evidence::comment:
        return fmt::format("comment {}", in_quotes(printable(identity.line)));
    case pm::Evidence::sections:
        return plotters_text(identity.plotters);
    case pm::Evidence::string_keys:
        return "string file with DRFX_ keys";
    case pm::Evidence::string_file:
        return fmt::format("folder with {}",
                           pm::kit::printable_text(base_name(pm::file_name_to_utf8(identity.string_file))));
    }
    return {};
}

// The file that a failure is about: the one that was asked for, or one in the folder that this is.
Failure inspection_failure(const ZT_Exception& e, const std::string& file) {
    const bool is_other = !pm::file_name_to_utf16(file).starts_with(e.m_detail);
    return Failure(
        fmt::format("{}: {}", is_other ? pm::file_name_to_utf8(e.m_detail) : file, number_text(e.m_number)));
}

template<class Inspect>
auto inspecting(const std::string& file, Inspect inspect) {
    try {
        return inspect(pm::file_name_to_utf16(file));
    } catch (const ZT_Exception& e) {
        throw inspection_failure(e, file);
    }
}

Identity identity_of(const std::string& file, const std::optional<pm::FileIdentity>& identity,
                     bool takes_from) {
    if (identity) return {&format_of(identity->type), evidence_text(*identity)};
    const std::string advice =
        takes_from ? fmt::format("; say which with --from ({})", format_names(false)) : std::string();
    throw Failure(fmt::format("{}: the content is of no known format{}", file, advice));
}

// What a file of this name is taken for; empty if nothing is known of it.
std::string_view kind_told_by(const std::string& file) {
    const std::string extension = extension_of(file);
    if (extension == ".html" || extension == ".htm") return page;
    const auto* found = std::ranges::find(table, extension, &Format::extension);
    return found == std::ranges::end(table) ? std::string_view() : found->name;
}

void require_kind(const std::string& file, std::string_view kind, std::string_view advice) {
    const std::string_view told = kind_told_by(file);
    if (told.empty() || told == kind) return;
    throw Failure(fmt::format("{}: the name is that of {} {} file, but {} {} file would be written; give it "
                              "another name{}",
                              file, article(told), told, article(kind), kind, advice));
}

} // namespace

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
    throw Mistake(fmt::format("{}: no such format; there are {}", name, format_names(false)));
}

const Format& format_of(PM_Object::FileType type) {
    return *std::ranges::find(table, std::optional(type), &Format::type);
}

const Format& format_of_output(const std::string& file, const std::string& to) {
    const auto* found =
        to.empty() ? std::ranges::find(table, extension_of(file), &Format::extension) : &format_named(to);
    if (found == std::ranges::end(table) || (to.empty() && !found->is_written)) {
        throw Failure(fmt::format("{}: the name doesn't tell a format to write; say it with --to ({})", file,
                                  format_names(true)));
    }
    if (found->is_written) return *found;
    throw Failure(fmt::format("{}: {} files are read only; there are {} to write", file, found->name,
                              format_names(true)));
}

void require_extension(const std::string& file, const Format& format, std::string_view advice) {
    require_kind(file, format.name, advice);
}

void require_page_extension(const std::string& file) {
    require_kind(file, page, {});
}

Identity identify(const std::string& file, bool takes_from) {
    const std::optional<pm::FileIdentity> identity =
        inspecting(file, [](const std::u16string& name) { return pm::identify(name); });
    return identity_of(file, identity, takes_from);
}

Identity identify_content(const std::string& file, std::string_view content, bool takes_from) {
    return identity_of(file, pm::identify_content(content), takes_from);
}

} // namespace pmtool
