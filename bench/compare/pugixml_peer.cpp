#include "peer.h"

#include <pugixml.hpp>
#include <stdexcept>

namespace pm::bench {
namespace {

// An element for each node and each property, whose text is the value.
class PugixmlPeer : public PeerLoops<PugixmlPeer> {
public:
    const char* name() const override { return "pugixml"; }

    void build(const Content& content) override {
        set_content(content);
        m_document = std::make_unique<pugi::xml_document>();
        const auto add = [](pugi::xml_node parent, std::string_view name) {
            return parent.append_child(name.data());
        };
        build_tree(content, add(*m_document, "root"), add,
                   [&](pugi::xml_node node, std::string_view name, auto value) {
                       set_text(add(node, name).text(), value);
                   });
    }

    void load(const std::string& text) override {
        m_document = std::make_unique<pugi::xml_document>();
        if (!m_document->load_buffer(text.data(), text.size())) throw std::runtime_error("pugixml: no XML");
    }

    std::string save() override {
        struct Writer : pugi::xml_writer {
            std::string text;
            void write(const void* data, std::size_t size) override {
                text.append(static_cast<const char*>(data), size);
            }
        } writer;
        m_document->save(writer, " ");
        return std::move(writer.text);
    }

    void destroy() override { m_document.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        pugi::xml_node node = m_document->document_element();
        for (const std::string_view name : content().path_of(property(index)))
            node = node.child(name.data());
        const pugi::xml_text text = node.child(property(index).name.data()).text();
        if (text.empty()) return;
        switch (type.index()) {
        case 0:
            return sink(text.as_int());
        case 1:
            return sink(text.as_double());
        case 2:
            return sink(std::string_view(text.get()));
        default:
            return sink(text.as_bool());
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        count = 0;
        return walk(m_document->document_element(), count);
    }

private:
    static void set_text(pugi::xml_text text, std::string_view value) { text.set(value.data()); }
    template<class Value>
    static void set_text(pugi::xml_text text, Value value) {
        text.set(value);
    }

    static std::uint64_t walk(pugi::xml_node parent, std::size_t& count) {
        std::uint64_t sum = 0;
        for (const pugi::xml_node node : parent) {
            const pugi::xml_node first = node.first_child();
            if (first.type() == pugi::node_element) {
                sum += walk(node, count);
                continue;
            }
            sum += static_cast<unsigned char>(*node.name());
            sum += static_cast<unsigned char>(*first.value());
            ++count;
        }
        return sum;
    }

    std::unique_ptr<pugi::xml_document> m_document;
};

} // namespace

std::unique_ptr<Peer> make_pugixml_peer() {
    return std::make_unique<PugixmlPeer>();
}

} // namespace pm::bench
