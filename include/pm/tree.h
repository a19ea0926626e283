#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <pm/error_handler.h>
#include <pm/error_number.h>
#include <pm/error_text.h>
#include <pm/exception.h>
#include <pm/object.h>
#include <pm/text.h>
#include <pm/view.h>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

// A tree as a C++ program of today wants it, over PM_Object: values, optionals, ranges, UTF-8.
//
//     pm::Tree tree;
//     tree.set("\\media\\copies", 2);
//     int copies = tree.get<int>("\\media\\copies").value_or(1);
//     for (auto [node, depth] : tree.walk()) {
//         for (auto [name, value] : node.properties()) { ... }
//     }
//     auto [loaded, reports] = pm::load("plotter.pia");
//
// Paths, names and texts are UTF-8 in std::string or, where they are given, UTF-16 in std::u16string_view,
// and lose nothing (text.h). A path and an index mean what they mean to PM_Object::SetProperty().
//
// Failures are the library's exceptions (exception.h). Beside its own numbers, and with the place
// "pm::Tree" and the path as detail, these operations raise (PM_Warning):
//
//   51  a path, a tag or a name of a file that holds a zero
//   54  the property has another type than the one asked for, strict or not: nothing is read as what it isn't
//   58  a text of more than 4096 units, a number that 32 bits don't hold, bytes that `unsigned` doesn't count
//   59  a number or truth value whose property holds no bytes; a Value without a value in set()
//   78  a text to store that holds a zero
//
// When memory runs out, it is number 55 out of the store and std::bad_alloc out of the strings and lists made
// here. Either leaves the tree as a failed call of PM_Object does: usable, nodes made on the way staying.

namespace pm {

// Raw bytes, the value of a PROP_VOID property.
using Bytes = std::vector<std::byte>;

// A value of any type; index() is its PropType. A text is without its terminator. A PROP_STRING that was set
// from narrow bytes can't be told from a wide one: it shows as the units that the bytes make in pairs, an odd
// last one with a high byte of 0. Property::bytes() has what is stored, PM_Object::GetProperty() to
// `unsigned char*` the narrow text.
using Value = std::variant<std::monostate, std::int32_t, double, std::string, bool, Bytes>;

[[nodiscard]] inline PropType type_of(const Value& value) noexcept {
    return static_cast<PropType>(value.index());
}

// Something that a load passed over.
struct Report {
    int kind = 0;             // 1 warning, 2 error, 4 severe
    std::uint32_t number = 0; // error_number.h
    std::string place;        // the operation that met it, or for 88 the line
    std::string detail;       // what it concerns: for a bad line its number, the line and the file
};

// The text of an error number; empty without the message library.
[[nodiscard]] inline std::string error_text(std::uint32_t number) {
    ZT_String text;
    return pm_error_text(number, text) ? to_utf8(text.text()) : std::string();
}

// Asked at each report; without one every load goes on.
using OnReport = std::function<Answer(const Report&)>;

struct LoadOptions {
    PM_Object::FileType type = PM_Object::FILE_PIA;
    std::string base = "\\";                 // the node to load into
    std::optional<std::string> section = {}; // the one section of a DPIA file to load, by name
    int plotter = 0;                         // the plotter of a CFG file to load
    OnReport on_report = {};                 // Answer::stop ends the load with ZT_Canceled_Error
};

struct SaveOptions {
    PM_Object::FileType type = PM_Object::FILE_PIA; // or FILE_DPIA, FILE_DOC
    std::string tag = {};                           // stands in a PIA header; "compress" in it compresses
    std::string subtree = "\\";                     // the node to save
    bool utf8 = false;                              // PIA only: UTF-8 in place of the system's code page
};

namespace detail {

[[noreturn]] inline void raise(std::uint32_t number, const char16_t* detail) {
    throw PM_Warning(number, u"pm::Tree", detail, u"$Workfile: tree $ $Revision: #1 $");
}

// A text as the told interface takes it: wide and zero-terminated. A text that is so already is used as it
// is, one that isn't long lies on the stack.
class Terminated {
public:
    // A text that holds a zero raises `number`; the detail, if none is given, is what stands before it.
    explicit Terminated(const TextView& text, std::uint32_t number = PM_ERR_BAD_PATH,
                        const char16_t* detail = nullptr) {
        if (text.is_terminated()) {
            m_text = text.wide().data();
            m_size = text.size();
        } else {
            char16_t* const units = text.size() < capacity ? m_units : allocate(text.size());
            m_size = put(text, units);
            units[m_size] = u'\0';
            m_text = units;
        }
        if (text.holds_zero()) raise(number, detail != nullptr ? detail : m_text);
    }
    // The name of a file, see file_name_to_utf16().
    static Terminated file_name(const TextView& text) { return Terminated(text, FileName()); }
    Terminated(const Terminated&) = delete;
    Terminated& operator=(const Terminated&) = delete;

