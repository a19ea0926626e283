#pragma once

#include "failure.h"
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <pm/error_number.h>
#include <pm/kit/file.h>
#include <pm/object.h>
#include <pm/pm_c.h>
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A tree, and what is known of the file that it was read from whole.
struct pm9_tree {
    pm::Tree tree;
    std::optional<std::vector<pm::Report>> read_reports; // nothing: those of the tree's own load count
    std::vector<pm::kit::Section> sections;

    // Puts other content in place of the old.
    void take(pm::Tree&& content, std::vector<pm::Report>&& reports = {},
              std::vector<pm::kit::Section>&& sections_of_file = {}) {
        tree = std::move(content);
        read_reports = std::move(reports);
        sections = std::move(sections_of_file);
    }
    pm::Tree& to_load() {
        read_reports.reset();
        return tree;
    }
    const std::vector<pm::Report>& reports() const { return read_reports ? *read_reports : tree.reports(); }
};

// What callers in C give. Everything here refuses with PM_ERR_INVALID_ARGUMENT and the argument's name.
namespace pm::c {

// A text by its length or its zero; null is empty.
std::string_view text(const char* data, std::size_t length) noexcept;
// The same for PM_Object: number 51 for a text that holds a zero.
std::u16string wide_text(const char* data, std::size_t length);
// A file's name as <pm/inspect.h> takes it.
std::u16string file_name(const char* data, std::size_t length);

// A handle or a place for a result.
template<class T>
T& required(T* pointer, const char16_t* name) {
    if (pointer == nullptr) refuse(name, PM_ERR_INVALID_ARGUMENT);
    return *pointer;
}

// A struct as this library knows it. One of a newer header is cut, one smaller than the first version
// refused.
template<class Struct>
Struct options(const Struct* given, const Struct& in_place_of_null, const char16_t* name) {
    if (given == nullptr) return in_place_of_null;
    if (given->size < sizeof(Struct)) refuse(name, PM_ERR_INVALID_ARGUMENT);
    return *given;
}

// A struct for a result.
template<class Struct>
Struct& result(Struct* given, const char16_t* name) {
    if (required(given, name).size < sizeof(Struct)) refuse(name, PM_ERR_INVALID_ARGUMENT);
    return *given;
}

// The type of a file; nothing for PM9_FILE_ANY.
std::optional<PM_Object::FileType> file_type(std::int32_t type);

} // namespace pm::c
