#pragma once

#include <pm/object.h>
#include <string>
#include <vector>

namespace pm::bench {

inline std::u16string decimal(int number) {
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

// How the names of a tree are spread.
enum Shape : int {
    nodes_of_100, // 100 properties a node, 100 nodes a group, the same property names in each node
    flat,         // all properties in one node
    unique_names, // as nodes_of_100, but no name of a property comes twice
    nodes_of_10,  // ten properties a node, ten nodes a node on three levels, names repeating
    names_10_000  // as nodes_of_10, but 10,000 names of properties
};

inline std::u16string property_path(Shape shape, int index) {
    if (shape == flat) return u"\\settings\\property" + decimal(index);
    if (shape == nodes_of_10 || shape == names_10_000) {
        const std::u16string node = u"\\group" + decimal(index / 10'000) + u"\\family" +
                                    decimal(index / 1000 % 10) + u"\\device" + decimal(index / 100 % 10) +
                                    u"\\mode" + decimal(index / 10 % 10);
        return node + u"\\property" + decimal(shape == nodes_of_10 ? index % 10 : index % 10'000);
    }
    const std::u16string node = u"\\group" + decimal(index / 10'000) + u"\\node" + decimal(index / 100 % 100);
    return node + u"\\property" + decimal(shape == unique_names ? index : index % 100);
}

inline std::vector<std::u16string> property_paths(Shape shape, int count) {
    std::vector<std::u16string> paths;
    for (int index = 0; index < count; ++index)
        paths.push_back(property_path(shape, index));
    return paths;
}

// The kinds of values that configurations hold, by turns.
inline void set_property(PM_Object& object, const std::u16string& path, int index) {
    static constexpr unsigned char raw[24] = {0xDE, 0xAD};
    const char16_t* const text = u"a text of ordinary length";
    switch (index % 6) {
    case 0:
        return object.SetProperty(path.c_str(), index);
    case 1:
        return object.SetProperty(path.c_str(), index / 8.0);
    case 2:
        return object.SetProperty(path.c_str(), text);
    case 3:
        return object.SetProperty(path.c_str(), index % 4 == 1);
    case 4:
        return object.SetProperty(path.c_str(), index / 7.0);
    default:
        return object.setVoidProperty(path.c_str(), raw, sizeof raw);
    }
}

// The mix of types that comparisons use: 40 % integers, 30 % doubles, 20 % texts, 10 % truth values.
inline void set_typed(PM_Object& object, const std::u16string& path, int index) {
    const int turn = index % 10;
    if (turn < 4) return object.SetProperty(path.c_str(), index * 7919 % 1'000'000);
    if (turn < 6) return object.SetProperty(path.c_str(), index % 100'000 / 8.0);
    if (turn == 6) return object.SetProperty(path.c_str(), index / 7.0);
    if (turn < 9) return object.SetProperty(path.c_str(), (u"value " + decimal(index)).c_str());
    object.SetProperty(path.c_str(), index % 20 == 9);
}

inline void fill(PM_Object& object, Shape shape, int count) {
    for (int index = 0; index < count; ++index)
        set_property(object, property_path(shape, index), index);
}

} // namespace pm::bench