    const char16_t* text() const noexcept { return m_text; }
    std::size_t size() const noexcept { return m_size; }

private:
    static constexpr std::size_t capacity = 512;
    struct FileName {};

    Terminated(const TextView& text, FileName)
        : m_long(text.is_wide() ? std::u16string(text.wide()) : file_name_to_utf16(text.utf8())),
          m_size(m_long.size()), m_text(m_long.c_str()) {
        if (text.holds_zero()) raise(PM_ERR_BAD_PATH, m_text);
    }

    char16_t* allocate(std::size_t size) {
        m_long.resize(size);
        return m_long.data();
    }

    static std::size_t put(const TextView& text, char16_t* units) noexcept {
        if (!text.is_wide()) return decode_utf8(text.utf8(), Malformed::replace, units);
        return text.wide().copy(units, text.size());
    }

    std::u16string m_long;
    std::size_t m_size = 0;
    const char16_t* m_text = nullptr;
    char16_t m_units[capacity];
};

// A number as it is stored; fewer bytes than it takes are its low ones.
template<class Number>
Number stored_number(const PM_Property_View& property) {
    if (property.data == nullptr) raise(PM_ERR_NO_VALUE, property.name);
    if (property.size > sizeof(Number)) raise(PM_ERR_VALUE_TOO_LARGE, property.name);
    Number number{};
    if (property.size == sizeof(Number)) {
        std::memcpy(&number, property.data, sizeof(Number));
    } else {
        std::memcpy(&number, property.data, property.size);
    }
    return number;
}

// Calls `use` with the units of a stored text, without its terminator.
template<class Use>
auto with_stored_text(const PM_Property_View& property, Use use) {
    constexpr std::size_t unit = sizeof(char16_t);
    const auto without_end = [](std::u16string_view text) {
        if (!text.empty() && text.back() == u'\0') text.remove_suffix(1);
        return text;
    };
    if (property.size % unit == 0 && reinterpret_cast<std::uintptr_t>(property.data) % unit == 0) {
        return use(without_end({static_cast<const char16_t*>(property.data), property.size / unit}));
    }
    std::u16string text((property.size + unit - 1) / unit, u'\0');
    std::memcpy(text.data(), property.data, property.size);
    return use(without_end(text));
}

inline Bytes stored_bytes(const PM_Property_View& property) {
    const auto* const bytes = static_cast<const std::byte*>(property.data);
    return {bytes, bytes + property.size};
}

template<class T>
concept Integer = std::signed_integral<T> && sizeof(T) >= sizeof(std::int32_t);

// What get() and at() can give: an integer of 32 bits or more, float, double, bool, std::string (UTF-8),
// std::u16string, Bytes, Value.
template<class T>
concept Readable = Integer<T> || std::same_as<T, float> || std::same_as<T, double> || std::same_as<T, bool> ||
    std::same_as<T, std::string> || std::same_as<T, std::u16string> || std::same_as<T, Bytes> ||
    std::same_as<T, Value>;

template<Readable T>
constexpr PropType type_for() {
    if constexpr (std::same_as<T, bool>) return PROP_BOOL;
    if constexpr (Integer<T>) return PROP_LONG;
    if constexpr (std::floating_point<T>) return PROP_DOUBLE;
    if constexpr (std::same_as<T, Bytes>) return PROP_VOID;
    return PROP_STRING;
}

template<Readable T>
T stored_as(const PM_Property_View& property) {
    if constexpr (std::same_as<T, bool>) {
        return stored_number<unsigned char>(property) != 0;
    } else if constexpr (Integer<T>) {
        return stored_number<std::int32_t>(property);
    } else if constexpr (std::floating_point<T>) {
        return static_cast<T>(stored_number<double>(property));
    } else if constexpr (std::same_as<T, std::string>) {
        return with_stored_text(property, [](std::u16string_view text) { return to_utf8(text); });
    } else if constexpr (std::same_as<T, std::u16string>) {
        return with_stored_text(property, [](std::u16string_view text) { return std::u16string(text); });
    } else {
        return stored_bytes(property);
    }
}

inline Value stored_value(const PM_Property_View& property) {
    switch (property.type) {
    case PROP_LONG:
        return stored_as<std::int32_t>(property);
    case PROP_DOUBLE:
        return stored_as<double>(property);
    case PROP_STRING:
        return stored_as<std::string>(property);
    case PROP_BOOL:
        return stored_as<bool>(property);
    case PROP_VOID:
        return stored_as<Bytes>(property);
    default:
        return {};
    }
}

} // namespace detail

// One property of a node. A handle: valid until the property is deleted or its tree dies.
class Property {
public:
    Property() = default;
    explicit Property(const PM_Property& property) noexcept : m_property(&property) {}

