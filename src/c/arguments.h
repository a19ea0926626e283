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
    std::optional<pm9_source> source; // without its tag
    std::string tag;

    // Puts other content in place of the old.
    void take(pm::Tree&& content) {
        tree = std::move(content);
        read_reports.emplace();
        sections.clear();
        source.reset();
        tag.clear();
    }
    // The same of a file that was read whole.
    void take(pm::kit::FileContent&& content) {
        std::vector<pm::Report> reports(content.reports.begin(), content.reports.end());
        const pm9_source form{sizeof(pm9_source),
                              content.type,
                              content.by_section ? 1 : 0,
                              content.version,
                              content.compressed ? 1 : 0,
                              nullptr,
                              0};
        take(std::move(content.tree));
        read_reports = std::move(reports);
        sections = std::move(content.sections);
        source = form;
        tag = std::move(content.tag);
    }
    // A load begins: it may end before it gets to the tree.
    void begin_load() { read_reports.emplace(); }
    // It gets to the tree.
    pm::Tree& to_load() {
        read_reports.reset();
        source.reset();
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
// A file's name as <pm/inspect.h> takes it, and as the kit does.
std::u16string file_name(const char* data, std::size_t length);
std::string_view kit_file_name(const char* data, std::size_t length);

// A handle or a place for a result.
template<class T>
T& required(T* pointer, const char16_t* name) {
    if (pointer == nullptr) refuse(name, PM_ERR_INVALID_ARGUMENT);
    return *pointer;
}

// A struct as this library knows it. One of a newer header is cut, what one of an older header doesn't have
// is 0, one smaller than its first version is refused.
template<class Struct>
Struct options(const Struct* given, const Struct& in_place_of_null, const char16_t* name,
               std::size_t first_size = sizeof(Struct)) {
    if (given == nullptr) return in_place_of_null;
    if (given->size < first_size) refuse(name, PM_ERR_INVALID_ARGUMENT);
    Struct known{};
    std::memcpy(&known, given, std::min(given->size, sizeof(Struct)));
    return known;
}

// A struct for a result.
template<class Struct>
Struct& result(Struct* given, const char16_t* name) {
    if (required(given, name).size < sizeof(Struct)) refuse(name, PM_ERR_INVALID_ARGUMENT);
    return *given;
}

// The number of whoever made a configuration; nothing for -1.
std::optional<int> owner(std::int32_t number);

// The type of a file; nothing for PM9_FILE_ANY.
std::optional<PM_Object::FileType> file_type(std::int32_t type);

} // namespace pm::c
