#include "arguments.h"
#include "block.h"
#include "failure.h"
#include <pm/exception.h>
#include <pm/pm_c.h>
#include <pm/tree.h>

using namespace pm::c;

namespace {

using Items = ArrayBlock<pm9_item>;

std::string_view bytes_of(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

struct AddValue {
    Items& items;
    pm9_item item;
    const std::string& name;

    void operator()(std::monostate) { add(); }
    void operator()(std::int32_t number) {
        item.number = number;
        add();
    }
    void operator()(double real) {
        item.real = real;
        add();
    }
    void operator()(bool truth) {
        item.number = truth ? 1 : 0;
        add();
    }
    void operator()(const std::string& text) { add_with(text); }
    void operator()(const pm::Bytes& bytes) { add_with(bytes_of(bytes)); }

    void add() {
        items.add(item);
        items.add_text(&pm9_item::name, &pm9_item::name_length, name);
    }
    void add_with(std::string_view bytes) {
        add();
        items.add_text(&pm9_item::data, &pm9_item::length, bytes);
    }
};

void add_property(Items& items, const pm::Property& property, int depth) {
    const std::string name = property.name();
    AddValue add{items, {}, name};
    add.item.what = PM9_PROPERTY;
    add.item.depth = depth;
    add.item.type = property.type();
    add.item.strict = property.strict() ? 1 : 0;
    pm::Value value;
    try {
        value = property.value();
    } catch (const PM_Warning& e) {
        // The rest of the tree is as good as it was.
        add.item.problem = static_cast<std::int32_t>(e.m_number);
        return add.add_with(bytes_of(property.bytes()));
    }
    std::visit(add, value);
}

void add_node(Items& items, const pm::Node& node, int depth) {
    pm9_item item{};
    item.what = PM9_NODE;
    item.depth = depth;
    items.add(item);
    items.add_text(&pm9_item::name, &pm9_item::name_length, node.name());
}

Items items_of(const pm::Node& first, const pm9_list_options& how) {
    Items items;
    for (const auto& [node, depth] : first.walk(how.levels)) {
        if (how.omitted != PM9_NODE) add_node(items, node, depth);
        if (how.omitted == PM9_PROPERTY || (how.levels > 0 && depth == how.levels)) continue;
        for (const pm::Property& property : node.properties()) {
            add_property(items, property, depth + 1);
        }
    }
    return items;
}

} // namespace

pm9_status pm9_tree_list(const pm9_tree* tree, const char* path, size_t path_length,
                         const pm9_list_options* list_options, size_t item_size, pm9_item** items,
                         size_t* count, pm9_error* error) {
    return guarded(error, [&] {
        const pm9_list_options how = options(list_options, pm9_list_options(), u"options");
        const std::optional<pm::Node> first = required(tree, u"tree").tree.node(text(path, path_length));
        if (!first) refuse(wide_text(path, path_length).c_str(), PM_ERR_NO_SUCH_NODE);
        items_of(*first, how).hand_out(item_size, items, count);
    });
}