    [[nodiscard]] std::u16string_view name16() const noexcept { return view().name; }
    [[nodiscard]] std::string name() const { return to_utf8(name16()); }
    [[nodiscard]] PropType type() const noexcept { return view().type; }
    // Whether only this type may be read and written through PM_Object.
    [[nodiscard]] bool strict() const noexcept { return view().strict; }
    // What is stored, a text with its terminator; valid until the value changes.
    [[nodiscard]] std::span<const std::byte> bytes() const noexcept {
        const PM_Property_View property = view();
        return {static_cast<const std::byte*>(property.data), property.size};
    }
    // The value as its own type. Numbers 58 and 59 as above, with the property's name.
    [[nodiscard]] Value value() const { return detail::stored_value(view()); }
    // The value as a type that is known; number 54, with the property's name, for another.
    template<detail::Readable T>
    [[nodiscard]] T as() const {
        if constexpr (std::same_as<T, Value>) {
            return value();
        } else {
            const PM_Property_View property = view();
            if (property.type != detail::type_for<T>()) detail::raise(PM_ERR_WRONG_TYPE, property.name);
            return detail::stored_as<T>(property);
        }
    }

    [[nodiscard]] PM_Property_View view() const noexcept { return pm_view(*m_property); }
    [[nodiscard]] const PM_Property* handle() const noexcept { return m_property; }
    friend bool operator==(const Property&, const Property&) = default;

    // auto [name, value] = property;
    template<std::size_t Index>
    [[nodiscard]] friend auto get(const Property& property) {
        if constexpr (Index == 0) {
            return property.name();
        } else {
            return property.value();
        }
    }

private:
    const PM_Property* m_property = nullptr;
};

class Node;

namespace detail {

// A forward iterator over handles that come one from the other. `Step` holds the position: it compares, and
// has read(), next() and done().
template<class Step, class Handle>
class HandleIterator {
public:
    using value_type = Handle;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;

