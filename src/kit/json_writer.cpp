#include "text_reader.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ostream>
#include <pm/detail/utf.h>
#include <pm/kit/json.h>
#include <set>
#include <vector>

namespace pm::kit {

namespace {

constexpr std::size_t block_size = 1 << 16;

bool holds_unpaired_surrogate(std::u16string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = detail::next_code_point(text, at);
        if (code >= 0xD800 && code <= 0xDFFF) return true;
    }
    return false;
}

// An unpaired surrogate as U+FFFD.
std::string json_text(std::u16string_view text) {
    std::u16string whole(text);
    for (std::size_t at = 0; at < whole.size();) {
        const std::size_t begin = at;
        const char32_t code = detail::next_code_point(whole, at);
        if (code >= 0xD800 && code <= 0xDFFF) whole[begin] = u'\uFFFD';
    }
    return quoted_text(to_utf8(whole));
}

std::string number_text(double number) {
    return std::isfinite(number) ? double_text(number) : fmt::format("\"{}\"", double_text(number));
}

struct JsonValue {
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(std::int32_t number) const { return fmt::format("{}", number); }
    std::string operator()(double number) const { return number_text(number); }
    std::string operator()(bool yes) const { return yes ? "true" : "false"; }
    std::string operator()(const std::string& text) const { return json_text(to_utf16(text)); }
    std::string operator()(const Bytes& bytes) const { return fmt::format("\"{}\"", hex_text(bytes)); }
};

std::string name_member(std::u16string_view name) {
    if (!holds_unpaired_surrogate(name)) return fmt::format("\"name\": {}", json_text(name));
    std::string units;
    for (const char16_t unit : name) {
        units += fmt::format("{}{}", units.empty() ? "" : ", ", static_cast<unsigned>(unit));
    }
    return fmt::format("\"name_units\": [{}]", units);
}

// "value" or, where that can't tell all, "bytes".
std::string value_member(const Stored& stored) {
    if (!stored.bytes) return "\"value\": null";
    const std::optional<Value> value = exact_value(stored);
    const auto* const text = value ? std::get_if<std::string>(&*value) : nullptr;
    const bool told = value && (text == nullptr || !holds_unpaired_surrogate(to_utf16(*text)));
    return told ? fmt::format("\"value\": {}", std::visit(JsonValue(), *value))
                : fmt::format("\"bytes\": \"{}\"", hex_text(*stored.bytes));
}

std::string property_members(const Property& property) {
    const Stored value = stored(property);
    return fmt::format("{}, \"type\": \"{}\", {}{}", name_member(property.name16()), type_name(value.type),
                       value_member(value), value.strict ? "" : ", \"strict\": false");
}

std::string plain_value(const Property& property) {
    const Stored value = stored(property);
    if (!value.bytes) return "null";
    if (const std::optional<Value> exact = exact_value(value)) return std::visit(JsonValue(), *exact);
    // As the library shows it.
    if (value.type == PROP_STRING) return json_text(property.as<std::u16string>());
    return fmt::format("\"{}\"", hex_text(*value.bytes));
}

// Where the text goes: to a stream by blocks, or to a string.
class Writer {
public:
    Writer(const JsonOptions& options, std::ostream* stream) : m_options(options), m_stream(stream) {}

    void document(const Node& node) {
        m_out += '{';
        if (!m_options.plain) member(1, "\"pm9\": 1");
        open(node);
        while (!m_levels.empty()) {
            step();
        }
        line(0);
        m_out += "}\n";
        flush();
    }
    std::string take() { return std::move(m_out); }

private:
    // A line end with the indentation of a level, if there are lines.
    void line(int level) {
        if (m_options.indent < 0) return;
        m_out += '\n';
        m_out.append(static_cast<std::size_t>(m_options.indent) * static_cast<std::size_t>(level), ' ');
        if (m_stream != nullptr && m_out.size() >= block_size) flush();
    }
    // A member or element, with the comma behind the one in front.
    void member(int level, std::string_view text) {
        if (m_last != '{' && m_last != '[') m_out += ',';
        if (m_last != '{' && m_last != '[' && m_options.indent < 0) m_out += ' ';
        line(level);
        m_out += text;
        m_last = text.back();
    }
    void close(int level, char bracket, bool filled) {
        if (filled) line(level);
        m_out += m_last = bracket;
    }

