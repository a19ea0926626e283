#include "edited_file.h"

#include "failure.h"
#include "progress.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/kit/difference.h>
#include <pm/kit/error.h>
#include <pm/kit/pattern.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

bool is_in_place(const SourceOptions& source, const TargetOptions& target) {
    return target.file.empty() || target.file == source.file || is_same_file(target.file, source.file);
}

// The section is looked for in the file as a whole: all of it is written again.
SourceOptions whole(const SourceOptions& options) {
    SourceOptions all = options;
    all.section.clear();
    return all;
}

const kit::Section& section_named(const Source& source, const std::string& name) {
    const auto& sections = source.content.sections;
    const auto found = std::ranges::find(sections, name, &kit::Section::name);
    if (found != sections.end()) return *found;
    std::vector<std::string> names;
    names.reserve(sections.size());
    for (const kit::Section& section : sections) {
        names.push_back(section.name);
    }
    throw Failure(fmt::format("{}: there is no section {}; there are: {}", source.file, printable(name),
                              fmt::join(names, ", ")));
}

// A path that nothing has is an answer of no; one that can't be made, or is taken, is trouble.
bool is_answer(const pm::Tree& tree, const kit::Edit& edit) {
    if (edit.path.find('\0') != std::string::npos) return false;
    const kit::Pattern pattern(edit.path);
    const bool makes = edit.verb == kit::Edit::Verb::set && pattern.is_literal();
    return !makes && kit::find_all(tree, pattern).empty();
}

Failure edit_failure(const std::string& file, const kit::Error& e, int exit_code) {
    if (e.line() == 0) return Failure(fmt::format("{}: {}", file, e.what()), exit_code);
    return Failure(fmt::format("{}: line {} of the script: {}", file, e.line(), e.what()), exit_code);
}

// Of the first edit that can't be made: the tree is as those in front of it leave it.
Failure failure_of(const Source& source, std::span<const kit::Edit> edits, const kit::Error& told) {
    pm::Tree tree = kit::copy(source.content.tree);
    for (const kit::Edit& edit : edits) {
        try {
            kit::apply_edit(tree, edit);
        } catch (const kit::Error& e) {
            return edit_failure(source.file, e, is_answer(tree, edit) ? exit_negative : exit_trouble);
        }
    }
    return edit_failure(source.file, told, exit_trouble);
}

// The root of a section is a node of the file's tree, which could go; to the user it is the root.
void require_below_root(const std::string& file, const kit::Edit& edit) {
    const bool removes = edit.verb == kit::Edit::Verb::remove;
    if (edit.verb == kit::Edit::Verb::set || kit::full_path(edit.path) != "\\") return;
    const std::string_view reason = removes ? "the root stays" : "the root stays what and where it is";
    throw edit_failure(file, kit::Error(fmt::format("\\: {}", reason), edit.line), exit_trouble);
}

// The name of a node below the root, where that is what a path or target stands for.
std::optional<std::string> section_node(const std::string& text) {
    const kit::Pattern pattern(text);
    std::string name = kit::full_path(pattern.path()).substr(1);
    if (name.ends_with('\\')) name.pop_back();
    const bool is_one = pattern.is_literal() && !name.empty() && name.find('\\') == std::string::npos;
    return is_one ? std::optional(name) : std::nullopt;
}

// A section that is moved takes its info text along. One that is gone stays in the list, so that its text is
// told as lost, unless it was removed alone: where another has come, it may be the same one anew.
std::vector<kit::Section> sections_after(std::vector<kit::Section> sections, std::span<const kit::Edit> edits,
                                         const pm::Tree& changed) {
    bool moved_away = false;
    for (const kit::Edit& edit : edits) {
        if (edit.verb != kit::Edit::Verb::move) continue;
        const std::optional<std::string> target = section_node(edit.target);
        const auto moved = std::ranges::find(sections, section_node(edit.path), &kit::Section::node);
        const bool may_be_one = moved != sections.end() || !kit::Pattern(edit.path).is_literal();
        moved_away = moved_away || (may_be_one && !target);
        if (target && moved != sections.end()) moved->name = moved->node = *target;
    }
    const auto is_new = [&](const pm::Node& node) {
        return std::ranges::find(sections, node.name(), &kit::Section::node) == sections.end();
    };
    if (moved_away || std::ranges::any_of(changed.root().children(), is_new)) return sections;
    std::erase_if(sections, [&](const kit::Section& section) { return !changed.node('\\' + section.node); });
    return sections;
}

pm::Tree changed_tree(const Source& source, std::span<const kit::Edit> edits) try {
    const Progress progress("changing " + source.file);
    return kit::applied(source.content.tree, edits);
} catch (const kit::Error& e) {
    throw failure_of(source, edits, e);
}

} // namespace

EditedFile::EditedFile(const SourceOptions& source, const TargetOptions& target) : m_target(target) {
    const bool in_place = is_in_place(source, target);
    if (m_target.file.empty()) m_target.file = source.file;
    SourceOptions all = whole(source);
    m_lock.emplace(m_target, std::initializer_list<SourceOptions*>{&all});
    m_source = read_source(all, Damage::keep);
    const Format& format = m_source.is_json ? format_named("json") : format_of(m_source.content.type);
    if (!format.is_written) {
        throw Failure(
            fmt::format("{}: {} files can't be changed; convert it first", source.file, format.name));
    }
    if (!in_place) require_extension(m_target.file, format);
    if (source.section.empty()) return;
    if (!m_source.content.by_section) {
        throw Failure(fmt::format("{}: a {} file has no sections", source.file, format.name));
    }
    m_base = '\\' + section_named(m_source, source.section).node;
}

pm::Node EditedFile::root() const {
    return m_source.content.tree.node(m_base).value_or(m_source.content.tree.root());
}

std::string EditedFile::full(const std::string& path) const {
    return kit::escaped(m_base) + kit::full_path(path);
}

std::vector<kit::Match> EditedFile::require(const std::string& path) const {
    std::vector<kit::Match> found = kit::find_all(m_source.content.tree, kit::Pattern(full(path)));
    if (found.empty()) throw no_such_path(m_source.file, path);
    return found;
}

int EditedFile::change(std::span<const kit::Edit> edits) {
    std::vector<kit::Edit> placed(edits.begin(), edits.end());
    for (kit::Edit& edit : placed) {
        if (!m_base.empty()) require_below_root(m_source.file, edit);
        edit.path = full(edit.path);
        if (!edit.target.empty()) edit.target = full(edit.target);
    }
    const pm::Tree changed = changed_tree(m_source, placed);
    try {
        return write(changed, placed);
    } catch (const kit::Error& e) {
        throw edit_failure(m_source.file, e, exit_trouble);
    }
}

int EditedFile::replace(const pm::Tree& tree) {
    return change(kit::edits_of(kit::compare(root(), tree.root())));
}

int EditedFile::write(const pm::Tree& changed, std::span<const kit::Edit> edits) {
    const Format& format = m_source.is_json ? format_named("json") : format_of(m_source.content.type);
    kit::WriteOptions form =
        m_source.is_json ? form_of(format, m_target, m_source) : same_form(m_source, m_target);
    form.sections = sections_after(form.sections, edits, changed);
    Writing writing{changed, format, form, losses_of_reading(m_source), &m_source.content.tree};
    if (!m_source.is_json) writing.rewritten = &m_source.content;
    return write_by_rule(writing, m_target);
}

} // namespace pmtool
