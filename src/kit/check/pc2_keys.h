#pragma once

#include <pm/object.h>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pm::kit {

// The keys of PC2 and CFG files: those that a load of an empty file sets to their defaults.
class Pc2Keys {
public:
    struct Key {
        PropType type = PROP_NONE;
        std::string name; // as the tables have it, without its section; of a numbered key its start
        bool hexadecimal = false;
        bool numbered = false; // beyond the numbers that have defaults
    };

    // Made once.
    static const Pc2Keys& all();

    // The section as the tables have it, or null; in any case of ASCII letters.
    [[nodiscard]] const std::string* find_section(std::string_view name) const;
    // Null for a key that is none. `section` is one of the tables'.
    [[nodiscard]] const Key* find(std::string_view section, std::string_view key) const;

private:
    Pc2Keys();
    void add(const std::string& section, const std::string& name, PropType type);

    std::unordered_map<std::string, std::string> m_sections; // lower case to the name
    std::unordered_map<std::string, Key> m_keys;             // section, backslash, key in lower case
    std::unordered_map<std::string, Key> m_numbered;         // the same up to the number
};

} // namespace pm::kit
