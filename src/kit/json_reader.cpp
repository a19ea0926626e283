#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <pm/kit/error.h>
#include <pm/kit/json.h>
#include <pm/kit/stored.h>
#include <unordered_set>
#include <utility>
#include <variant>

namespace pm::kit {

namespace {

using Json = nlohmann::json;

constexpr std::int64_t form_version = 1;
constexpr std::size_t deepest_node = 256;

// What may stand in an object, each a bit.
enum Member : unsigned {
    member_version = 1,
    member_name = 2,
    member_type = 4,
    member_value = 8,
    member_strict = 16,
    member_properties = 32,
    member_nodes = 64
};

struct MemberName {
    std::string_view text;
    unsigned member;
};

constexpr MemberName member_names[] = {
    {"pm9", member_version},   {"name", member_name},   {"name_units", member_name},
    {"type", member_type},     {"value", member_value}, {"bytes", member_value},
    {"strict", member_strict}, {"nodes", member_nodes}, {"properties", member_properties},
};

constexpr unsigned members_of_root = member_version | member_properties | member_nodes;
constexpr unsigned members_of_node = member_name | member_properties | member_nodes;
constexpr unsigned members_of_property = member_name | member_type | member_value | member_strict;

// A mistake before it is known where in the text it stands.
struct Mistake {
    std::string message;
};

[[noreturn]] void fail(std::string message) {
    throw Mistake{std::move(message)};
}

// Numbers that aren't whole come as double; a whole one below zero that is none as negative zero, too.
using Scalar = std::variant<std::monostate, std::int64_t, double, std::string, bool>;

template<class T>
const T& require(const Scalar& scalar, std::string_view member, std::string_view wanted) {
    if (const T* const held = std::get_if<T>(&scalar)) return *held;
    fail(fmt::format("\"{}\" is {}", member, wanted));
}

Value long_of(const Scalar& scalar) {
    const auto* const number = std::get_if<std::int64_t>(&scalar);
    if (number != nullptr && std::in_range<std::int32_t>(*number)) return static_cast<std::int32_t>(*number);
    const auto* const real = std::get_if<double>(&scalar);
    if (real != nullptr && *real == 0) return std::int32_t{0};
    fail("a long is a whole number from -2147483648 to 2147483647");
}

Value double_of(const Scalar& scalar) {
    if (const auto* const whole = std::get_if<std::int64_t>(&scalar)) return static_cast<double>(*whole);
    if (const auto* const real = std::get_if<double>(&scalar)) return *real;
    const auto* const text = std::get_if<std::string>(&scalar);
    if (text != nullptr && (*text == "inf" || *text == "-inf" || *text == "nan")) {
        return *exact_value(parse_value(*text, PROP_DOUBLE));
    }
    fail("a double is a number, \"inf\", \"-inf\" or \"nan\"");
}

Bytes bytes_of(const Scalar& scalar, std::string_view member) {
    constexpr std::string_view wanted = "an even number of hexadecimal digits in quotes";
    if (std::optional<Bytes> bytes = parse_hex(require<std::string>(scalar, member, wanted))) return *bytes;
    fail(fmt::format("\"{}\" is {}", member, wanted));
}

Value value_of(PropType type, const Scalar& scalar) {
    switch (type) {
    case PROP_LONG:
        return long_of(scalar);
    case PROP_DOUBLE:
        return double_of(scalar);
    case PROP_STRING:
        return require<std::string>(scalar, "value", "a text for a string");
    case PROP_BOOL:
        return require<bool>(scalar, "value", "true or false for a bool");
    case PROP_VOID:
        return bytes_of(scalar, "value");
    default:
        fail("a property of type \"none\" has the value null");
    }
}

// ---- what is read, before it is a tree

struct ReadProperty {
    unsigned members = 0;
    std::u16string name;
    Stored stored;
    Scalar scalar; // until the type is known
    bool is_bytes = false;

