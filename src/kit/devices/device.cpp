#include "devices/device.h"
#include "devices/path_pattern.h"
#include "devices/value_words.h"
#include <algorithm>
#include <pm/exception.h>
#include <pm/inspect.h>

namespace pm::kit::devices {

namespace {

constexpr int line_types = 18;

template<class T>
T named(const Branch& branch, const std::string& name) {
    T item;
    item.name = name;
    item.text = branch.text("localized_name");
    item.path = branch.path();
    return item;
}

// The children of a node under their `name`, as `\media\size\*` has them.
template<class T, class Fill>
NamedList<T> numbered(const Branch& list, std::string_view name, Fill fill) {
    NamedList<T> items;
    for (const Branch& branch : list.children()) {
        T item = named<T>(branch, branch.text(name));
        fill(item, branch);
        items.add(std::move(item));
    }
    return items;
}

// The children of a node under the names of their nodes.
template<class T, class Fill>
NamedList<T> keyed(const Branch& list, Fill fill) {
    NamedList<T> items;
    for (const Branch& branch : list.children()) {
        T item = named<T>(branch, branch.name());
        fill(item, branch);
        items.add(std::move(item));
    }
    return items;
}

constexpr auto nothing_more = [](const Named&, const Branch&) {};

void fill_area(MediaArea& area, const Branch& branch) {
    area.is_dimensional = branch.truth("dimensional").value_or(true);
    area.printable_part = branch.number("printable_area");
    area.bounds = branch.extent("media_bounds_urx", "media_bounds_ury");
    const auto low = branch.extent("printable_bounds_llx", "printable_bounds_lly");
    const auto high = branch.extent("printable_bounds_urx", "printable_bounds_ury");
    if (low && high) area.printable = {low->x, low->y, high->x, high->y};
}

void fill_size(MediaSize& size, const Branch& branch) {
    size.landscape = branch.truth("landscape_mode");
    size.area_name = branch.text("media_description_name");
}

void fill_entry(SourceEntry& entry, const Branch& branch) {
    entry.default_size = branch.text("default_size");
    entry.width = branch.number("width");
    entry.sizes = numbered<Named>(branch.child("size_names"), "name", nothing_more);
}

void fill_source(MediaSource& source, const Branch& branch) {
    source.feed = branch.integer("feed");
    source.default_entry = branch.text("default_entry");
    source.entries = keyed<SourceEntry>(branch.child("entry"), fill_entry);
}

void fill_destination(MediaDestination& destination, const Branch& branch) {
    for (std::size_t kind = 0; kind < finishing_names.size(); ++kind) {
        const std::string_view none =
            kind == static_cast<std::size_t>(Finishing::collating) ? "collating_type" : "when";
        destination.steps[kind] = keyed<FinishingStep>(
            branch.child(finishing_names[kind]),
            [&](FinishingStep& step, const Branch& item) { step.is_none = item.integer(none) == 0; });
    }
}

void fill_type(MediaType& type, const Branch& branch) {
    type.best_resolution = branch.extent("max_resolution_x", "max_resolution_y");
}

void fill_memory(MemoryArea& area, const Branch& branch) {
    area.memory = branch.number("device_memory");
    area.longest = branch.number("printable_area");
}

void fill_resolution(DeviceResolution& resolution, const Branch& branch) {
    resolution.physical = branch.extent("physical_resolution_x", "physical_resolution_y");
    resolution.addressable = branch.extent("addressable_resolution_x", "addressable_resolution_y");
    resolution.default_memory = branch.text("default_mem_area");
    resolution.dithering = branch.child("res_color_mem").text("dithering_list");
    resolution.memory = numbered<Named>(branch.child("mem_area"), "name", nothing_more);
}

void fill_mode(ColourMode& mode, const Branch& branch) {
    mode.colours = branch.number("number_of_colors");
    mode.depth = branch.number("color_depth");
    mode.system = branch.integer("color_system");
    mode.default_resolution = branch.text("default_resolution");
    mode.resolutions = keyed<DeviceResolution>(branch.child("resolution_list"), fill_resolution);
}

void fill_protocol(Protocol& protocol, const Branch& branch) {
    protocol.data_bits = branch.integer("data_bits");
    protocol.stop_bits = branch.integer("stop_bits");
    protocol.parity = branch.integer("parity");
}

void fill_method(IoMethod& method, const Branch& branch) {
    method.input_timeout = branch.range("min_input_timeout", "max_input_timeout");
    method.output_timeout = branch.range("min_output_timeout", "max_output_timeout");
    method.handshakes = branch.integer("handshakes");
    for (const Branch& rate : branch.child("baudrates").children()) {
        if (const auto number = rate.number("rate")) {
            method.baud_rates.push_back({number_text(*number), {}, rate.path_of("rate")});
        }
    }
    method.protocols = numbered<Protocol>(branch.child("protocol"), "canonical_name", fill_protocol);
}

void fill_custom(CustomCapability& custom, const Branch& branch) {
    custom.type = branch.integer("data_type").value_or(-1);
    custom.is_range = branch.truth("range_type").value_or(false);
    custom.range = branch.range("range_min", "range_max");
    for (const Branch& item : branch.child("value_list").children()) {
        if (auto value = item.value("value")) custom.values.push_back(std::move(*value));
    }
}

// The digit of a text of flags, 0 to 15.
int flag_digit(char digit) noexcept {
    if (digit >= '0' && digit <= '9') return digit - '0';
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : 0;
}

bool is_description(const Node& node) {
    static constexpr std::array<std::string_view, 6> groups{"media", "res_color_mem", "physical_pen",
                                                            "io",    "init_term",     "RASTER"};
    const Branch root(node, {});
    return std::ranges::any_of(groups, [&](std::string_view group) {
        const auto abilities = root.child(group).value("abilities");
        return abilities && type_of(*abilities) == PROP_STRING;
    });
}

} // namespace

bool ColourMode::has_colours() const {
    static constexpr int bitonal = 2;
    static constexpr int gray_scale = 3;
    return system != bitonal && system != gray_scale;
}

std::string Branch::path_of(std::string_view property) const {
    return m_path + '\\' + std::string(property);
}

Branch Branch::child(std::string_view path) const {
    std::optional<Node> node = m_node;
    std::string whole = m_path;
    for (const std::string& component : split_path(path)) {
        whole += '\\' + component;
        if (!node) continue;
        const std::u16string name = to_utf16(component);
        std::optional<Node> next;
        for (const Node child : node->children()) {
            if (child.name16() != name) continue;
            next = child;
            break;
        }
        node = next;
    }
    return {node, std::move(whole)};
}

std::vector<Branch> Branch::children() const {
    std::vector<Branch> branches;
    if (!m_node) return branches;
    for (const Node child : m_node->children()) {
        branches.emplace_back(child, m_path + '\\' + child.name());
    }
    return branches;
}

std::optional<Value> Branch::value(std::string_view property) const {
    if (!m_node) return std::nullopt;
    const std::u16string name = to_utf16(property);
    for (const Property candidate : m_node->properties()) {
        if (candidate.name16() != name) continue;
        try {
            return candidate.value();
        } catch (const ZT_Exception&) { // bytes that aren't its type's
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string Branch::text(std::string_view property) const {
    auto found = value(property);
    auto* text = found ? std::get_if<std::string>(&*found) : nullptr;
    return text != nullptr ? std::move(*text) : std::string();
}

std::optional<double> Branch::number(std::string_view property) const {
    const auto found = value(property);
    return found ? number_of(*found) : std::nullopt;
}

std::optional<int> Branch::integer(std::string_view property) const {
    return integer_of(number(property));
}

std::optional<bool> Branch::truth(std::string_view property) const {
    const auto found = number(property);
    return found ? std::optional(*found != 0) : std::nullopt;
}

Range Branch::range(std::string_view least, std::string_view most) const {
    const auto is_integer = [](const std::optional<Value>& limit) {
        return !limit || type_of(*limit) == PROP_LONG;
    };
    return {number(least), number(most), is_integer(value(least)) && is_integer(value(most))};
}

std::optional<Extent> Branch::extent(std::string_view x, std::string_view y) const {
    const auto first = number(x);
    const auto second = number(y);
    return first && second ? std::optional(Extent{*first, *second}) : std::nullopt;
}

Device::Device(Node node, std::string path) : m_root(node, std::move(path)) {
    read_media();
    read_colours();
    read_methods();
    read_custom();
    m_line_types = text("\\linetype\\capabilities");
}

void Device::read_media() {
    const Branch media = m_root.child("media");
    areas = numbered<MediaArea>(media.child("description"), "name", fill_area);
    sizes = numbered<MediaSize>(media.child("size"), "name", fill_size);
    sources = keyed<MediaSource>(media.child("source"), fill_source);
    destinations = keyed<MediaDestination>(media.child("destination"), fill_destination);
    types = numbered<MediaType>(media.child("type"), "name", fill_type);
}

void Device::read_colours() {
    const Branch colours = m_root.child("res_color_mem");
    dithering = keyed<Named>(colours.child("dithering_list"), nothing_more);
    memory = keyed<MemoryArea>(colours.child("mem_area_list"), fill_memory);
    modes = keyed<ColourMode>(colours.child("rcm_list"), fill_mode);
}

void Device::read_methods() {
    methods = keyed<IoMethod>(m_root.child("io\\method"), fill_method);
}

// A name with "\" is several nodes: each with a type is a capability.
void Device::read_custom() {
    std::vector<std::pair<Branch, std::string>> open;
    const auto push = [&open](const Branch& parent, const std::string& prefix) {
        auto children = parent.children();
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            std::string name = prefix + child->name();
            open.emplace_back(std::move(*child), std::move(name));
        }
    };
    push(m_root.child("custom_name"), {});
    while (!open.empty()) {
        const auto [branch, name] = std::move(open.back());
        open.pop_back();
        if (branch.integer("data_type")) {
            auto capability = named<CustomCapability>(branch, name);
            fill_custom(capability, branch);
            custom.add(std::move(capability));
        }
        push(branch, name + '\\');
    }
}

std::string Device::path(std::string_view below) const {
    const bool is_whole = below.empty() || below.front() == '\\';
    return m_root.path() + (is_whole ? "" : "\\") + std::string(below);
}

std::optional<Value> Device::value(std::string_view property_path) const {
    const std::size_t last = property_path.rfind('\\');
    if (last == std::string_view::npos) return m_root.value(property_path);
    return place(property_path.substr(0, last)).value(property_path.substr(last + 1));
}

std::optional<double> Device::number(std::string_view property_path) const {
    const auto found = value(property_path);
    return found ? number_of(*found) : std::nullopt;
}

std::string Device::text(std::string_view property_path) const {
    auto found = value(property_path);
    auto* text = found ? std::get_if<std::string>(&*found) : nullptr;
    return text != nullptr ? std::move(*text) : std::string();
}

std::optional<bool> Device::has_line_type(int type) const {
    if (m_line_types.empty()) return std::nullopt;
    if (type < 0 || type >= line_types) return false;
    const auto digit = static_cast<std::size_t>(type) / 4;
    return digit < m_line_types.size() && (flag_digit(m_line_types[digit]) >> (type % 4) & 1) != 0;
}

std::optional<Node> find_description_node(const Tree& tree) {
    for (const auto& [node, depth] : tree.walk()) {
        if (is_description(node)) return node;
    }
    return std::nullopt;
}

} // namespace pm::kit::devices