    // ---- the nodes from the top to the one that is written
    //
    // They are held here, as a tree may be deeper than the stack.
    struct Level {
        Node node;
        const PM_Node* next = nullptr;    // the child whose turn it is
        bool is_cut = false;              // nothing is told of its children
        std::set<std::string> taken = {}; // the keys, where they are names
    };

    [[nodiscard]] int depth() const { return static_cast<int>(m_levels.size()) - 1; }
    // Of the members of the last node.
    [[nodiscard]] int level() const { return m_options.plain ? depth() + 1 : 2 * depth() + 1; }

    void open(const Node& node) {
        m_levels.push_back({node});
        Level& opened = m_levels.back();
        opened.is_cut = m_options.levels > 0 && depth() == m_options.levels;
        if (!opened.is_cut) opened.next = node.view().first_child;
        m_options.plain ? plain_members(opened) : members(opened);
    }
    void members(const Level& opened) {
        member(level(), "\"properties\": [");
        for (const Property property : opened.node.properties()) {
            member(level() + 1, fmt::format("{{{}}}", property_members(property)));
        }
        close(level(), ']', !opened.node.properties().empty());
        if (!opened.is_cut) {
            member(level(), "\"nodes\": [");
        } else if (!opened.node.children().empty()) {
            member(level(), "\"more\": true");
        }
    }
    void plain_members(Level& opened) {
        for (const Property property : opened.node.properties()) {
            member(level(), fmt::format("{}: {}", key(opened, property.name16()), plain_value(property)));
        }
    }
    // Names that would come out alike, such as those with different surrogates, get "\" behind them.
    static std::string key(Level& opened, std::u16string_view name) {
        std::u16string text(name);
        std::string shown = json_text(text);
        while (!opened.taken.insert(shown).second) {
            shown = json_text(text += u'\\');
        }
        return shown;
    }

    void step() {
        Level& last = m_levels.back();
        if (last.next == nullptr) {
            finish();
            return;
        }
        const Node child(*last.next);
        last.next = child.view().next_sibling;
        if (m_options.plain) {
            member(level(), key(last, child.name16()) + ": {");
        } else {
            member(level() + 1, "{");
            member(level() + 2, name_member(child.name16()));
        }
        open(child);
    }
    void finish() {
        const Node node = m_levels.back().node;
        const bool has_nodes = !node.children().empty();
        if (!m_options.plain && !m_levels.back().is_cut) close(level(), ']', has_nodes);
        m_levels.pop_back();
        if (m_levels.empty()) return;
        if (m_options.plain) {
            close(level(), '}', has_nodes || !node.properties().empty());
        } else {
            close(level() + 1, '}', true);
        }
    }

    void flush() {
        if (m_stream == nullptr) return;
        m_stream->write(m_out.data(), static_cast<std::streamsize>(m_out.size()));
        m_out.clear();
    }

    const JsonOptions& m_options;
    std::ostream* m_stream;
    std::string m_out;
    char m_last = '{';
    std::vector<Level> m_levels;
};

} // namespace

std::string to_json(const Node& node, const JsonOptions& options) {
    Writer writer(options, nullptr);
    writer.document(node);
    return writer.take();
}

std::string to_json(const Tree& tree, const JsonOptions& options) {
    return to_json(tree.root(), options);
}

void write_json(std::ostream& stream, const Node& node, const JsonOptions& options) {
    Writer(options, &stream).document(node);
}

std::string property_json(const Property& property, const JsonOptions& options) {
    if (options.plain) return plain_value(property);
    return fmt::format("{{\"pm9\": 1, {}}}", property_members(property));
}

} // namespace pm::kit
