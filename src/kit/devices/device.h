#pragma once

#include <array>
#include <optional>
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// A description as the rules ask it. All paths are whole ones, and what the tree doesn't hold, or holds as
// another type, is nothing.
namespace pm::kit::devices {

struct Named {
    std::string name;
    std::string text; // translated
    std::string path;
};

// In the order of the description; of two with one name the first is found.
template<class T>
class NamedList {
public:
    void add(T item) {
        m_index.try_emplace(item.name, m_items.size());
        m_items.push_back(std::move(item));
    }
    [[nodiscard]] const T* find(std::string_view name) const {
        const auto found = m_index.find(std::string(name));
        return found == m_index.end() ? nullptr : &m_items[found->second];
    }
    [[nodiscard]] const std::vector<T>& items() const noexcept { return m_items; }
    [[nodiscard]] bool empty() const noexcept { return m_items.empty(); }
    [[nodiscard]] auto begin() const noexcept { return m_items.begin(); }
    [[nodiscard]] auto end() const noexcept { return m_items.end(); }

private:
    std::vector<T> m_items;
    std::unordered_map<std::string, std::size_t> m_index;
};

struct Extent {
    double x = 0;
    double y = 0;
};

struct MediaArea : Named {
    bool is_dimensional = true; // false: any size up to the bounds
    std::optional<double> printable_part;
    std::optional<Extent> bounds;
    std::optional<std::array<double, 4>> printable; // left, bottom, right, top
};

struct MediaSize : Named {
    std::optional<bool> landscape;
    std::string area_name;
};

struct SourceEntry : Named {
    std::string default_size;
    std::optional<double> width;
    NamedList<Named> sizes;
};

struct MediaSource : Named {
    std::optional<int> feed;
    std::string default_entry;
    NamedList<SourceEntry> entries;
};

enum class Finishing { collating, cutting, folding, stapling };
inline constexpr std::array<std::string_view, 4> finishing_names{"collating", "cutting", "folding",
                                                                 "stapling"};

struct FinishingStep : Named {
    bool is_none = false; // it asks for nothing: no collating, no staple
};

struct MediaDestination : Named {
    std::array<NamedList<FinishingStep>, 4> steps; // by Finishing
};

struct MediaType : Named {
    std::optional<Extent> best_resolution;
};

struct MemoryArea : Named {
    std::optional<double> memory;
    std::optional<double> longest; // side of what it has room for
};

struct DeviceResolution : Named {
    std::optional<Extent> physical;
    std::optional<Extent> addressable;
    std::string default_memory;
    std::string dithering;
    NamedList<Named> memory;

    [[nodiscard]] std::optional<Extent> dots() const { return addressable ? addressable : physical; }
};

struct ColourMode : Named {
    std::optional<double> colours;
    std::optional<double> depth;
    std::optional<int> system;
    std::string default_resolution;
    NamedList<DeviceResolution> resolutions;

    [[nodiscard]] bool has_colours() const;
};

struct Protocol : Named {
    std::optional<int> data_bits;
    std::optional<int> stop_bits;
    std::optional<int> parity;
};

struct Range {
    std::optional<double> least;
    std::optional<double> most;
    bool is_integer = false; // of integers alone
};

struct IoMethod : Named { // named by its number
    Range input_timeout;
    Range output_timeout;
    std::optional<int> handshakes;
    std::vector<Named> baud_rates;
    NamedList<Protocol> protocols;
};

struct CustomCapability : Named {
    int type = -1;
    bool is_range = false;
    Range range;
    std::vector<Value> values;
};

// A node of the tree that need not be there, and what can be asked of it.
class Branch {
public:
    Branch(std::optional<Node> node, std::string path) : m_node(node), m_path(std::move(path)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return m_node.has_value(); }
    [[nodiscard]] const std::string& path() const noexcept { return m_path; }
    [[nodiscard]] std::string name() const { return m_node ? m_node->name() : std::string(); }
    [[nodiscard]] std::string path_of(std::string_view property) const;

    // "media\size", level by level.
    [[nodiscard]] Branch child(std::string_view path) const;
    [[nodiscard]] std::vector<Branch> children() const;
    [[nodiscard]] std::optional<Value> value(std::string_view property) const;
    [[nodiscard]] std::string text(std::string_view property) const;
    [[nodiscard]] std::optional<double> number(std::string_view property) const;
    [[nodiscard]] std::optional<int> integer(std::string_view property) const;
    [[nodiscard]] std::optional<bool> truth(std::string_view property) const;
    [[nodiscard]] Range range(std::string_view least, std::string_view most) const;
    [[nodiscard]] std::optional<Extent> extent(std::string_view x, std::string_view y) const;

private:
    std::optional<Node> m_node;
    std::string m_path;
};

class Device {
public:
    // `node` and its path: the description's.
    Device(Node node, std::string path);

    // A path below the description's node, as a whole one.
    [[nodiscard]] std::string path(std::string_view below) const;
    [[nodiscard]] Branch place(std::string_view below) const { return m_root.child(below); }
    // Of "\media\default_size": its value, and its parts.
    [[nodiscard]] std::optional<Value> value(std::string_view property_path) const;
    [[nodiscard]] std::optional<double> number(std::string_view property_path) const;
    [[nodiscard]] std::string text(std::string_view property_path) const;

    // The size's description, or null.
    [[nodiscard]] const MediaArea* area(const MediaSize& size) const { return areas.find(size.area_name); }
    // Whether line type `type` is marked in `\linetype\capabilities`; nothing without that text.
    [[nodiscard]] std::optional<bool> has_line_type(int type) const;

    NamedList<MediaArea> areas;
    NamedList<MediaSize> sizes;
    NamedList<MediaSource> sources;
    NamedList<MediaDestination> destinations;
    NamedList<MediaType> types;
    NamedList<Named> dithering;
    NamedList<MemoryArea> memory;
    NamedList<ColourMode> modes;
    NamedList<IoMethod> methods;
    NamedList<CustomCapability> custom;

private:
    void read_media();
    void read_colours();
    void read_methods();
    void read_custom();

    Branch m_root;
    std::string m_line_types;
};

// The description's node in a tree: the root or the first node that holds a group's text of abilities.
[[nodiscard]] std::optional<Node> find_description_node(const Tree& tree);

} // namespace pm::kit::devices
