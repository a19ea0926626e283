#pragma once

#include "content.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace pm::bench {

// A store of a comparison: one tree and what asks for it. Paths are prepared once in the form in which a
// program hands them to the store, so that what is timed is the store's own work.
class Peer {
public:
    virtual ~Peer() = default;

    virtual const char* name() const = 0;
    // Greatest relative error of a double that was written and read back: some readers round on the way.
    virtual double tolerance() const { return 0; }
    // Largest content of a shape that is worth trying; beyond, a load takes time that grows with the square.
    virtual std::size_t limit(ContentShape) const { return static_cast<std::size_t>(-1); }

    // Makes the tree of the content and the queries for it.
    virtual void build(const Content& content) = 0;
    virtual void load(const std::string& text) = 0; // in place of the tree at hand
    virtual std::string save() = 0;
    virtual void destroy() = 0;

    // Reads properties by their paths, each as the type that the content has; a sum over the values.
    virtual std::uint64_t get(std::span<const std::uint32_t> indexes) = 0;
    // Reads everything in the store's order, names included; a sum over names and values. `count` is the
    // number of values.
    virtual std::uint64_t walk(std::size_t& count) = 0;
    // Sets properties to what they are; false if that isn't compared.
    virtual bool set(std::span<const std::uint32_t>) { return false; }
    // Whether the property holds the value of the content, its text compared whole.
    virtual bool check(std::uint32_t index) = 0;
};

// Sums cheaply, so that nothing but the reading is timed.
struct SumSink {
    std::uint64_t sum = 0;

    void operator()(int value) { sum += static_cast<std::uint64_t>(value); }
    void operator()(double value) { sum += static_cast<std::uint64_t>(static_cast<std::int64_t>(value)); }
    void operator()(bool value) { sum += value ? 1 : 2; }
    void operator()(std::string_view text) { add_text(text); }
    void operator()(std::u16string_view text) { add_text(text); }

private:
    template<class Text>
    void add_text(Text text) {
        sum += text.size() + (text.empty() ? 0U : static_cast<unsigned char>(text.back()));
    }
};

// Compares with a value of the content.
struct CheckSink {
    const ContentValue& expected;
    double tolerance;
    bool equal = false;

    void operator()(int value) { equal = same(value); }
    void operator()(bool value) { equal = same(value); }
    void operator()(std::string_view text) { equal = same(text); }
    void operator()(std::u16string_view text) {
        const std::string narrow(text.begin(), text.end()); // the content is ASCII
        equal = same(std::string_view(narrow));
    }
    void operator()(double value) {
        const double* const wanted = std::get_if<double>(&expected);
        const auto distance = [](double a, double b) { return a < b ? b - a : a - b; };
        equal = wanted != nullptr && distance(value, *wanted) <= tolerance * distance(*wanted, 0);
    }

private:
    template<class Value>
    bool same(Value value) const {
        const Value* const wanted = std::get_if<Value>(&expected);
        return wanted != nullptr && *wanted == value;
    }
};

// The loops over a store's own `fetch(index, type, sink)`. ContentValue's index tells the type to read. A
// program knows that type where it asks; here it comes from a table of a byte a property, so that a get in
// random order waits for its store and not for the content.
template<class Store>
class PeerLoops : public Peer {
public:
    std::uint64_t get(std::span<const std::uint32_t> indexes) final {
        static const std::array<ContentValue, 4> values{0, 0.0, std::string_view(), false};
        SumSink sink;
        for (const std::uint32_t index : indexes)
            store().fetch(index, values[m_types[index]], sink);
        return sink.sum;
    }

    bool check(std::uint32_t index) final {
        CheckSink sink{m_content->properties()[index].value, tolerance()};
        store().fetch(index, sink.expected, sink);
        return sink.equal;
    }

protected:
    const Content& content() const { return *m_content; }
    const ContentProperty& property(std::uint32_t index) const { return m_content->properties()[index]; }
    void set_content(const Content& content) {
        m_content = &content;
        m_types.clear();
        for (const ContentProperty& each : content.properties())
            m_types.push_back(static_cast<std::uint8_t>(each.value.index()));
    }

private:
    Store& store() { return static_cast<Store&>(*this); }

    const Content* m_content = nullptr;
    std::vector<std::uint8_t> m_types; // of the properties, as ContentValue numbers them
};

std::unique_ptr<Peer> make_pia_memory_peer();
std::unique_ptr<Peer> make_pia_file_peer();
std::unique_ptr<Peer> make_pugixml_peer();
std::unique_ptr<Peer> make_rapidjson_peer();
std::unique_ptr<Peer> make_nlohmann_peer();
std::unique_ptr<Peer> make_property_tree_peer();
std::unique_ptr<Peer> make_key_file_peer();
std::unique_ptr<Peer> make_libconfig_peer();
std::unique_ptr<Peer> make_tomlplusplus_peer();

} // namespace pm::bench
