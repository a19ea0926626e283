#pragma once

#include <map>
#include <optional>
#include <pm/kit/compatibility.h>
#include <string>
#include <unordered_map>
#include <vector>

// What a configuration says, setting by setting, as its map tells.
namespace pm::kit::devices {

// One setting as a configuration has it.
struct Setting {
    const SettingPath* row = nullptr; // null: the description's own default
    std::string name;                 // of the setting: "size"
    std::string key;
    std::string path;
    Value value;
    std::string text;             // value_text() of it
    std::optional<double> number; // as its form and its codes take it, a length in millimetres
    bool was_looked_at = false;
    bool is_in_inches = false;

    [[nodiscard]] bool is_default() const noexcept { return row == nullptr; }
    // As a description names it.
    [[nodiscard]] std::string as_name() const;
    // A number of the description, or two, as the configuration would have them: lengths in its unit.
    [[nodiscard]] std::string in_unit(double described) const;
    [[nodiscard]] std::string in_unit(double x, double y) const;
    // With the unit behind it where that isn't the description's.
    [[nodiscard]] std::string said(double described) const;
    [[nodiscard]] std::string said(double x, double y) const;
    // A description's number by the code of the configuration; nothing if there is none.
    [[nodiscard]] std::optional<int> code_of(int described) const;
};

// A property that the map doesn't know.
struct UnknownProperty {
    std::string path;
    std::string text;
};

class Settings {
public:
    // The settings below `node`, whose path is `base`; of a description its defaults alone.
    Settings(Node node, std::string_view base, const CompatibilityMap& map, bool defaults_only);

    // All of one setting, in the order of the configuration; empty if there are none.
    [[nodiscard]] std::vector<Setting>& all(std::string_view name);
    // That with this key, or null.
    [[nodiscard]] Setting* find(std::string_view name, std::string_view key);
    [[nodiscard]] bool has(std::string_view name) { return !all(name).empty(); }

    [[nodiscard]] std::map<std::string, std::vector<Setting>, std::less<>>& by_name() noexcept {
        return m_settings;
    }
    [[nodiscard]] const std::vector<UnknownProperty>& unknown() const noexcept { return m_unknown; }

private:
    template<class Row>
    class Rows;

    // `components` are those of the property.
    void read(const Property& property, std::string path, const std::vector<std::string>& components,
              const Rows<SettingPath>& rows, const Rows<QuietPath>* quiet);
    void apply_unit();

    std::map<std::string, std::vector<Setting>, std::less<>> m_settings;
    std::map<std::string, std::unordered_map<std::string, std::size_t>, std::less<>> m_by_key; // to the first
    std::vector<UnknownProperty> m_unknown;
};

} // namespace pm::kit::devices
