#include "edited_file.h"
#include "failure.h"
#include "value.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct SetOptions {
    SourceOptions source;
    TargetOptions target;
    std::string path;
    std::string value;
    std::string type;
    bool existing = false;
};

// The type that was told, or that of the property that is there, or what the value's form says.
kit::Stored value_for(const SetOptions& options, const std::optional<pm::Property>& there) {
    if (!options.type.empty()) return parse_value(options.value, parse_type(options.type));
    if (there && there->type() != PROP_NONE) return parse_value(options.value, there->type());
    return parse_value(options.value);
}

kit::Edit edit_for(const SetOptions& options, const std::string& path,
                   const std::optional<pm::Property>& there) {
    kit::Stored value = value_for(options, there);
    if (there) value.strict = there->strict();
    return {kit::Edit::Verb::set, path, {}, std::move(value)};
}

int set_value(const SetOptions& options) {
    const kit::Pattern pattern(kit::full_path(options.path));
    if (pattern.only_nodes()) throw Failure("the path names no property");
    EditedFile file(options.source, options.target);
    std::vector<kit::Edit> edits;
    for (const kit::Match& match : kit::find_all(file.root(), pattern)) {
        if (match.property) edits.push_back(edit_for(options, kit::escaped(match.path), match.property));
    }
    if (edits.empty() && (options.existing || !pattern.is_literal())) {
        throw no_such_path(options.source.file, kit::full_path(options.path));
    }
    if (edits.empty()) edits.push_back(edit_for(options, kit::full_path(options.path), {}));
    return file.change(edits);
}

constexpr Verb verb = {
    "set", "change", "set the value of a property",
    R"(Sets a property, making it and its nodes if they aren't there. It takes the type of the property that is there; the type of a new one is told by the value's form: a whole number of 32 bits, another number, true or false, \hexadecimal digits\, anything else a string. A property keeps its place.

A PATH with "*" or "**" sets every property that matches; there must be one.

Nothing is written if the file would not give back what was asked for, or if something in it couldn't be read, unless --lossy says so.)",
    R"(pmtool set plotter.pia '\media\copies' 2
pmtool set all.dpia '\media\copies' 2 --section Office
pmtool set plotter.pia '\pens\*\width' 0.25    every pen
pmtool set plotter.pia note --type string -- -5    a value that begins with "-")"};

} // namespace

void add_set(Commands& commands) {
    const auto options = std::make_shared<SetOptions>();
    VerbLine line = commands.add(verb, [options] { return set_value(*options); });
    add_edited(line, options->source);
    line.argument("PATH", options->path, "The property, such as \\media\\copies").utf8();
    line.argument("VALUE", options->value, "The new value").utf8();
    line.text("--type", options->type, "TYPE", "Type of the value: " + type_names());
    line.flag("--existing", options->existing, "Only if the property is there");
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
