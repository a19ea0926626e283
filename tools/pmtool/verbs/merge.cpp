#include "edited_file.h"
#include "failure.h"
#include "text.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>
#include <memory>
#include <pm/kit/merge.h>
#include <pm/kit/stored.h>
#include <string_view>
#include <unordered_map>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct MergeOptions {
    SourceOptions base;
    SourceOptions first;
    SourceOptions second;
    TargetOptions target;
};

void require_one_input(const MergeOptions& options) {
    const std::array files = {&options.base, &options.first, &options.second};
    const auto inputs =
        std::ranges::count_if(files, [](const SourceOptions* file) { return file->file == "-"; });
    if (inputs > 1) throw Mistake("only one of the files can be standard input");
}

// Where the conflicts are told: the merged file may be on standard output.
void print_conflicts(const MergeOptions& options, const std::vector<std::string>& conflicts) {
    for (const std::string& conflict : conflicts) {
        const std::string line = fmt::format("conflict: {}\n", conflict);
        options.target.file == "-" ? print_error(line) : fmt::print("{}", line);
    }
}

const Format& format_for(const MergeOptions& options, const Source& first) {
    if (!options.target.to.empty()) return format_of_output(options.target.file, options.target.to);
    const Format& format = format_of(first.content.type);
    require_extension(options.target.file, format, ", or say what is meant with --to");
    return format;
}

// What the sources of the merged tree couldn't give; what the base couldn't give looks like a change of
// theirs.
std::vector<std::string> losses_of(const Source& base, const Source& first, const Source& second) {
    std::vector<std::string> losses;
    for (const std::vector<std::string>& more :
         {base.dropped, losses_of_reading(first), losses_of_reading(second)}) {
        std::ranges::copy_if(more, std::back_inserter(losses), [&](const std::string& line) {
            return std::ranges::find(losses, line) == losses.end();
        });
    }
    return losses;
}

// One of the files, with its info texts by the nodes of their sections.
class Side {
public:
    explicit Side(const Source& source) : m_content(source.content) {
        for (const kit::Section& section : sections()) {
            m_infos.emplace(section.node, section.info);
        }
    }
    [[nodiscard]] const std::vector<kit::Section>& sections() const { return m_content.sections; }
    [[nodiscard]] std::optional<pm::Node> node(const std::string& name) const {
        return m_content.tree.node('\\' + name);
    }
    [[nodiscard]] std::optional<std::string> info(const std::string& node) const {
        const auto found = m_infos.find(node);
        return found != m_infos.end() ? std::optional<std::string>(found->second) : std::nullopt;
    }

private:
    const kit::FileContent& m_content;
    std::unordered_map<std::string_view, std::string_view> m_infos;
};

std::string side_text(const std::optional<std::string>& info) {
    return info ? in_quotes(*info) : "-";
}

std::string info_conflict(const kit::Section& section, const std::optional<std::string>& before,
                          const std::optional<std::string>& a, const std::optional<std::string>& b) {
    return fmt::format("{}: info text {} -> {} | {}",
                       kit::printable_text(fmt::format("\\{}\\", section.node)), side_text(before),
                       side_text(a), side_text(b));
}

struct Sides {
    Side base;
    Side first;
    Side second;
};

// The sections of the merged tree; what both sides made of an info text, and not alike, becomes a conflict.
std::vector<kit::Section> merged_sections(const pm::Tree& tree, const Sides& sides,
                                          std::vector<std::string>& conflicts) {
    std::vector<kit::Section> sections = sides.first.sections();
    std::ranges::copy_if(sides.second.sections(), std::back_inserter(sections),
                         [&](const kit::Section& each) { return !sides.first.info(each.node); });
    std::erase_if(sections, [&](const kit::Section& section) { return !tree.node('\\' + section.node); });
    for (kit::Section& section : sections) {
        const std::optional<std::string> before = sides.base.info(section.node);
        const std::string there = before.value_or("");
        const std::string a = sides.first.info(section.node).value_or(there);
        const std::string b = sides.second.info(section.node).value_or(there);
        section.info = a == there ? b : a;
        if (a == b || a == there || b == there) continue;
        conflicts.push_back(info_conflict(section, before, a, b));
    }
    return sections;
}

// What a side has for the info text of a section of the base; nothing if the section went.
std::optional<std::string> info_left(const Side& side, const kit::Section& section) {
    if (!side.node(section.node)) return std::nullopt;
    return side.info(section.node).value_or(section.info);
}

// A section that one side removed and whose info text the other changed is a conflict, too, and stays as A
// has it.
void merge_removed_sections(pm::Tree& tree, std::vector<kit::Section>& sections, const Sides& sides,
                            std::vector<std::string>& conflicts) {
    for (const kit::Section& section : sides.base.sections()) {
        const std::optional<std::string> a = info_left(sides.first, section);
        const std::optional<std::string> b = info_left(sides.second, section);
        if (a.has_value() == b.has_value() || (a ? *a : *b) == section.info) continue;
        conflicts.push_back(info_conflict(section, section.info, a, b));
        const std::string path = '\\' + section.node;
        if (!a || tree.node(path)) continue;
        kit::copy(*sides.first.node(section.node), tree, path);
        sections.push_back({section.name, *a, section.node});
    }
}

int merge(MergeOptions options) {
    require_one_input(options);
    const TargetLock lock(options.target, {&options.base, &options.first, &options.second});
    const Source base = read_source(options.base, damage_by(options.target));
    const Source first = read_source(options.first, damage_by(options.target));
    const Source second = read_source(options.second, damage_by(options.target));
    kit::Merged merged = kit::merge(base.content.tree, first.content.tree, second.content.tree);
    const Format& format = format_for(options, first);
    const bool is_same = format.is(first.content.type);
    Writing writing{merged.tree, format,
                    is_same ? same_form(first, options.target) : form_of(format, options.target, first),
                    losses_of(base, first, second)};
    std::vector<std::string> conflicts;
    std::ranges::transform(merged.conflicts, std::back_inserter(conflicts), kit::conflict_text);
    if (format.is(PM_Object::FILE_DPIA)) {
        const Sides sides{Side(base), Side(first), Side(second)};
        writing.form.sections = merged_sections(merged.tree, sides, conflicts);
        merge_removed_sections(merged.tree, writing.form.sections, sides, conflicts);
    } else {
        writing.notes = dropped_info_texts(first);
    }
    const int status = write_by_rule(writing, options.target);
    print_conflicts(options, conflicts);
    if (status != exit_ok) return status;
    return conflicts.empty() ? exit_ok : exit_negative;
}

constexpr Verb verb = {
    "merge", "compare", "merge the changes of two files",
    R"(Writes what A and B have made of BASE, in the form of A. What both changed, and not alike, is a conflict: each is listed with its path and its three values, the value of A is written, and the exit code is 1. Of files with several trees all sections are merged.)",
    R"(pmtool merge base.pia mine.pia yours.pia -o merged.pia
pmtool merge %O %A %B -o %A    as a merge driver of git)"};

} // namespace

void add_merge(Commands& commands) {
    const auto options = std::make_shared<MergeOptions>();
    VerbLine line = commands.add(verb, [options] { return merge(*options); });
    line.argument("BASE", options->base.file, "What both came from");
    line.argument("A", options->first.file, "A file");
    line.argument("B", options->second.file, "Another file");
    line.required_text("-o,--output", options->target.file, "FILE", "The file to write");
    add_form(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