    HandleIterator() = default;
    explicit HandleIterator(Step step) noexcept : m_step(step) {}
    Handle operator*() const noexcept { return m_step.read(); }
    HandleIterator& operator++() noexcept {
        m_step.next();
        return *this;
    }
    HandleIterator operator++(int) noexcept {
        HandleIterator before = *this;
        m_step.next();
        return before;
    }
    friend bool operator==(const HandleIterator&, const HandleIterator&) = default;
    friend bool operator==(const HandleIterator& it, std::default_sentinel_t) noexcept {
        return it.m_step.done();
    }

private:
    Step m_step;
};

template<class Step, class Handle>
class HandleRange : public std::ranges::view_base {
public:
    HandleRange() = default;
    explicit HandleRange(Step first) noexcept : m_first(first) {}
    auto begin() const noexcept { return HandleIterator<Step, Handle>(m_first); }
    static std::default_sentinel_t end() noexcept { return {}; }
    [[nodiscard]] bool empty() const noexcept { return m_first.done(); }
    // Of a range that isn't empty.
    [[nodiscard]] Handle front() const noexcept { return m_first.read(); }

private:
    Step m_first;
};

struct PropertyStep {
    const PM_Property* at = nullptr;
    Property read() const noexcept { return Property(*at); }
    void next() noexcept { at = pm_view(*at).next; }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const PropertyStep&, const PropertyStep&) = default;
};

struct ChildStep {
    const PM_Node* at = nullptr;
    Node read() const noexcept;
    void next() noexcept { at = pm_view(*at).next_sibling; }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const ChildStep&, const ChildStep&) = default;
};

struct WalkStep {
    const PM_Node* at = nullptr;
    int depth = 0;
    int levels = 0; // 0: all
    std::pair<Node, int> read() const noexcept;
    void next() noexcept {
        PM_Node_View node = pm_view(*at);
        if (node.first_child != nullptr && (levels <= 0 || depth < levels)) {
            at = node.first_child;
            ++depth;
            return;
        }
        while (depth > 0 && node.next_sibling == nullptr) {
            node = pm_view(*node.parent);
            --depth;
        }
        at = depth > 0 ? node.next_sibling : nullptr;
    }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const WalkStep&, const WalkStep&) = default;
};

} // namespace detail

// Forward ranges, in the order of creation. Their iterators stay valid until what they stand on is deleted,
// also when the range itself is gone.
using Properties = detail::HandleRange<detail::PropertyStep, Property>;
using Children = detail::HandleRange<detail::ChildStep, Node>;
// Pairs of a node and its depth below the first one, which has 0; a node comes before its children.
using Walk = detail::HandleRange<detail::WalkStep, std::pair<Node, int>>;

// One node of a tree. A handle: valid until the node is deleted or its tree dies.
class Node {
public:
    Node() = default;
    explicit Node(const PM_Node& node) noexcept : m_node(&node) {}

    // "Root" for the root.
    [[nodiscard]] std::u16string_view name16() const noexcept { return view().name; }
    [[nodiscard]] std::string name() const { return to_utf8(name16()); }
    // From the root: "\media\size"; "\" for the root itself.
    [[nodiscard]] std::string path() const {
        if (is_root()) return "\\";
        std::vector<std::u16string_view> names;
        for (Node node = *this; !node.is_root(); node = *node.parent())
            names.push_back(node.name16());
        std::string path;
        std::for_each(names.rbegin(), names.rend(),
                      [&](std::u16string_view name) { (path += '\\') += to_utf8(name); });
        return path;
    }
    [[nodiscard]] bool is_root() const noexcept { return view().parent == nullptr; }
    [[nodiscard]] std::optional<Node> parent() const noexcept {
        const PM_Node* const parent = view().parent;
        return parent != nullptr ? std::optional(Node(*parent)) : std::nullopt;
    }

    [[nodiscard]] Properties properties() const noexcept {
        return Properties(detail::PropertyStep{view().first_property});
    }
    [[nodiscard]] Children children() const noexcept {
        return Children(detail::ChildStep{view().first_child});
    }
    // This node and what is below it, `levels` deep, 0 for all.
    [[nodiscard]] Walk walk(int levels = 0) const noexcept {
        return Walk(detail::WalkStep{m_node, 0, levels});
    }

