#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <pm/pm_c.h>
#include <string>
#include <string_view>
#include <vector>

// Short ways to what the tests of the C interface need.
namespace pm::test {

struct DeleteTree {
    void operator()(pm9_tree* tree) const { pm9_tree_delete(tree); }
};
using CTree = std::unique_ptr<pm9_tree, DeleteTree>;

inline CTree c_tree() {
    pm9_tree* tree = nullptr;
    EXPECT_EQ(pm9_tree_new(&tree, nullptr), PM9_OK);
    return CTree(tree);
}

// A tree with one property: \media\copies = 2.
inline CTree small_tree() {
    CTree tree = c_tree();
    EXPECT_EQ(pm9_tree_set_long(tree.get(), "\\media\\copies", PM9_Z, 2, nullptr), PM9_OK);
    return tree;
}

inline pm9_error c_error() {
    pm9_error error{};
    error.size = sizeof error;
    return error;
}

// 54 at "pm::Tree" with "\media\copies".
inline std::string told(const pm9_error& error) {
    return std::to_string(error.number) + " at \"" + std::string(error.place, error.place_length) +
           "\" with \"" + std::string(error.detail, error.detail_length) + '"';
}

// What a function gave, taken over.
inline std::string taken(const char* data, std::size_t length) {
    std::string result(data, length);
    EXPECT_EQ(data[length], '\0');
    pm9_free(data);
    return result;
}

// The list of a tree: "Root", " copies=2"..., a blank for each depth.
inline std::vector<std::string> listed(const pm9_tree* tree, const pm9_list_options* how = nullptr,
                                       const char* path = "\\") {
    pm9_item* items = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_tree_list(tree, path, PM9_Z, how, sizeof *items, &items, &count, nullptr), PM9_OK);
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < count; ++at) {
        const pm9_item& item = items[at];
        std::string line(static_cast<std::size_t>(item.depth), ' ');
        line.append(item.name, item.name_length);
        if (item.what == PM9_PROPERTY) line += '=' + std::to_string(item.number);
        lines.push_back(line);
    }
    pm9_free(items);
    return lines;
}

} // namespace pm::test
