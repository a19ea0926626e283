#include "failure.h"
#include "file_name.h"
#include "report_handler.h"
#include "source.h"
#include "system.h"
#include "target.h"
#include "text.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <memory>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct ConvertOptions {
    SourceOptions source;
    TargetOptions target;
    std::string subtree = "\\";
    std::string base = "\\";
    unsigned in_code_page = 0;
};

// What is written of the input, at the node that --base names.
pm::Tree placed(const ConvertOptions& options, const Source& source) {
    const std::string subtree = kit::full_path(options.subtree);
    const std::optional<pm::Node> top = source.content.tree.node(subtree);
    if (!top) throw no_such_path(options.source.file, subtree);
    pm::Tree tree;
    try {
        kit::copy(*top, tree, kit::full_path(options.base));
    } catch (const PM_Memory_Exception&) {
        throw;
    } catch (const ZT_Exception& e) {
        const std::string file = options.source.file == "-" ? "standard input" : options.source.file;
        throw Failure(describe(make_report(e, file), file));
    }
    return tree;
}

bool is_whole(const ConvertOptions& options) {
    return kit::full_path(options.subtree) == "\\" && kit::full_path(options.base) == "\\";
}

// The name of a node that can stand for a section of that name.
std::string node_name(std::string name) {
    std::ranges::replace(name, '\\', '/');
    return name.empty() ? "section" : name;
}

// The name of the one section that a file without sections becomes.
kit::Section section_for(const std::string& file) {
    const std::string name = file == "-" ? "stdin" : stem_of(file);
    return {name, {}, node_name(name)};
}

// The one section of a DPIA input keeps its name and info text.
kit::Section section_of(const ConvertOptions& options, const Source& source) {
    const auto& sections = source.content.sections;
    const bool is_dpia = !source.is_json && source.content.type == PM_Object::FILE_DPIA;
    const auto found = std::ranges::find(sections, options.source.section, &kit::Section::name);
    if (!is_dpia || found == sections.end()) return section_for(options.source.file);
    return {found->name, found->info, node_name(found->name)};
}

// A DPIA file has a section for each of the input's, or one for all of it.
int convert_to_dpia(const ConvertOptions& options, const Source& source, const Format& format,
                    const std::vector<std::string>& losses) {
    const kit::WriteOptions form = form_of(format, options.target, source);
    if ((source.is_json || source.content.by_section) && is_whole(options)) {
        Writing writing{source.content.tree, format, form, losses};
        writing.form.sections = source.content.sections;
        return write_by_rule(writing, options.target);
    }
    const kit::Section section = section_of(options, source);
    const pm::Tree content = placed(options, source);
    pm::Tree tree;
    kit::copy(content.root(), tree, '\\' + section.node);
    Writing writing{tree, format, form, losses};
    writing.form.sections = {section};
    if (source.content.by_section) writing.notes = dropped_info_texts(source);
    return write_by_rule(writing, options.target);
}

int convert(ConvertOptions options) {
    if (options.in_code_page != 0) set_code_page(options.in_code_page);
    const Format& format = format_of_output(options.target.file, options.target.to);
    const bool takes_all = format.is(PM_Object::FILE_DPIA) || format.is_json() || !is_whole(options);
    const TargetLock lock(options.target, {&options.source});
    const Source source = takes_all ? read_source(options.source, damage_by(options.target))
                                    : read_one_tree(options.source, damage_by(options.target));
    const std::vector<std::string> losses = losses_unless_told(options.source, source);
    if (format.is(PM_Object::FILE_DPIA)) return convert_to_dpia(options, source, format, losses);
    const pm::Tree tree = placed(options, source);
    Writing writing{tree, format, form_of(format, options.target, source), losses};
    writing.notes = dropped_tag_items(source, writing.form);
    std::ranges::move(dropped_info_texts(source), std::back_inserter(writing.notes));
    return write_by_rule(writing, options.target);
}

constexpr Verb verb = {
    "convert", "convert", "read a file and write its tree to another",
    R"(Writes the tree of IN to OUT, in the format that OUT's extension or --to tells. A dpia output gets every section of a dpia input and every plotter of a cfg input, or else one section named like IN; other outputs take one tree, so that a section must be chosen. "json" is what "dump" writes.

Nothing is written if OUT would not give back the tree of IN, unless --lossy says so; each loss is listed. With --keep-going a damaged file gives what can be read of it, and what was dropped is listed.)",
    R"(pmtool convert plotter.pia small.pia --compress
pmtool convert three-plotters.cfg all.dpia
pmtool convert --from json plotter.json plotter.pia
pmtool convert - out.pia --from pia --in-code-page 850)"};

} // namespace

void add_convert(Commands& commands) {
    const auto options = std::make_shared<ConvertOptions>();
    VerbLine line = commands.add(verb, [options] { return convert(*options); });
    add_source(line, options->source);
    line.argument("OUT", options->target.file, "The file to write; \"-\" is standard output");
    add_form(line, options->target);
    line.number("--in-code-page", options->in_code_page, "Code page of narrow text in IN");
    line.text("--subtree", options->subtree, "PATH", "The node of IN to write").utf8();
    line.text("--base", options->base, "PATH", "The node to put it in").utf8();
    add_writing(line, options->target);
}

} // namespace pmtool
