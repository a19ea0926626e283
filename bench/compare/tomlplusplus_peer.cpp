#include "peer.h"

#include <sstream>
#include <toml++/toml.h>

namespace pm::bench {
namespace {

class TomlplusplusPeer : public PeerLoops<TomlplusplusPeer> {
public:
    const char* name() const override { return "toml++"; }

    void build(const Content& content) override {
        set_content(content);
        m_table = std::make_unique<toml::table>();
        build_tree(
            content, m_table.get(),
            [](toml::table* parent, std::string_view name) {
                return parent->insert(name, toml::table()).first->second.as_table();
            },
            [](toml::table* node, std::string_view name, auto value) { node->insert(name, value); });
    }

    void load(const std::string& text) override {
        m_table = std::make_unique<toml::table>(toml::parse(text));
    }

    std::string save() override {
        std::ostringstream stream;
        stream << *m_table;
        return std::move(stream).str();
    }

    void destroy() override { m_table.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const toml::table* node = m_table.get();
        for (const std::string_view name : content().path_of(property(index)))
            node = node->get_as<toml::table>(name);
        const toml::node& value = *node->get(property(index).name);
        switch (type.index()) {
        case 0:
            return sink(static_cast<int>(**value.as_integer()));
        case 1:
            return sink(**value.as_floating_point());
        case 2:
            return sink(std::string_view(**value.as_string()));
        default:
            return sink(**value.as_boolean());
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        SumSink sink;
        count = 0;
        walk(*m_table, sink, count);
        return sink.sum;
    }

private:
    static void walk(const toml::table& parent, SumSink& sink, std::size_t& count) {
        for (const auto& [name, node] : parent) {
            if (const toml::table* const table = node.as_table()) {
                walk(*table, sink, count);
                continue;
            }
            sink.sum += static_cast<unsigned char>(name.str().front());
            ++count;
            if (const auto* const integer = node.as_integer()) {
                sink(static_cast<int>(integer->get()));
            } else if (const auto* const number = node.as_floating_point()) {
                sink(number->get());
            } else if (const auto* const text = node.as_string()) {
                sink(std::string_view(text->get()));
            } else if (const auto* const truth = node.as_boolean()) {
                sink(truth->get());
            }
        }
    }

    std::unique_ptr<toml::table> m_table;
};

} // namespace

std::unique_ptr<Peer> make_tomlplusplus_peer() {
    return std::make_unique<TomlplusplusPeer>();
}

} // namespace pm::bench