    [[nodiscard]] PM_Node_View view() const noexcept { return pm_view(*m_node); }
    [[nodiscard]] const PM_Node* handle() const noexcept { return m_node; }
    friend bool operator==(const Node&, const Node&) = default;

private:
    const PM_Node* m_node = nullptr;
};

inline Node detail::ChildStep::read() const noexcept {
    return Node(*at);
}

inline std::pair<Node, int> detail::WalkStep::read() const noexcept {
    return {Node(*at), depth};
}

// Handles into a tree that is kept as a PM_Object.
[[nodiscard]] inline Node root_of(const PM_Object& object) {
    return Node(*pm_find_node(object, u"\\"));
}
// Nothing if there is no such node; the root for a path without components.
[[nodiscard]] inline std::optional<Node> find_node(const PM_Object& object, const TextView& path) {
    const PM_Node* const node = pm_find_node(object, detail::Terminated(path).text());
    return node != nullptr ? std::optional(Node(*node)) : std::nullopt;
}
// Nothing if there is no such property.
[[nodiscard]] inline std::optional<Property> find_property(const PM_Object& object, const TextView& path,
                                                           int index = -1) {
    const PM_Property* const property = pm_find_property(object, detail::Terminated(path).text(), index);
    return property != nullptr ? std::optional(Property(*property)) : std::nullopt;
}

// A tree of named nodes and typed properties. It owns its PM_Object; a tree that was moved from may only be
// assigned to or destroyed. It belongs to one thread at a time, reading included.
class Tree {
public:
    Tree() : m_state(std::make_unique<State>()) {}

    // The told interface of the same tree. Its loads, too, go on at each report and add it to reports().
    [[nodiscard]] PM_Object& object() noexcept { return m_state->object; }
    [[nodiscard]] const PM_Object& object() const noexcept { return m_state->object; }

    // The value at a path; nothing if there is no such property. T is one of detail::Readable; a float is
    // the stored double rounded. Number 54 for a property of another type.
    template<detail::Readable T>
    [[nodiscard]] std::optional<T> get(const TextView& path, int index = -1) const {
        const detail::Terminated wide(path);
        const PM_Property* const property = pm_find_property(object(), wide.text(), index);
        if (property == nullptr) return std::nullopt;
        return read<T>(*property, wide);
    }
    // The same, raising what PM_Object::getPropertySize() raises where there is no property: number 51 for a
    // name that nothing in the tree has, 86 for a missing node, 87 for a missing property.
    template<detail::Readable T>
    [[nodiscard]] T at(const TextView& path, int index = -1) const {
        const detail::Terminated wide(path);
        const PM_Property* const property = pm_find_property(object(), wide.text(), index);
        if (property == nullptr) {
            static_cast<void>(object().getPropertySize(wide.text(), index));
            detail::raise(PM_ERR_NO_SUCH_PROPERTY, wide.text());
        }
        return read<T>(*property, wide);
    }

    // Sets a value, making what is missing. T is an integer (number 58 if it needs more than 32 bits),
    // float, double, bool, text of either width, a span of bytes or a Value. Number 54 if the property is
    // strict and of another type; `strict` counts for the next time.
    template<class T>
    void set(const TextView& path, const T& value, int index = -1, bool strict = true) {
        const detail::Terminated wide(path);
        if constexpr (std::same_as<T, Value>) {
            std::visit([&](const auto& held) { store(wide, held, index, strict); }, value);
        } else {
            store(wide, value, index, strict);
        }
    }

    // Removes the property of that path or, if there is none, the node with all below it. False if there is
    // neither. Number 51 for the root.
    bool erase(const TextView& path, int index = -1) {
        const detail::Terminated wide(path);
        const std::u16string resolved = resolve(wide, index);
        if (!holds(wide, index, resolved)) return false;
        object().deletePath(resolved.c_str());
        return true;
    }

