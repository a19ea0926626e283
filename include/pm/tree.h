#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <pm/detail/terminated.h>
#include <pm/error_handler.h>
#include <pm/error_text.h>
#include <pm/node.h>
#include <pm/object.h>
#include <pm/text.h>
#include <pm/value.h>
#include <string>
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
// get(), at() and the handles of node.h read what is there without a copy but the one they give. In all, a
// call here takes up to 1.2 times what PM_Object takes for the same, a walk with values half of it.
//
// When memory runs out, it is number 55 out of the store and std::bad_alloc out of the strings and lists made
// here. Either leaves the tree as a failed call of PM_Object does: usable, nodes made on the way staying.

namespace pm {

// Something that a load passed over. Texts are UTF-8, cut as ZT_Exception cuts them.
struct Report {
    int kind = 0;             // 1 warning, 2 error, 4 severe
    std::uint32_t number = 0; // error_number.h
    std::string place;        // the operation that met it, or for 88 the line
    std::string detail;       // what it concerns: for a bad line its number, the line and the file
};

// The text of an error number; empty without the message library.
[[nodiscard]] std::string error_text(std::uint32_t number);

// Asked at each report, before the load goes on; without one it goes on at every report. What isn't reported
// but thrown ends it either way: in PIA text a line without "=", "{" and "}", number 57. What this throws
// ends the load and comes out of it. It may not use the tree that is being loaded.
using OnReport = std::function<Answer(const Report&)>;

// How to read. Texts are UTF-8. A type that can't be read so is number 67.
struct LoadOptions {
    PM_Object::FileType type = PM_Object::FILE_PIA;
    std::string base = "\\";                 // the node to load into
    std::optional<std::string> section = {}; // the one section of a DPIA file to load, by name
    int plotter = 0;                         // the plotter of a CFG file to load; 0 for other types
    OnReport on_report = {};                 // Answer::stop ends the load with ZT_Canceled_Error
};

// How to write. Texts are UTF-8. A type that isn't written is number 67.
struct SaveOptions {
    PM_Object::FileType type = PM_Object::FILE_PIA; // or FILE_DPIA, FILE_DOC
    std::string tag = {};                           // stands in a PIA header; "compress" in it compresses
    std::string subtree = "\\";                     // the node to save
    bool utf8 = false;                              // PIA only: UTF-8 in place of the system's code page
};

// A tree of named nodes and typed properties. It owns its PM_Object; a tree that was moved from may only be
// assigned to or destroyed. It belongs to one thread at a time, reading included.
class Tree {
public:
    // An empty tree.
    Tree() : m_state(std::make_unique<State>()) {}

    // The same tree as the exported class. Its loads, too, go on at each report and add it to reports().
    [[nodiscard]] PM_Object& object() noexcept { return m_state->object; }
    [[nodiscard]] const PM_Object& object() const noexcept { return m_state->object; }

    // The value at a path, nothing if there is no such property. Number 54 for a property of another type.
    template<Readable T>
    [[nodiscard]] std::optional<T> get(const TextView& path, int index = -1) const;
    // The same, raising what PM_Object::getPropertySize() raises where there is no property: number 51 for a
    // name that nothing in the tree has, 86 for a missing node, 87 for a missing property.
    template<Readable T>
    [[nodiscard]] T at(const TextView& path, int index = -1) const;

    // Sets a value, making what is missing. T is an integer (number 58 if it needs more than 32 bits),
    // float, double, bool, text of either width, a contiguous range of bytes or of what is copied as bytes,
    // or a Value. Number 54 if the property is strict and of another type; `strict` is what counts for the
    // next write.
    template<class T>
    void set(const TextView& path, const T& value, int index = -1, bool strict = true);

    // Removes the property of that path or, if there is none, the node with all below it. False if there is
    // neither. Number 51 for the root, and as pm_find_property() for a path that is too long or too deep.
    bool erase(const TextView& path, int index = -1);
    // Whether there is a property, or a node, of that path. Number 51 as pm_find_property(); property_at()
    // and node_exists() of inspect.h ask without it.
    [[nodiscard]] bool contains(const TextView& path, int index = -1) const;

    [[nodiscard]] Node root() const { return root_of(object()); }
    // Nothing if there is no such node; the root for a path without components. "*" is ordinary.
    [[nodiscard]] std::optional<Node> node(const TextView& path) const { return find_node(object(), path); }
    // Nothing if there is no such property.
    [[nodiscard]] std::optional<Property> property(const TextView& path, int index = -1) const {
        return find_property(object(), path, index);
    }
    // All nodes, the root first, or those `levels` deep.
    [[nodiscard]] Walk walk(int levels = 0) const { return root().walk(levels); }

    // Read a file into this tree; gives the reports met. A failure is an exception: what was read before
    // stays, and reports() has the reports met before. File names: see file_name_to_utf16().
    std::vector<Report> load(const TextView& file, const LoadOptions& options = {});
    // From a stream, which stays open; it has no sections and no plotters.
    std::vector<Report> load(std::iostream& stream, const LoadOptions& options = {});
    // The reports of the last load, also of one that ended with an exception.
    [[nodiscard]] const std::vector<Report>& reports() const noexcept { return m_state->collector.met; }

    // Write this tree to a file or a stream. The library hands no handler to a save: whatever it meets is an
    // exception, and there are no reports.
    void save(const TextView& file, const SaveOptions& options = {}) const;
    void save(std::iostream& stream, const SaveOptions& options = {}) const;

private:
    class Collector final : public ReportHandler {
    public:
        Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override;
        std::vector<Report> met;
        const OnReport* ask = nullptr; // of the load that runs
    };
    // Stays where it is when the tree moves: the object knows the collector's address.
    struct State {
        Collector collector;
        PM_Object object{&collector};
    };

    template<class Load>
    std::vector<Report> collect(const LoadOptions& options, Load load);
    bool holds(const detail::Terminated& path, int index, const std::u16string& resolved) const;

    std::unique_ptr<State> m_state;
};

// A loaded tree and what the load passed over.
struct Loaded {
    Tree tree;
    std::vector<Report> reports;
};

// Read a file into a new tree. Tree::load() is the form that keeps what was read before a failure.
[[nodiscard]] Loaded load(const TextView& file, const LoadOptions& options = {});
[[nodiscard]] Loaded load(std::iostream& stream, const LoadOptions& options = {});

// Tree::save() as a function.
void save(const Tree& tree, const TextView& file, const SaveOptions& options = {});
void save(const Tree& tree, std::iostream& stream, const SaveOptions& options = {});

} // namespace pm

#include <pm/detail/tree.h>
