#include "check/pc2_keys.h"

#include "check/numbers.h"
#include <pm/pm.h>
#include <sstream>

namespace pm::kit {

namespace {

constexpr std::string_view numbered_starts[] = {"Color", "UserWidth", "UserHeight", "DeviceDriverCell",
                                                "PEN#"};
constexpr std::string_view hexadecimal_key = "dmFields";

std::string id_of(std::string_view section, std::string_view key) {
    return lowered(section) + '\\' + lowered(key);
}

} // namespace

const Pc2Keys& Pc2Keys::all() {
    static const Pc2Keys keys;
    return keys;
}

Pc2Keys::Pc2Keys() {
    std::stringstream empty("PC2Version 2.0\n");
    Tree tree;
    tree.load(empty, {.type = PM_Object::FILE_PC2});
    for (const auto& [node, depth] : tree.walk()) {
        for (const Property& property : node.properties()) {
            add(node.name(), property.name(), property.type());
        }
    }
}

void Pc2Keys::add(const std::string& section, const std::string& name, PropType type) {
    m_sections.emplace(lowered(section), section);
    std::string written = name;
    if (written.starts_with("Opaque_")) written[6] = '-';
    m_keys.emplace(id_of(section, written), Key{type, written, name == hexadecimal_key, false});
    for (const std::string_view start : numbered_starts) {
        if (!name.starts_with(start) || name.size() == start.size() || !is_digit(name.back())) continue;
        m_numbered.emplace(id_of(section, start), Key{type, std::string(start), false, true});
    }
}

const std::string* Pc2Keys::find_section(std::string_view name) const {
    const auto found = m_sections.find(lowered(name));
    return found != m_sections.end() ? &found->second : nullptr;
}

const Pc2Keys::Key* Pc2Keys::find(std::string_view section, std::string_view key) const {
    const auto found = m_keys.find(id_of(section, key));
    if (found != m_keys.end()) return &found->second;
    for (const std::string_view start : numbered_starts) {
        if (!starts_ignoring_case(key, start)) continue;
        const auto numbered = m_numbered.find(id_of(section, start));
        if (numbered != m_numbered.end()) return &numbered->second;
    }
    return nullptr;
}

} // namespace pm::kit
