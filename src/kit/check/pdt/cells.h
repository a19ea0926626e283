#pragma once

#include "check/pdt/table.h"
#include <functional>
#include <map>
#include <string>
#include <unordered_set>

namespace pm::kit {

// The names of the rows of each table that is at hand, as names are read, and as the cells stand.
struct TableNames {
    std::unordered_set<std::string> read;
};
using DescriptionNames = std::map<std::string_view, TableNames>;
[[nodiscard]] TableNames names_of(const TableFile& table);

// The cells of a table by its columns, and those of the form by its lines.
void check_cells(const TableFile& table, const DescriptionNames& names, Findings& findings);

} // namespace pm::kit
