#include "platform/compound_writer.h"

#include "platform/code_page.h"
#include "platform/compound_directory.h"
#include "platform/compound_format.h"
#include <algorithm>
#include <array>
#include <cstdint>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-memory.h>
#include <gsf/gsf-output.h>
#include <memory>
#include <span>
#include <utility>

namespace pm {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Output = std::unique_ptr<GsfOutput, Unref>;

void drop_message(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

// While one lives, libgsf prints nothing.
class Silence {
public:
    Silence() {
        for (std::size_t place = 0; place < domains.size(); ++place) {
            m_handlers[place] = g_log_set_handler(domains[place], messages, drop_message, nullptr);
        }
    }
    ~Silence() {
        for (std::size_t place = 0; place < domains.size(); ++place) {
            g_log_remove_handler(domains[place], m_handlers[place]);
        }
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    static constexpr std::array domains{"libgsf", "libgsf:msole"};
    static constexpr auto messages =
        static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION);
    std::array<guint, domains.size()> m_handlers{};
};

class Writer {
public:
    bool write(GsfOutfile* file, const CompoundElement& root) {
        m_open.push_back({nullptr, file, root.children.rbegin(), root.children.rend()});
        bool good = root.sound;
        while (!m_open.empty()) {
            good = (m_open.back().at == m_open.back().end ? leave() : write_next()) && good;
        }
        return good;
    }

private:
    // A storage that is being written: libgsf sorts as elements come, which takes no time from the last to
    // the first.
    struct Folder {
        Output owner;
        GsfOutfile* storage;
        CompoundChildren::const_reverse_iterator at;
        CompoundChildren::const_reverse_iterator end;
    };

    bool leave() {
        const Folder folder = std::move(m_open.back());
        m_open.pop_back();
        return gsf_output_close(GSF_OUTPUT(folder.storage)) != FALSE;
    }

    bool write_next() {
        const CompoundElement& element = *(m_open.back().at++)->second;
        const bool is_storage = element.kind == CompoundKind::storage;
        const std::string name = to_narrow(element.name, utf8_code_page);
        Output output(gsf_outfile_new_child(m_open.back().storage, name.c_str(), is_storage ? TRUE : FALSE));
        if (!output) return false;
        if (!is_storage) return write_stream(output.get(), element.data) && element.sound;
        GsfOutfile* storage = GSF_OUTFILE(output.get());
        m_open.push_back({std::move(output), storage, element.children.rbegin(), element.children.rend()});
        return element.sound;
    }

    static bool write_stream(GsfOutput* stream, const std::vector<std::byte>& data) {
        const bool written =
            data.empty() ||
            gsf_output_write(stream, data.size(), reinterpret_cast<const guint8*>(data.data())) != FALSE;
        return gsf_output_close(stream) != FALSE && written;
    }

    std::vector<Folder> m_open;
};

} // namespace

std::optional<std::vector<std::byte>> write_compound_file(const CompoundTree& tree) {
    const Silence silence;
    const Output memory(gsf_output_memory_new());
    const std::unique_ptr<GsfOutfile, Unref> file(gsf_outfile_msole_new(memory.get()));
    if (!file || !Writer().write(file.get(), tree.root())) return std::nullopt;
    const auto size = static_cast<std::size_t>(gsf_output_size(memory.get()));
    if (size > compound::largest_file) return std::nullopt;
    const auto* bytes =
        reinterpret_cast<const std::byte*>(gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(memory.get())));
    std::vector<std::byte> content(bytes, bytes + size);
    if (!balance_compound_directory(content)) return std::nullopt;
    return content;
}

} // namespace pm
