#pragma once

#include "commands.h"

// The verbs, a unit each. Every function adds its verb to the command line.
namespace pmtool {

void add_identify(Commands& commands);
void add_tree(Commands& commands);
void add_ls(Commands& commands);
void add_get(Commands& commands);

void add_set(Commands& commands);
void add_rm(Commands& commands);
void add_mv(Commands& commands);
void add_cp(Commands& commands);
void add_apply(Commands& commands);
void add_edit(Commands& commands);

void add_diff(Commands& commands);
void add_merge(Commands& commands);
void add_check(Commands& commands);

void add_convert(Commands& commands);
void add_dump(Commands& commands);
void add_codec(Commands& commands);
void add_report(Commands& commands);

void add_sections(Commands& commands);
void add_extract(Commands& commands);
void add_bundle(Commands& commands);

void add_help(Commands& commands);
void add_completion(Commands& commands);

} // namespace pmtool
