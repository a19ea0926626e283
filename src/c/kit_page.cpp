#include "arguments.h"
#include "block.h"
#include "failure.h"
#include <pm/kit/compatibility.h>
#include <pm/kit/error.h>
#include <pm/kit/report.h>
#include <pm/pm_c.h>

using namespace pm::c;

namespace {

constexpr pm9_page_options default_page{sizeof(pm9_page_options), nullptr, 0, -1, 0};

// A tree of the page, and its node.
struct Part {
    const pm::Tree& tree;
    std::string name;
    std::string base; // of a description empty: where one is found
    pm::Node root;
};

pm::Node node_of(const pm::Tree& tree, const std::string& base) {
    const std::optional<pm::Node> node = tree.node(base);
    if (!node) throw pm::kit::Error("There is no node " + base + '.');
    return *node;
}

Part part_of(const pm9_page_part& given, const char16_t* argument) {
    const pm9_page_part known = options(&given, pm9_page_part(), argument);
    const pm::Tree& tree = required(known.tree, u"tree").tree;
    return {tree, std::string(text(known.name, known.name_length)),
            std::string(text(known.base, known.base_length)), tree.root()};
}

Part configuration_of(const pm9_page_part& given) {
    Part part = part_of(given, u"configurations");
    if (part.base.empty()) part.base.push_back('\\');
    part.root = node_of(part.tree, part.base);
    return part;
}

Part description_of(const pm9_page_part& given) {
    Part part = part_of(given, u"description");
    const std::string base =
        part.base.empty() ? pm::kit::find_description(part.tree).value_or("\\") : part.base;
    part.root = node_of(part.tree, base);
    return part;
}

// Structs that lie as far apart as the caller has them.
class Parts {
public:
    Parts(const pm9_page_part* first, std::size_t item_size, std::size_t count)
        : m_first(reinterpret_cast<const char*>(first)), m_item_size(item_size), m_count(count) {
        if (count != 0 && first == nullptr) refuse(u"configurations", PM_ERR_INVALID_ARGUMENT);
        if (item_size < sizeof(pm9_page_part) || item_size % alignof(pm9_page_part) != 0) {
            refuse(u"item_size", PM_ERR_INVALID_ARGUMENT);
        }
    }
    [[nodiscard]] std::size_t count() const noexcept { return m_count; }
    [[nodiscard]] Part at(std::size_t index) const {
        const auto* const item = reinterpret_cast<const pm9_page_part*>(m_first + index * m_item_size);
        return configuration_of(*item);
    }

private:
    const char* m_first;
    std::size_t m_item_size;
    std::size_t m_count;
};

pm::kit::ReportInput input_of(const pm9_page_part* description, const Parts& configurations,
                              pm::kit::CompatibilityOptions check) {
    pm::kit::ReportInput input;
    std::optional<Part> device;
    if (description != nullptr) {
        device.emplace(description_of(*description));
        check.description_base = device->base;
        input.description = {device->name, device->root,
                             pm::kit::explain_description(device->tree, {.description_base = device->base})};
    }
    for (std::size_t i = 0; i < configurations.count(); ++i) {
        const Part part = configurations.at(i);
        check.configuration_base = part.base;
        pm::kit::ReportConfiguration configuration{part.name, part.root};
        if (device) {
            configuration.check = pm::kit::explain_compatibility(part.tree, device->tree, check);
        }
        input.configurations.push_back(std::move(configuration));
    }
    return input;
}

} // namespace

pm9_status pm9_report_page(const pm9_page_part* description, const pm9_page_part* configurations,
                           size_t item_size, size_t count, const pm9_page_options* given, char** data,
                           size_t* length, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_page_options how = options(given, default_page, u"options");
        if (description == nullptr && count == 0) refuse(u"configurations", PM_ERR_INVALID_ARGUMENT);
        pm::kit::CompatibilityOptions check;
        check.owner = owner(how.owner);
        pm::kit::CompatibilityMap map;
        if (how.map != nullptr) {
            map = pm::kit::load_map(text(how.map, how.map_length));
            check.map = &map;
        }
        const Parts parts(configurations, item_size, count);
        hand_out(pm::kit::report_page(input_of(description, parts, check)), data, length);
    });
}
