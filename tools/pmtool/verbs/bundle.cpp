#include "failure.h"
#include "source.h"
#include "system.h"
#include "target.h"
#include "text.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <memory>
#include <optional>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct BundleOptions {
    std::vector<std::string> words; // FILE alone, or NAME=FILE...
    TargetOptions target;
    std::vector<std::string> added;
    std::vector<std::string> replaced;
    std::vector<std::string> removed;
    std::vector<std::string> infos;
};

std::pair<std::string, std::string> split_at_equals(const std::string& text, std::string_view form) {
    const std::size_t at = text.find('=');
    if (at == std::string::npos) throw Mistake(fmt::format("{}: this must have the form {}", text, form));
    return {text.substr(0, at), text.substr(at + 1)};
}

// FILE, or FILE#SECTION where no file has that whole name.
SourceOptions member_of(const std::string& text) {
    const std::size_t at = text.rfind('#');
    if (at == std::string::npos || kind_of(text) != FileKind::missing) return {text};
    SourceOptions options{text.substr(0, at)};
    options.section = text.substr(at + 1);
    if (options.section.empty()) throw Mistake(text + ": the name of a section is missing behind the #");
    return options;
}

bool is_ascii(const std::string& text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void require_name(const std::string& name) {
    if (name.empty() || name.find_first_of("\\*") != std::string::npos) {
        throw Failure(fmt::format("{}: this can't be the name of a section", in_quotes(name)));
    }
}

void require_ascii(const kit::Section& section) {
    if (is_ascii(section.name) && is_ascii(section.info)) return;
    throw Failure(
        fmt::format("section {}: its name and info must be ASCII in a dpia file", in_quotes(section.name)));
}

// The sections that are being put together, and their trees below a node each.
class Bundle {
public:
    Bundle(Source source, Damage damage, std::vector<std::string> losses = {})
        : m_source(std::move(source)), m_damage(damage), m_losses(std::move(losses)) {}

    void add(const std::string& text) {
        const auto [name, file] = split_at_equals(text, "NAME=FILE");
        require_name(name);
        if (find(name) != sections().end()) {
            throw Failure(fmt::format("section {} is named twice", in_quotes(name)));
        }
        sections().push_back({name, {}, name});
        fill(sections().back(), file);
    }

    void replace(const std::string& text) {
        const auto [name, file] = split_at_equals(text, "NAME=FILE");
        const kit::Section& section = require(name);
        for (const std::string& path : contents(section)) {
            m_source.content.tree.erase(path);
        }
        fill(section, file);
    }

    void remove(const std::string& name) {
        const auto section = sections().begin() + (&require(name) - sections().data());
        m_source.content.tree.erase('\\' + section->node);
        sections().erase(section);
    }

    void set_info(const std::string& text) {
        const auto [name, info] = split_at_equals(text, "NAME=TEXT");
        const auto section = find(name);
        if (section == sections().end()) {
            throw Failure(fmt::format("{}: no section of this name is being written", name));
        }
        section->info = info;
    }

    std::vector<kit::Section>& sections() { return m_source.content.sections; }
    const Source& source() const { return m_source; }
    const std::vector<std::string>& losses() const { return m_losses; }

private:
    std::vector<kit::Section>::iterator find(const std::string& name) {
        return std::ranges::find(sections(), name, &kit::Section::name);
    }

    kit::Section& require(const std::string& name) {
        const auto section = find(name);
        if (section != sections().end()) return *section;
        throw Failure(fmt::format("{}: there is no section {}", m_source.file, in_quotes(name)),
                      exit_negative);
    }

    std::vector<std::string> contents(const kit::Section& section) const {
        std::vector<std::string> paths;
        const std::optional<pm::Node> node = m_source.content.tree.node('\\' + section.node);
        if (!node) return paths;
        for (const pm::Node child : node->children()) {
            paths.push_back(child.path());
        }
        for (const pm::Property property : node->properties()) {
            paths.push_back(node->path() + '\\' + property.name());
        }
        return paths;
    }

    void fill(const kit::Section& section, const std::string& file) {
        const Source member = read_one_tree(member_of(file), m_damage, "FILE#SECTION");
        kit::copy(member.content.tree.root(), m_source.content.tree, '\\' + section.node);
        std::ranges::move(losses_of_reading(member), std::back_inserter(m_losses));
    }

    Source m_source;
    Damage m_damage;                   // of members
    std::vector<std::string> m_losses; // what the members couldn't give
};

int write(Bundle& bundle, const BundleOptions& options) {
    std::ranges::for_each(options.infos, [&](const std::string& info) { bundle.set_info(info); });
    std::ranges::for_each(bundle.sections(), require_ascii);
    const Format& format = format_named("dpia");
    require_extension(options.target.file, format);
    Writing writing{bundle.source().content.tree, format, form_of(format, options.target, bundle.source()),
                    bundle.losses()};
    writing.form.sections = bundle.sections();
    return write_by_rule(writing, options.target);
}

// -o OUT NAME=FILE...
int make(const BundleOptions& options) {
    if (options.target.file.empty()) {
        throw Mistake("-o must tell the file to write");
    }
    const TargetLock lock(options.target, {}); // a member may be a section of it
    Source empty{options.target.file};
    empty.content.type = PM_Object::FILE_DPIA;
    Bundle bundle(std::move(empty), damage_by(options.target));
    std::ranges::for_each(options.words, [&](const std::string& word) { bundle.add(word); });
    return write(bundle, options);
}

// FILE --add NAME=FILE --replace NAME=FILE --remove NAME
int change(const BundleOptions& options) {
    if (options.words.size() != 1) {
        throw Mistake("--add, --replace and --remove take one FILE to change");
    }
    BundleOptions rest = options;
    if (rest.target.file.empty()) rest.target.file = options.words.front();
    SourceOptions changed{options.words.front()};
    const TargetLock lock(rest.target, {&changed});
    Source source = read_source(changed, Damage::keep);
    if (source.is_json || source.content.type != PM_Object::FILE_DPIA) {
        throw Failure(fmt::format("{}: only a dpia file has sections to change", options.words.front()));
    }
    std::vector<std::string> losses = losses_of_reading(source);
    Bundle bundle(std::move(source), damage_by(rest.target), std::move(losses));
    std::ranges::for_each(options.removed, [&](const std::string& name) { bundle.remove(name); });
    std::ranges::for_each(options.replaced, [&](const std::string& part) { bundle.replace(part); });
    std::ranges::for_each(options.added, [&](const std::string& part) { bundle.add(part); });
    return write(bundle, rest);
}

int run(const BundleOptions& options) {
    const bool changes = !(options.added.empty() && options.replaced.empty() && options.removed.empty());
    return changes ? change(options) : make(options);
}

constexpr Verb verb = {
    "bundle", "sections", "write or change the sections of a dpia file",
    R"(With -o it writes a dpia file with a section for each NAME, in this order; its content is the tree of FILE, of any format. FILE#SECTION is one section of a dpia file or plotter of a cfg file.

With --add, --replace or --remove it changes the sections of a dpia file in place. Names and info texts must be ASCII: the format can't give back others.)",
    R"(pmtool bundle -o all.dpia Office=office.pia Archive=old.dpia#Archive
pmtool bundle all.dpia --replace Office=new.pia --remove Archive)"};

} // namespace

void add_bundle(Commands& commands) {
    const auto options = std::make_shared<BundleOptions>();
    VerbLine line = commands.add(verb, [options] { return run(*options); });
    line.arguments("NAME=FILE", options->words, "Name and content of each section; or one FILE to change");
    line.text("-o,--output", options->target.file, "FILE", "The file to write");
    line.texts("--add", options->added, "NAME=FILE", "Add a section behind the others");
    line.texts("--replace", options->replaced, "NAME=FILE", "Replace the content of a section");
    line.texts("--remove", options->removed, "NAME", "Remove a section");
    line.texts("--info", options->infos, "NAME=TEXT", "Info text of a section");
    add_saving(line, options->target);
}

} // namespace pmtool
