#pragma once

#include "keywords.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pm::kit {

// What a cell of a table holds.
enum class Cell : std::uint8_t {
    integer,
    number,
    yes,     // "Y" or "y", and "N"
    big_yes, // "Y" alone, and "N"
    landscape,
    keyword,       // exactly
    named_keyword, // read as a name
    reference,     // the name of a record or entry of another table
    raw_reference, // the same, by the text of the cell as it stands
    data_type,     // told by its fourth character
    typed,         // in the type of the row's column G
    matrix         // the name of a matrix: 7 characters count
};

struct Column {
    char letter;
    Cell cell;
    const keywords::Words* words = nullptr; // of keyword
    std::string_view table = {};            // of reference
    bool each_row = false;                  // read in rows without a name, too
};

// A table of a description, as docs/pdt-tables.md has it.
struct Table {
    std::string_view name;   // of the file, without ".pdt"
    std::string_view prefix; // of the keys in the string file; empty for a table without texts
    const Column* columns = nullptr;
    std::size_t column_count = 0;
    char text = 'B';                // the column of the text
    bool unbounded = false;         // rows go on behind the headings
    bool form = false;              // told line by line
    const Column* behind = nullptr; // what stands in every column from its letter on
};

[[nodiscard]] std::span<const Table> description_tables() noexcept;
[[nodiscard]] const Table* find_table(std::string_view name) noexcept;

// A line of "Misc Non-Localizable Info".
struct FormLine {
    std::size_t line;
    Cell cell;
    const keywords::Words* words = nullptr;
    std::string_view table = {};
    bool list = false;   // from column B to the first empty field
    bool owners = false; // "ALL" stands for all of them
};

[[nodiscard]] std::span<const FormLine> form_lines() noexcept;

} // namespace pm::kit
