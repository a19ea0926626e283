#include "peer.h"

#include <glib.h>
#include <stdexcept>

namespace pm::bench {
namespace {

struct Free {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
    void operator()(char* text) const { g_free(text); }
    void operator()(char** texts) const { g_strfreev(texts); }
};

// GLib's key file. It has two levels, so that the path of a node is the name of its group.
class KeyFilePeer : public PeerLoops<KeyFilePeer> {
public:
    const char* name() const override { return "GKeyFile"; }

    void build(const Content& content) override {
        set_content(content);
        m_file.reset(g_key_file_new());
        for (const ContentNode& node : content.nodes()) {
            std::string group;
            for (const std::string_view name : node.path)
                group.append(group.empty() ? "" : "/").append(name);
            m_groups.push_back(std::move(group));
        }
        for (const ContentProperty& property : content.properties()) {
            std::visit(
                [&](auto value) { set_value(m_groups[property.node].c_str(), property.name.data(), value); },
                property.value);
        }
    }

    void load(const std::string& text) override {
        m_file.reset(g_key_file_new());
        if (!g_key_file_load_from_data(m_file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr)) {
            throw std::runtime_error("GKeyFile: no key file");
        }
    }

    std::string save() override {
        gsize size = 0;
        const std::unique_ptr<char, Free> text(g_key_file_to_data(m_file.get(), &size, nullptr));
        return {text.get(), size};
    }

    void destroy() override { m_file.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const char* const group = m_groups[property(index).node].c_str();
        const char* const key = property(index).name.data();
        switch (type.index()) {
        case 0:
            return sink(g_key_file_get_integer(m_file.get(), group, key, nullptr));
        case 1:
            return sink(g_key_file_get_double(m_file.get(), group, key, nullptr));
        case 2: {
            const std::unique_ptr<char, Free> text(g_key_file_get_string(m_file.get(), group, key, nullptr));
            if (text) sink(std::string_view(text.get()));
            return;
        }
        default:
            return sink(g_key_file_get_boolean(m_file.get(), group, key, nullptr) != 0);
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        std::uint64_t sum = 0;
        count = 0;
        const std::unique_ptr<char*, Free> groups(g_key_file_get_groups(m_file.get(), nullptr));
        for (char** group = groups.get(); *group != nullptr; ++group) {
            const std::unique_ptr<char*, Free> keys(
                g_key_file_get_keys(m_file.get(), *group, nullptr, nullptr));
            for (char** key = keys.get(); *key != nullptr; ++key) {
                const std::unique_ptr<char, Free> value(
                    g_key_file_get_value(m_file.get(), *group, *key, nullptr));
                sum += static_cast<unsigned char>(**key) + static_cast<unsigned char>(*value);
                ++count;
            }
        }
        return sum;
    }

private:
    void set_value(const char* group, const char* key, int value) {
        g_key_file_set_integer(m_file.get(), group, key, value);
    }
    void set_value(const char* group, const char* key, double value) {
        g_key_file_set_double(m_file.get(), group, key, value);
    }
    void set_value(const char* group, const char* key, bool value) {
        g_key_file_set_boolean(m_file.get(), group, key, static_cast<gboolean>(value));
    }
    void set_value(const char* group, const char* key, std::string_view value) {
        g_key_file_set_string(m_file.get(), group, key, value.data());
    }

    std::unique_ptr<GKeyFile, Free> m_file;
    std::vector<std::string> m_groups; // of the nodes
};

} // namespace

std::unique_ptr<Peer> make_key_file_peer() {
    return std::make_unique<KeyFilePeer>();
}

} // namespace pm::bench