    void resolve() {
        if ((members & (member_type | member_value)) != (member_type | member_value)) return;
        if (std::holds_alternative<std::monostate>(scalar) && !is_bytes) return;
        stored.bytes =
            is_bytes ? bytes_of(scalar, "bytes") : make_stored(value_of(stored.type, scalar)).bytes;
    }
};

struct ReadNode {
    unsigned members = 0;
    std::u16string name;
    std::vector<ReadProperty> properties;
    std::vector<std::unique_ptr<ReadNode>> nodes;
    std::unordered_set<std::u16string> property_names;
    std::unordered_set<std::u16string> node_names;
};

void build(const ReadNode& read, const TreeBuilder& builder, const PM_Node& node) {
    for (const ReadProperty& property : read.properties) {
        put_stored(builder, node, property.name, property.stored);
    }
    for (const std::unique_ptr<ReadNode>& child : read.nodes) {
        build(*child, builder, builder.child(node, child->name));
    }
}

std::u16string require_name(std::u16string name) {
    constexpr std::u16string_view separators(u"\\\0", 2);
    if (name.empty()) fail("a name is empty");
    if (name.find_first_of(separators) != std::u16string::npos) fail("a name holds a backslash or a zero");
    return name;
}

// ---- the text as it comes

class Reader : public nlohmann::json_sax<Json> {
public:
    bool null() override { return scalar(Scalar()); }
    bool boolean(bool value) override { return scalar(value); }
    // Of numbers with a sign: a zero is the negative one.
    bool number_integer(Json::number_integer_t value) override {
        return number(value == 0 ? Scalar(-0.0) : Scalar(std::int64_t{value}));
    }
    bool number_unsigned(Json::number_unsigned_t value) override {
        return number(std::in_range<std::int64_t>(value) ? Scalar(static_cast<std::int64_t>(value))
                                                         : Scalar(static_cast<double>(value)));
    }
    bool number_float(Json::number_float_t value, const std::string&) override { return number(value); }
    bool string(std::string& value) override { return scalar(std::move(value)); }
    bool binary(Json::binary_t&) override { fail("there are no binary values"); }
    bool start_object(std::size_t) override;
    bool end_object() override;
    bool start_array(std::size_t) override;
    bool end_array() override;
    bool key(std::string& name) override;
    bool parse_error(std::size_t, const std::string&, const Json::exception& e) override {
        const std::string_view text = e.what();
        const std::size_t column = text.find("column ");
        const std::size_t reason =
            column != std::string_view::npos ? text.find(": ", column) : text.find("] ");
        fail("this isn't JSON: " + printable_text(text.substr(reason + 2)));
    }

    const ReadNode& root() const { return *m_root; }
    // How many characters behind what it gives the text has been read: one behind a number.
    std::size_t ahead() const { return m_ahead; }

private:
    // What stands open.
    enum class Level { root, node, property, nodes, properties, units };

    bool scalar(Scalar value);
    bool number(Scalar value) {
        m_ahead = 1;
        scalar(std::move(value));
        m_ahead = 0;
        return true;
    }
    void node_scalar(const Scalar& value);
    void property_scalar(Scalar value);
    void add_unit(const Scalar& value);
    void set_type(const Scalar& value);
    void open_node();
    void close_node();
    void close_property();
    unsigned& members() {
        return m_levels.back() == Level::property ? m_property.members : m_nodes.back()->members;
    }
    std::u16string& name() {
        return m_levels.back() == Level::property ? m_property.name : m_nodes.back()->name;
    }

