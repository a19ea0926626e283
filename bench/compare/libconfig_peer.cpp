#include "peer.h"

#include <cstdio>
#include <cstdlib>
#include <libconfig.h++>

namespace pm::bench {
namespace {

using libconfig::Setting;

class LibconfigPeer : public PeerLoops<LibconfigPeer> {
public:
    const char* name() const override { return "libconfig++"; }
    // It writes fewer digits than a double has.
    double tolerance() const override { return 1e-5; }
    // A new setting is compared with all that its group has.
    std::size_t limit(ContentShape shape) const override {
        if (shape == ContentShape::one_node) return 1000;
        if (shape == ContentShape::thousand_a_node) return 10'000;
        return static_cast<std::size_t>(-1);
    }

    void build(const Content& content) override {
        set_content(content);
        m_config = std::make_unique<libconfig::Config>();
        build_tree(
            content, &m_config->getRoot(),
            [](Setting* parent, std::string_view name) {
                return &parent->add(name.data(), Setting::TypeGroup);
            },
            [](Setting* node, std::string_view name, auto value) { add_value(*node, name.data(), value); });
        for (const ContentProperty& property : content.properties())
            m_paths.push_back(content.joined_path(property, '.'));
    }

    void load(const std::string& text) override {
        m_config = std::make_unique<libconfig::Config>();
        m_config->readString(text);
    }

    std::string save() override {
        char* text = nullptr;
        std::size_t size = 0;
        std::FILE* const stream = open_memstream(&text, &size);
        m_config->write(stream);
        std::fclose(stream);
        std::string result(text, size);
        std::free(text);
        return result;
    }

    void destroy() override { m_config.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const Setting& setting = m_config->lookup(m_paths[index]);
        switch (type.index()) {
        case 0:
            return sink(static_cast<int>(setting));
        case 1:
            return sink(static_cast<double>(setting));
        case 2:
            return sink(std::string_view(setting.c_str()));
        default:
            return sink(static_cast<bool>(setting));
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        SumSink sink;
        count = 0;
        walk(m_config->getRoot(), sink, count);
        return sink.sum;
    }

private:
    static void add_value(Setting& node, const char* name, int value) {
        node.add(name, Setting::TypeInt) = value;
    }
    static void add_value(Setting& node, const char* name, double value) {
        node.add(name, Setting::TypeFloat) = value;
    }
    static void add_value(Setting& node, const char* name, bool value) {
        node.add(name, Setting::TypeBoolean) = value;
    }
    static void add_value(Setting& node, const char* name, std::string_view value) {
        node.add(name, Setting::TypeString) = value.data();
    }

    static void walk(const Setting& parent, SumSink& sink, std::size_t& count) {
        for (int index = 0; index < parent.getLength(); ++index) {
            const Setting& setting = parent[index];
            if (setting.isGroup()) {
                walk(setting, sink, count);
                continue;
            }
            sink.sum += static_cast<unsigned char>(*setting.getName());
            ++count;
            switch (setting.getType()) {
            case Setting::TypeInt:
                sink(static_cast<int>(setting));
                break;
            case Setting::TypeFloat:
                sink(static_cast<double>(setting));
                break;
            case Setting::TypeString:
                sink(std::string_view(setting.c_str()));
                break;
            default:
                sink(static_cast<bool>(setting));
            }
        }
    }

    std::unique_ptr<libconfig::Config> m_config;
    std::vector<std::string> m_paths;
};

} // namespace

std::unique_ptr<Peer> make_libconfig_peer() {
    return std::make_unique<LibconfigPeer>();
}

} // namespace pm::bench
