#include "peer.h"

#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <sstream>

namespace pm::bench {
namespace {

using boost::property_tree::ptree;

// Boost.PropertyTree with its own text form, INFO.
class PropertyTreePeer : public PeerLoops<PropertyTreePeer> {
public:
    const char* name() const override { return "PropertyTree (INFO)"; }

    void build(const Content& content) override {
        set_content(content);
        m_tree = std::make_unique<ptree>();
        const auto add = [](ptree* parent, std::string_view name) {
            return &parent->push_back({std::string(name), ptree()})->second;
        };
        build_tree(content, m_tree.get(), add, [&](ptree* node, std::string_view name, auto value) {
            if constexpr (std::is_same_v<decltype(value), std::string_view>) {
                add(node, name)->data() = value;
            } else {
                add(node, name)->put_value(value);
            }
        });
        for (const ContentProperty& property : content.properties())
            m_paths.push_back(content.joined_path(property, '.'));
    }

    void load(const std::string& text) override {
        m_tree = std::make_unique<ptree>();
        std::istringstream stream(text);
        boost::property_tree::read_info(stream, *m_tree);
    }

    std::string save() override {
        std::ostringstream stream;
        boost::property_tree::write_info(stream, *m_tree);
        return std::move(stream).str();
    }

    void destroy() override { m_tree.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const ptree& node = m_tree->get_child(m_paths[index]);
        switch (type.index()) {
        case 0:
            return sink(node.get_value<int>());
        case 1:
            return sink(node.get_value<double>());
        case 2:
            return sink(std::string_view(node.data()));
        default:
            return sink(node.get_value<bool>());
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        count = 0;
        return walk(*m_tree, count);
    }

private:
    static std::uint64_t walk(const ptree& parent, std::size_t& count) {
        std::uint64_t sum = 0;
        for (const auto& [name, node] : parent) {
            if (!node.empty()) {
                sum += walk(node, count);
                continue;
            }
            sum += static_cast<unsigned char>(name.front()) + node.data().size();
            ++count;
        }
        return sum;
    }

    std::unique_ptr<ptree> m_tree;
    std::vector<std::string> m_paths;
};

} // namespace

std::unique_ptr<Peer> make_property_tree_peer() {
    return std::make_unique<PropertyTreePeer>();
}

} // namespace pm::bench
