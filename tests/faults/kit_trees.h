#pragma once

#include "faults/subject.h"
#include <pm/kit/compatibility.h>
#include <pm/kit/file.h>
#include <pm/kit/json.h>

namespace pm::test {

// Trees that are there before memory fails.
struct Trees {
    Tree first;
    Tree second;
    std::string json;
    Tree description = kit::read_file({.file = FaultFiles::get().narrow("dx4200")}).tree;
    Tree plotter = kit::read_file({.file = FaultFiles::get().narrow("plotter.pia")}).tree;
    std::string map = kit::map_to_json(kit::built_in_map());
    std::string file = FaultFiles::get().narrow("long.pia");

    Trees() {
        first.set("\\media\\copies", 2);
        first.set("\\media\\name", "a text that no string holds in itself");
        second.set("\\media\\copies", 3);
        second.set("\\media\\size\\*\\width", 84.1, 1);
        json = kit::to_json(first);
    }

    static const Trees& get() {
        const Spared test;
        static const Trees trees;
        return trees;
    }
};

inline constexpr std::string_view script = "set \\media\\copies long 7\ncp \\media\\ \\copy\\\n";

} // namespace pm::test
