#pragma once

#include <initializer_list>
#include <pm/kit/compatibility.h>
#include <pm/kit/diagnostic.h>
#include <string>
#include <utility>
#include <vector>

namespace pm::test {

using Item = std::pair<const char*, Value>;

inline void add(Tree& tree, std::initializer_list<Item> items) {
    for (const auto& [path, value] : items)
        tree.set(path, value);
}

inline Tree tree_of(std::initializer_list<Item> items) {
    Tree tree;
    add(tree, items);
    return tree;
}

inline Tree tree_of(const std::vector<Item>& items) {
    Tree tree;
    for (const auto& [path, value] : items)
        tree.set(path, value);
    return tree;
}

inline Value text(const char* value) {
    return std::string(value);
}

// A device with two or three of everything, see the source.
Tree small_device();

// All findings of one rule: "error \path = value @ \path = value: message (value; value)".
std::vector<std::string> findings_of(const std::vector<kit::Finding>& findings, std::string_view rule);
// What one rule looked at: "passed \path @ \path"; what isn't set is left out.
std::vector<std::string> looks_of(const std::vector<kit::Look>& looks, std::string_view rule);

// Both of a configuration on a device.
struct Answer {
    std::vector<std::string> findings;
    std::vector<std::string> looks;
};
Answer answer_of(std::string_view rule, const Tree& configuration, const Tree& device,
                 const kit::CompatibilityOptions& options = {});
// On small_device().
std::vector<std::string> found(std::string_view rule, std::initializer_list<Item> configuration);
std::vector<std::string> looked(std::string_view rule, std::initializer_list<Item> configuration);

using Lines = std::vector<std::string>;

// A configuration on small_device() without some paths and with others, and what a rule says of it: its
// findings, then what it looked at without finding anything.
struct Case {
    std::vector<Item> asked;
    std::vector<const char*> gone;
    std::vector<Item> more;
    Lines said;
};
void expect_said(std::string_view rule, const std::vector<Case>& cases,
                 const kit::CompatibilityOptions& options = {});

} // namespace pm::test
