#include "tree_printer.h"

#include "text.h"
#include "tree_walk.h"
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

namespace pmtool {

namespace {

using Json = nlohmann::ordered_json;

class TextPrinter : public TreeVisitor {
public:
    explicit TextPrinter(std::string& out) : m_out(out) {}

    void on_property(const Property& property) override {
        indent();
        m_out += property_line(printable(to_utf8(property.name)), property) += '\n';
    }
    void on_enter(const std::u16string& node) override {
        indent();
        (m_out += printable(to_utf8(node))) += "\\\n";
        ++m_level;
    }
    void on_leave() override { --m_level; }

private:
    void indent() { m_out.append(2 * m_level, ' '); }

    std::string& m_out;
    std::size_t m_level = 0;
};

Json json_value(const Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* yes = std::get_if<bool>(&value)) return *yes;
    const auto* real = std::get_if<double>(&value);
    if (real != nullptr && std::isfinite(*real)) return *real;
    return plain_text(value);
}

class JsonBuilder : public TreeVisitor {
public:
    JsonBuilder() { m_open.push_back(new_node()); }

    void on_property(const Property& property) override {
        m_open.back()["properties"].push_back({{"name", to_utf8(property.name)},
                                               {"type", type_name(property.value)},
                                               {"value", json_value(property.value)}});
    }
    void on_enter(const std::u16string& node) override {
        Json opened = {{"name", to_utf8(node)}};
        opened.update(new_node());
        m_open.push_back(std::move(opened));
    }
    void on_leave() override {
        Json closed = std::move(m_open.back());
        m_open.pop_back();
        m_open.back()["nodes"].push_back(std::move(closed));
    }

    std::string text() const { return m_open.front().dump(2) + '\n'; }

private:
    static Json new_node() { return {{"properties", Json::array()}, {"nodes", Json::array()}}; }

    std::vector<Json> m_open; // from the start node down
};

} // namespace

bool print_tree(const PM_Object& object, const std::u16string& path, int depth, std::string& out) {
    TextPrinter printer(out);
    return walk_tree(object, path, depth, printer);
}

bool print_json(const PM_Object& object, const std::u16string& path, int depth, std::string& out) {
    JsonBuilder builder;
    if (!walk_tree(object, path, depth, builder)) return false;
    out += builder.text();
    return true;
}

std::string property_line(const std::string& name, const Property& property) {
    return fmt::format("{}: {} = {}", name, type_name(property.value), shown_text(property.value));
}

} // namespace pmtool
