#include "options.h"

#include "formats.h"

namespace pmtool {

namespace {

constexpr const char* usual_backup_suffix = "~";

} // namespace

void add_file_argument(VerbLine& line, SourceOptions& options) {
    line.argument("FILE", options.file, "The file; \"-\" is standard input");
}

void add_from(VerbLine& line, SourceOptions& options) {
    options.takes_from = true;
    line.text("--from", options.from, "FORMAT",
              "Format of the input, if its content doesn't tell it: " + format_names(false));
}

void add_keep_going(VerbLine& line, SourceOptions& options) {
    line.flag("--keep-going", options.keep_going,
              "Take what can be read of a damaged file, and list what was dropped");
}

void add_edited(VerbLine& line, SourceOptions& options) {
    add_file_argument(line, options);
    add_from(line, options);
    line.text("--section", options.section, "NAME",
              "One section of a dpia file, by name, or plotter of a cfg file, by number")
        .not_empty();
}

void add_source(VerbLine& line, SourceOptions& options) {
    add_edited(line, options);
    add_keep_going(line, options);
}

void add_saving(VerbLine& line, TargetOptions& options) {
    line.flag("--lossy", options.lossy, "Write even if something is lost; the losses are listed");
    line.flag("--dry-run", options.dry_run, "Write nothing; show what would change");
    line.text_or("--backup", options.backup, usual_backup_suffix, "SUFFIX",
                 "Keep the old file under its name and SUFFIX, \"~\" if none is told");
}

void add_writing(VerbLine& line, TargetOptions& options) {
    line.flag("--utf8", options.utf8, "Write text outside ASCII as UTF-8 (pia)");
    add_saving(line, options);
}

void add_form(VerbLine& line, TargetOptions& options) {
    line.text("--to", options.to, "FORMAT",
              "Format of the output, if its extension doesn't tell it: " + format_names(true));
    line.flag("--compress", options.compress, "Compress the body (pia)");
    line.text("--tag", options.tag, "TEXT", "Free text for the header (pia)").utf8();
    line.number("--out-code-page", options.code_page,
                "Code page of narrow text in the output; without it that of the input");
}

void add_other_output(VerbLine& line, TargetOptions& options) {
    line.text("-o,--output", options.file, "FILE", "Write to this file and leave FILE as it is");
}

void add_color(VerbLine& line, std::string& when) {
    line.text("--color", when, "WHEN", "Colours: always, never or auto");
}

} // namespace pmtool