    std::unique_ptr<ReadNode> m_root;
    std::vector<Level> m_levels;
    std::vector<ReadNode*> m_nodes; // those that stand open
    ReadProperty m_property;
    std::string m_key;
    std::size_t m_ahead = 0;
};

bool Reader::start_object(std::size_t) {
    if (m_levels.empty() && m_root == nullptr) {
        m_root = std::make_unique<ReadNode>();
        m_nodes.push_back(m_root.get());
        m_levels.push_back(Level::root);
    } else if (!m_levels.empty() && m_levels.back() == Level::nodes) {
        open_node();
    } else if (!m_levels.empty() && m_levels.back() == Level::properties) {
        m_property = {};
        m_levels.push_back(Level::property);
    } else {
        fail("an object can't stand here");
    }
    return true;
}

void Reader::open_node() {
    if (m_nodes.size() > deepest_node) fail("a node is deeper than 256 levels");
    m_nodes.push_back(m_nodes.back()->nodes.emplace_back(std::make_unique<ReadNode>()).get());
    m_levels.push_back(Level::node);
}

bool Reader::key(std::string& name) {
    const auto* const found = std::ranges::find(member_names, name, &MemberName::text);
    const unsigned allowed = m_levels.back() == Level::root   ? members_of_root
                             : m_levels.back() == Level::node ? members_of_node
                                                              : members_of_property;
    if (name == "more") fail("a node was cut when this was written; write it whole");
    if (found == std::ranges::end(member_names) || (found->member & allowed) == 0) {
        fail(fmt::format("a member {} can't stand here", quoted_text(name)));
    }
    if ((members() & found->member) != 0) fail(fmt::format("{} is there twice", quoted_text(name)));
    members() |= found->member;
    m_key = name;
    return true;
}

bool Reader::scalar(Scalar value) {
    if (m_levels.empty()) fail("what is read is an object");
    switch (m_levels.back()) {
    case Level::root:
    case Level::node:
        node_scalar(value);
        break;
    case Level::property:
        property_scalar(std::move(value));
        break;
    case Level::units:
        add_unit(value);
        break;
    default:
        fail("only objects can stand here");
    }
    return true;
}

void Reader::node_scalar(const Scalar& value) {
    if (m_key == "pm9") {
        const auto* const version = std::get_if<std::int64_t>(&value);
        if (version == nullptr || *version != form_version) fail("\"pm9\" is the version of the form, 1");
    } else if (m_key == "name") {
        name() = require_name(to_utf16(require<std::string>(value, "name", "a text")));
    } else {
        fail(fmt::format("{} is an array", quoted_text(m_key)));
    }
}

void Reader::property_scalar(Scalar value) {
    if (m_key == "type") {
        set_type(value);
    } else if (m_key == "strict") {
        m_property.stored.strict = require<bool>(value, "strict", "true or false");
    } else if (m_key == "value" || m_key == "bytes") {
        m_property.scalar = std::move(value);
        m_property.is_bytes = m_key == "bytes";
        m_property.resolve();
    } else {
        node_scalar(value);
    }
}

void Reader::set_type(const Scalar& value) {
    const std::string& word = require<std::string>(value, "type", "a text");
    const std::optional<PropType> type = type_named(word);
    if (!type) {
        fail(fmt::format("{}: no such type; there are long, double, string, bool, raw, none",
                         quoted_text(word)));
    }
    m_property.stored.type = *type;
    m_property.resolve();
}

void Reader::add_unit(const Scalar& value) {
    const auto* const unit = std::get_if<std::int64_t>(&value);
    if (unit == nullptr || *unit < 0 || *unit > 0xFFFF) fail("\"name_units\" are numbers from 0 to 65535");
    m_levels.pop_back();
    name() += static_cast<char16_t>(*unit);
    m_levels.push_back(Level::units);
}

bool Reader::start_array(std::size_t) {
    const bool in_object = !m_levels.empty() && m_levels.back() <= Level::property;
    if (in_object && m_key == "name_units") {
        m_levels.push_back(Level::units);
    } else if (in_object && m_levels.back() != Level::property &&
               (m_key == "nodes" || m_key == "properties")) {
        m_levels.push_back(m_key == "nodes" ? Level::nodes : Level::properties);
    } else {
        fail("an array can't stand here");
    }
    return true;
}

bool Reader::end_array() {
    const bool was_name = m_levels.back() == Level::units;
    m_levels.pop_back();
    if (was_name) static_cast<void>(require_name(name()));
    return true;
}

bool Reader::end_object() {
    const Level level = m_levels.back();
    if (level == Level::root && (members() & member_version) == 0) {
        fail("\"pm9\", the version of the form, is missing");
    }
    if (level != Level::root && (members() & member_name) == 0) fail("a name is missing");
    if (level == Level::property) close_property();
    m_levels.pop_back();
    if (level == Level::node) close_node();
    return true;
}

void Reader::close_property() {
    constexpr unsigned needed = member_type | member_value;
    if ((m_property.members & needed) != needed) fail("a property has \"type\" and \"value\" or \"bytes\"");
    ReadNode& node = *m_nodes.back();
    if (!node.property_names.insert(m_property.name).second) {
        fail(fmt::format("a node has two properties named {}", quoted_text(to_utf8(m_property.name))));
    }
    node.properties.push_back(std::move(m_property));
}

void Reader::close_node() {
    ReadNode& node = *m_nodes.back();
    m_nodes.pop_back();
    node.property_names = {};
    node.node_names = {};
    if (!m_nodes.back()->node_names.insert(node.name).second) {
        fail(fmt::format("a node has two nodes named {}", quoted_text(to_utf8(node.name))));
    }
}

// Goes through the text and lets it be seen how far it is.
class Position {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Position(const char*& at, const char* begin) : m_shared(&at), m_at(begin) {}
    reference operator*() const { return *m_at; }
    Position& operator++() {
        *m_shared = ++m_at;
        return *this;
    }
    bool operator==(const Position& other) const { return m_at == other.m_at; }
    bool operator!=(const Position& other) const { return m_at != other.m_at; }

private:
    const char** m_shared;
    const char* m_at;
};

[[noreturn]] void raise(const Mistake& mistake, std::string_view before) {
    const auto lines = static_cast<std::uint64_t>(std::ranges::count(before, '\n'));
    const std::size_t line_begin = before.rfind('\n') + 1; // 0 without one
    throw Error(mistake.message, lines + 1, std::max<std::size_t>(before.size() - line_begin, 1));
}

} // namespace

Tree from_json(std::string_view text) {
    const char* at = text.data();
    Reader reader;
    try {
        Json::sax_parse(Position(at, text.data()), Position(at, text.data() + text.size()), &reader);
    } catch (const Mistake& mistake) {
        const auto read = static_cast<std::size_t>(at - text.data());
        raise(mistake, text.substr(0, read - std::min(reader.ahead(), read)));
    }
    Tree tree;
    const TreeBuilder builder(tree.object());
    build(reader.root(), builder, builder.root());
    return tree;
}

} // namespace pm::kit
