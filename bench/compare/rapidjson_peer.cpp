#include "peer.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <stdexcept>

namespace pm::bench {
namespace {

using rapidjson::Value;

class RapidJsonPeer : public PeerLoops<RapidJsonPeer> {
public:
    const char* name() const override { return "RapidJSON"; }
    // Its default parser is the fast one, which is off by some units in the last place.
    double tolerance() const override { return 1e-15; }

    void build(const Content& content) override {
        set_content(content);
        m_document = std::make_unique<rapidjson::Document>(rapidjson::kObjectType);
        auto& allocator = m_document->GetAllocator();
        const auto add = [&](Value* parent, std::string_view name, Value value) {
            Value key(name.data(), static_cast<rapidjson::SizeType>(name.size()), allocator);
            parent->AddMember(key, value, allocator);
            return &(parent->MemberEnd() - 1)->value;
        };
        build_tree(
            content, static_cast<Value*>(m_document.get()),
            [&](Value* parent, std::string_view name) {
                return add(parent, name, Value(rapidjson::kObjectType));
            },
            [&](Value* node, std::string_view name, auto value) {
                if constexpr (std::is_same_v<decltype(value), std::string_view>) {
                    add(node, name,
                        Value(value.data(), static_cast<rapidjson::SizeType>(value.size()), allocator));
                } else {
                    add(node, name, Value(value));
                }
            });
    }

    void load(const std::string& text) override {
        m_document = std::make_unique<rapidjson::Document>();
        if (m_document->Parse(text.data(), text.size()).HasParseError()) {
            throw std::runtime_error("RapidJSON: no JSON");
        }
    }

    std::string save() override {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        m_document->Accept(writer);
        return {buffer.GetString(), buffer.GetSize()};
    }

    void destroy() override { m_document.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const Value* value = m_document.get();
        for (const std::string_view name : content().path_of(property(index))) {
            if ((value = member(*value, name)) == nullptr) return;
        }
        if ((value = member(*value, property(index).name)) == nullptr) return;
        switch (type.index()) {
        case 0:
            return sink(value->GetInt());
        case 1:
            return sink(value->GetDouble());
        case 2:
            return sink(std::string_view(value->GetString(), value->GetStringLength()));
        default:
            return sink(value->GetBool());
        }
    }

    std::uint64_t walk(std::size_t& count) override {
        SumSink sink;
        count = 0;
        walk(*m_document, sink, count);
        return sink.sum;
    }

private:
    static const Value* member(const Value& parent, std::string_view name) {
        const auto found = parent.FindMember(Value(rapidjson::StringRef(name.data(), name.size())));
        return found != parent.MemberEnd() ? &found->value : nullptr;
    }

    static void walk(const Value& parent, SumSink& sink, std::size_t& count) {
        for (const auto& [name, value] : parent.GetObject()) {
            if (value.IsObject()) {
                walk(value, sink, count);
                continue;
            }
            sink.sum += static_cast<unsigned char>(*name.GetString());
            ++count;
            if (value.IsInt()) {
                sink(value.GetInt());
            } else if (value.IsDouble()) {
                sink(value.GetDouble());
            } else if (value.IsString()) {
                sink(std::string_view(value.GetString(), value.GetStringLength()));
            } else {
                sink(value.GetBool());
            }
        }
    }

    std::unique_ptr<rapidjson::Document> m_document;
};

} // namespace

std::unique_ptr<Peer> make_rapidjson_peer() {
    return std::make_unique<RapidJsonPeer>();
}

} // namespace pm::bench