    // Whether there is a property, or a node, of that path.
    [[nodiscard]] bool contains(const TextView& path, int index = -1) const {
        const detail::Terminated wide(path);
        return holds(wide, index, resolve(wide, index));
    }

    [[nodiscard]] Node root() const { return root_of(object()); }
    // Nothing if there is no such node; the root for a path without components.
    [[nodiscard]] std::optional<Node> node(const TextView& path) const { return find_node(object(), path); }
    [[nodiscard]] std::optional<Property> property(const TextView& path, int index = -1) const {
        return find_property(object(), path, index);
    }
    [[nodiscard]] Walk walk(int levels = 0) const { return root().walk(levels); }

    // Read a file into this tree; gives the reports met. A failure is an exception: what was read before
    // stays, and reports() has the reports met before. File names: see file_name_to_utf16().
    std::vector<Report> load(const TextView& file, const LoadOptions& options = {}) {
        const detail::Terminated name = detail::Terminated::file_name(file);
        return collect(options, [&](const char16_t* base) {
            if (options.section) {
                const detail::Terminated section(*options.section);
                object().load_section(name.text(), options.type, base, section.text());
            } else if (options.type == PM_Object::FILE_CFG) {
                object().load_cfg_section(name.text(), options.type, base, options.plotter);
            } else {
                object().load(name.text(), options.type, base);
            }
        });
    }
    // From a stream, which stays open; it has no sections and no plotters.
    std::vector<Report> load(std::iostream& stream, const LoadOptions& options = {}) {
        return collect(options, [&](const char16_t* base) { object().load(stream, options.type, base); });
    }
    // The reports of the last load, also of one that ended with an exception.
    [[nodiscard]] const std::vector<Report>& reports() const noexcept { return m_state->collector.met; }

    // Write this tree to a file or a stream. The library hands no handler to a save: whatever it meets is an
    // exception, and there are no reports.
    void save(const TextView& file, const SaveOptions& options = {}) const {
        const detail::Terminated name = detail::Terminated::file_name(file);
        const detail::Terminated tag(options.tag);
        const detail::Terminated subtree(options.subtree);
        object().save(name.text(), options.type, tag.text(), subtree.text(), options.utf8);
    }
    void save(std::iostream& stream, const SaveOptions& options = {}) const {
        const detail::Terminated tag(options.tag);
        const detail::Terminated subtree(options.subtree);
        object().save(stream, options.type, tag.text(), subtree.text(), options.utf8);
    }

private:
    class Collector final : public ReportHandler {
    public:
        Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override {
            met.push_back({kind, number, to_utf8(place), to_utf8(detail)});
            return ask != nullptr && *ask ? (*ask)(met.back()) : Answer::go_on;
        }
        std::vector<Report> met;
        const OnReport* ask = nullptr; // of the load that runs
    };
    // Stays where it is when the tree moves: the object knows the collector's address.
    struct State {
        Collector collector;
        PM_Object object{&collector};
    };
    struct Asking {
        Collector& collector;
        ~Asking() { collector.ask = nullptr; }
    };

    template<class Load>
    std::vector<Report> collect(const LoadOptions& options, Load load) {
        const detail::Terminated base(options.base);
        Collector& collector = m_state->collector;
        collector.met.clear();
        collector.ask = &options.on_report;
        const Asking until_done{collector};
        load(base.text());
        return collector.met;
    }

    template<class T>
    static T read(const PM_Property& handle, const detail::Terminated& path) {
        const PM_Property_View property = pm_view(handle);
        if constexpr (std::same_as<T, Value>) {
            return detail::stored_value(property);
        } else {
            if (property.type != detail::type_for<T>()) detail::raise(PM_ERR_WRONG_TYPE, path.text());
            return detail::stored_as<T>(property);
        }
    }

