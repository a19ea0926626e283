#pragma once

#include "output.h"
#include "source.h"
#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>

namespace pmtool {

// The commands of the program, each with what it does; that gives the program's exit code.
class Commands {
public:
    explicit Commands(CLI::App& app) : m_app(app) {}

    CLI::App& add(const std::string& name, const std::string& description, std::function<int()> action);
    // Runs the command that the command line named.
    int run() const;

private:
    CLI::App& m_app;
    std::map<const CLI::App*, std::function<int()>> m_actions;
};

void add_source_options(CLI::App& command, SourceOptions& options);
void add_output_options(CLI::App& command, OutputOptions& options);

// One function for each group of commands.
void add_tree_commands(Commands& commands);    // tree, get, set, compare
void add_file_commands(Commands& commands);    // convert, check, identify
void add_section_commands(Commands& commands); // sections, extract, bundle
void add_codec_commands(Commands& commands);   // codec

} // namespace pmtool
