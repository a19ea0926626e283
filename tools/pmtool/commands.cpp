#include "commands.h"

#include <fmt/format.h>

namespace pmtool {

CLI::App& Commands::add(const std::string& name, const std::string& description,
                        std::function<int()> action) {
    CLI::App* command = m_app.add_subcommand(name, description);
    command->fallthrough();
    command->footer("\n--code-page, formats and exit codes are told by: pmtool --help\n");
    m_actions[command] = std::move(action);
    return *command;
}

int Commands::run() const {
    return m_actions.at(m_app.get_subcommands().front())();
}

void add_source_options(CLI::App& command, SourceOptions& options) {
    command.add_option("FILE", options.file, "The file to read")->required();
    command.add_option("--from", options.from,
                       "Format of the file, if its content doesn't tell it: " + format_names(false));
    command.add_option("--section", options.section,
                       "Name of a section of a dpia file, number of a plotter of a cfg file");
}

void add_output_options(CLI::App& command, OutputOptions& options) {
    command.add_option("--to", options.to,
                       "Format of the output, if its extension doesn't tell it: " + format_names(true));
    command.add_flag("--compress", options.compress, "Compress the body (pia)");
    command.add_flag("--utf8", options.utf8, "Write text outside ASCII as UTF-8 (pia)");
    command.add_option("--tag", options.tag, "Free text for the header (pia)");
}

} // namespace pmtool