    template<class T>
    void store(const detail::Terminated& path, const T& value, int index, bool strict) {
        if constexpr (std::same_as<T, std::monostate>) {
            detail::raise(PM_ERR_NO_VALUE, path.text());
        } else if constexpr (std::same_as<T, bool>) {
            object().SetProperty(path.text(), value, index, strict);
        } else if constexpr (std::integral<T>) {
            if (!std::in_range<std::int32_t>(value)) detail::raise(PM_ERR_VALUE_TOO_LARGE, path.text());
            object().SetProperty(path.text(), static_cast<int>(value), index, strict);
        } else if constexpr (std::floating_point<T>) {
            object().SetProperty(path.text(), static_cast<double>(value), index, strict);
        } else if constexpr (std::convertible_to<const T&, TextView>) {
            store_text(path, value, index, strict);
        } else {
            static_assert(std::ranges::contiguous_range<const T> && std::ranges::sized_range<const T>,
                          "a value is a number, a bool, a text, bytes or a pm::Value");
            store_bytes(path, std::as_bytes(std::span(value)), index, strict);
        }
    }

    void store_text(const detail::Terminated& path, const TextView& text, int index, bool strict) {
        constexpr std::size_t limit = 4096;
        const detail::Terminated wide(text, PM_ERR_INVALID_ARGUMENT, path.text());
        if (wide.size() > limit) detail::raise(PM_ERR_VALUE_TOO_LARGE, path.text());
        object().SetProperty(path.text(), wide.text(), index, strict);
    }

    void store_bytes(const detail::Terminated& path, std::span<const std::byte> bytes, int index,
                     bool strict) {
        if (!std::in_range<unsigned>(bytes.size())) detail::raise(PM_ERR_VALUE_TOO_LARGE, path.text());
        const void* const data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
        object().setVoidProperty(path.text(), data, static_cast<unsigned>(bytes.size()), index, strict);
    }

    // The path that SetProperty() makes of these.
    static std::u16string resolve(const detail::Terminated& path, int index) {
        std::u16string resolved(path.text(), path.size());
        const std::size_t star = resolved.find(u'*');
        const std::string digits = std::to_string(index);
        const std::u16string number(digits.begin(), digits.end());
        if (star != std::u16string::npos) {
            resolved.replace(star, 1, number);
        } else if (index != -1) {
            (resolved += u'\\') += number;
        }
        return resolved;
    }

    bool holds(const detail::Terminated& path, int index, const std::u16string& resolved) const {
        return pm_find_property(object(), path.text(), index) != nullptr ||
               pm_find_node(object(), resolved.c_str()) != nullptr;
    }

    std::unique_ptr<State> m_state;
};

// A loaded tree and what the load passed over.
struct Loaded {
    Tree tree;
    std::vector<Report> reports;
};

// Read a file into a new tree. Tree::load() is the form that keeps what was read before a failure.
[[nodiscard]] inline Loaded load(const TextView& file, const LoadOptions& options = {}) {
    Loaded loaded;
    loaded.reports = loaded.tree.load(file, options);
    return loaded;
}
[[nodiscard]] inline Loaded load(std::iostream& stream, const LoadOptions& options = {}) {
    Loaded loaded;
    loaded.reports = loaded.tree.load(stream, options);
    return loaded;
}

inline void save(const Tree& tree, const TextView& file, const SaveOptions& options = {}) {
    tree.save(file, options);
}
inline void save(const Tree& tree, std::iostream& stream, const SaveOptions& options = {}) {
    tree.save(stream, options);
}

} // namespace pm

template<>
struct std::tuple_size<pm::Property> : std::integral_constant<std::size_t, 2> {};
template<>
struct std::tuple_element<0, pm::Property> {
    using type = std::string;
};
template<>
struct std::tuple_element<1, pm::Property> {
    using type = pm::Value;
};

template<class Step, class Handle>
inline constexpr bool std::ranges::enable_borrowed_range<pm::detail::HandleRange<Step, Handle>> = true;
