#include "peer.h"

#include <array>
#include <filesystem>
#include <istream>
#include <pm/pm.h>
#include <sstream>
#include <streambuf>
#include <unistd.h>

namespace pm::bench {
namespace {

constexpr const char16_t* root = u"\\";

// A text as a stream that can seek, without a copy.
class TextBuffer : public std::streambuf {
public:
    explicit TextBuffer(const std::string& text) {
        char* const begin = const_cast<char*>(text.data()); // never written to
        setg(begin, begin, begin + text.size());
    }

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
        const off_type base = from == std::ios_base::beg   ? 0
                              : from == std::ios_base::cur ? gptr() - eback()
                                                           : egptr() - eback();
        const off_type target = base + offset;
        if (target < 0 || target > egptr() - eback()) return pos_type(off_type(-1));
        setg(eback(), eback() + target, egptr());
        return target;
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override {
        return seekoff(off_type(position), std::ios_base::beg, mode);
    }
};

class PiaPeer : public PeerLoops<PiaPeer> {
public:
    const char* name() const override { return "pm9, PIA"; }

    void build(const Content& content) override {
        set_content(content);
        m_object = std::make_unique<PM_Object>();
        for (const ContentProperty& property : content.properties()) {
            const std::string path = "\\" + content.joined_path(property, '\\');
            m_paths.emplace_back(path.begin(), path.end());
            const auto* text = std::get_if<std::string_view>(&property.value);
            m_texts.emplace_back(text != nullptr ? std::u16string(text->begin(), text->end()) : u"");
            set_one(m_paths.size() - 1);
        }
    }

    void load(const std::string& text) override {
        TextBuffer buffer(text);
        std::iostream stream(&buffer);
        m_object = std::make_unique<PM_Object>();
        m_object->load(stream, PM_Object::FILE_PIA, root);
    }

    std::string save() override {
        std::stringstream stream;
        m_object->save(stream, PM_Object::FILE_PIA, u"bench", root);
        return std::move(stream).str();
    }

    void destroy() override { m_object.reset(); }

    template<class Sink>
    void fetch(std::uint32_t index, const ContentValue& type, Sink& sink) {
        const char16_t* const path = m_paths[index].c_str();
        std::visit([&](const auto& kind) { fetch_as(path, kind, sink); }, type);
    }

    bool set(std::span<const std::uint32_t> indexes) override {
        for (const std::uint32_t index : indexes)
            set_one(index);
        return true;
    }

    std::uint64_t walk(std::size_t& count) override {
        SumSink sink;
        count = 0;
        const std::unique_ptr<PM_Iterator> iterator(m_object->newIterator(root, 0));
        PM_Object::NodeType step{};
        do {
            if (step == PM_Object::NODE_PARENT) continue;
            char* value = nullptr;
            std::size_t size = 0;
            PropType type = PROP_NONE;
            while (const char16_t* name = iterator->nextProp(value, size, type)) {
                sink.sum += *name + static_cast<unsigned char>(*value);
                ++count;
            }
        } while (iterator->nextNode(step) != nullptr);
        return sink.sum;
    }

protected:
    PM_Object& object() { return *m_object; }
    void renew() { m_object = std::make_unique<PM_Object>(); }

private:
    template<class Sink>
    void fetch_as(const char16_t* path, std::string_view, Sink& sink) {
        std::array<char16_t, 64> text;
        if (m_object->GetProperty(path, text.data(), sizeof text)) sink(std::u16string_view(text.data()));
    }
    template<class Value, class Sink>
    void fetch_as(const char16_t* path, Value, Sink& sink) {
        Value value{};
        if (m_object->GetProperty(path, value)) sink(value);
    }

    void set_one(std::size_t index) {
        const char16_t* const path = m_paths[index].c_str();
        const auto set_value = [&](const auto& value) {
            if constexpr (std::is_same_v<decltype(value), const std::string_view&>) {
                m_object->SetProperty(path, m_texts[index].c_str());
            } else {
                m_object->SetProperty(path, value);
            }
        };
        std::visit(set_value, content().properties()[index].value);
    }

    std::unique_ptr<PM_Object> m_object;
    std::vector<std::u16string> m_paths;
    std::vector<std::u16string> m_texts; // of properties that hold a text
};

// The same through a file of its own.
class PiaFilePeer : public PiaPeer {
public:
    PiaFilePeer()
        : m_path(std::filesystem::temp_directory_path() /
                 ("pm_compare_" + std::to_string(getpid()) + ".pia")) {}
    ~PiaFilePeer() override {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    PiaFilePeer(const PiaFilePeer&) = delete;
    PiaFilePeer& operator=(const PiaFilePeer&) = delete;

    const char* name() const override { return "pm9, PIA file"; }

    void load(const std::string&) override {
        renew();
        object().load(m_path.u16string().c_str(), PM_Object::FILE_PIA, root);
    }
    std::string save() override {
        object().save(m_path.u16string().c_str(), PM_Object::FILE_PIA, u"bench", root);
        return {};
    }

private:
    std::filesystem::path m_path;
};

} // namespace

std::unique_ptr<Peer> make_pia_memory_peer() {
    return std::make_unique<PiaPeer>();
}
std::unique_ptr<Peer> make_pia_file_peer() {
    return std::make_unique<PiaFilePeer>();
}

} // namespace pm::bench
