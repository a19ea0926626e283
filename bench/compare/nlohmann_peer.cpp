#include "peer.h"

#include <nlohmann/json.hpp>

namespace pm::bench {
namespace {

using nlohmann::json;

class NlohmannPeer : public PeerLoops<NlohmannPeer> {
public:
    const char* name() const override { return "nlohmann/json"; }

    void build(const Content& content) override {
        set_content(content);
        m_json = std::make_unique<json>(json::object());
        build_tree(
            content, m_json.get(),
            [](json* parent, std::string_view name) {
                return &parent->emplace(std::string(name), json::object()).first.value();
            },
            [](json* node, std::string_view name, auto value) { node->emplace(std::string(name), value); });
        for (const ContentNode& node : content.nodes())
            m_paths.emplace_back(node.path.begin(), node.path.end());
        for (const ContentProperty& property : content.properties())
            m_names.emplace_back(property.name);
    }

    void load(const std::string& text) override { m_json = std::make_unique<json>(json::parse(text)); }
    std::string save() override { return m_json->dump(); }
    void destroy() override { m_json.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const json* value = m_json.get();
        for (const std::string& name : m_paths[property(index).node])
            value = &value->at(name);
        value = &value->at(m_names[index]);
        switch (type.index()) {
        case 0:
            return sink(value->get<int>());
        case 1:
            return sink(value->get<double>());
        case 2:
            return sink(std::string_view(value->get_ref<const std::string&>()));
        default:
            return sink(value->get<bool>());
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        SumSink sink;
        count = 0;
        walk(*m_json, sink, count);
        return sink.sum;
    }

private:
    static void walk(const json& parent, SumSink& sink, std::size_t& count) {
        for (auto item = parent.begin(); item != parent.end(); ++item) {
            if (item->is_object()) {
                walk(*item, sink, count);
                continue;
            }
            sink.sum += static_cast<unsigned char>(item.key().front());
            ++count;
            if (item->is_number_integer()) {
                sink(item->get<int>());
            } else if (item->is_number_float()) {
                sink(item->get<double>());
            } else if (item->is_string()) {
                sink(std::string_view(item->get_ref<const std::string&>()));
            } else {
                sink(item->get<bool>());
            }
        }
    }

    std::unique_ptr<json> m_json;
    std::vector<std::vector<std::string>> m_paths; // of the nodes
    std::vector<std::string> m_names;              // of the properties
};

} // namespace

std::unique_ptr<Peer> make_nlohmann_peer() {
    return std::make_unique<NlohmannPeer>();
}

} // namespace pm::bench
