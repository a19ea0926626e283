#include "filers/pmdpia.h"

#include "base/little_endian.h"
#include "base/text.h"
#include "filers/block_reader.h"
#include "filers/memory_stream.h"
#include "filers/pmpia.h"
#include "filers/wide_text.h"
#include "platform/code_page.h"
#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>
#include <optional>
#include <pm/error_number.h>
#include <pm/iterator.h>
#include <sstream>
#include <utility>

namespace {

constexpr const char16_t* source = u"$Workfile: pmdpia $ $Revision: #1 $";
constexpr const char16_t* load_place = u"PM_DPIAFile::load()";
constexpr const char16_t* save_place = u"PM_DPIAFile::save()";
constexpr const char16_t* version_place = u"PM_DPIAFile::getVersion()";
constexpr const char16_t* section_place = u"load_section";
constexpr const char16_t* directory_place = u"PM_DPIAFile::write_directory";

constexpr std::uint32_t version_1_word = 0x00010000;
constexpr std::uint32_t version_2_word = 0x00020000;
constexpr std::u16string_view version_1 = u"DPIA_VERSION_1.0";
constexpr std::u16string_view version_2 = u"DPIA_VERSION_2.0";
constexpr std::size_t version_units = 512;

constexpr std::uint32_t word_size = 4;
constexpr const char16_t* section_tag = u"DPIA_SECTION_1.0,compress";

[[noreturn]] void raise_no_memory(const char16_t* place, const char16_t* detail) {
    throw PM_Memory_Exception(place, detail, source);
}

pm::Block<char16_t> copy_text(std::u16string_view text, const char16_t* place, const char16_t* what) {
    auto copy = pm::allocate_block<char16_t>(text.size() + 1);
    if (!copy) raise_no_memory(place, what);
    *std::copy(text.begin(), text.end(), copy.get()) = u'\0';
    return copy;
}

// In pieces, so that no more memory is taken than `text` has already.
void widen(std::string_view bytes, pm::WideText& text, const char16_t* what) {
    constexpr std::size_t piece_size = 65536;
    text.clear();
    for (; !bytes.empty(); bytes.remove_prefix(std::min(piece_size, bytes.size()))) {
        if (!text.append(bytes.substr(0, piece_size))) raise_no_memory(load_place, what);
    }
    if (!text.end()) raise_no_memory(load_place, what);
}

std::u16string below(const char16_t* base, std::initializer_list<std::u16string_view> parts) {
    std::u16string path(pm::view(base));
    for (const std::u16string_view part : parts) {
        path += u'\\';
        path += part;
    }
    return path;
}

// The text of a section's "info"; empty if there is no such property.
bool says_absent(const PM_Warning& e, const std::u16string& path) {
    constexpr std::uint32_t absent[] = {PM_ERR_BAD_PATH, PM_ERR_NO_SUCH_NODE, PM_ERR_NO_SUCH_PROPERTY};
    const bool too_long = path.size() > PM_Node::longest_path; // which is a bad path, too
    return !too_long && std::find(std::begin(absent), std::end(absent), e.m_number) != std::end(absent);
}

std::u16string read_info(const PM_Object& object, const std::u16string& path) {
    std::size_t bytes = 0;
    try {
        bytes = object.getPropertySize(path.c_str());
    } catch (const PM_Warning& e) {
        if (!says_absent(e, path)) throw;
        return {};
    }
    std::u16string text(bytes / sizeof(char16_t) + 1, u'\0');
    (void)object.GetProperty(path.c_str(), text.data(), text.size() * sizeof(char16_t));
    return text.c_str();
}

} // namespace

PM_DPIAFile::~PM_DPIAFile() = default;

void PM_DPIAFile::open(const char16_t* name, bool write) {
    open_file(m_owned_file, name, write, {load_place, u"PM_DPIAFile::open()", source});
}

void PM_DPIAFile::attach(std::iostream* stream) {
    m_stream = stream;
    m_filename.clear();
}

void PM_DPIAFile::close() {
    if (m_owned_file) m_owned_file->close();
}

void PM_DPIAFile::check_stream(const char16_t* place, const char16_t* name) const {
    PM_File::check_stream(place, name, *m_stream, source);
}

void PM_DPIAFile::getVersion(char16_t* buffer, std::size_t size) {
    m_stream->seekg(0);
    unsigned char bytes[word_size] = {};
    m_stream->read(reinterpret_cast<char*>(bytes), word_size);
    check_stream(version_place, file_name());
    const std::optional<int> version = version_of(pm::load_u32(bytes));
    if (version) {
        copy_version(*version == 1 ? version_1 : version_2, buffer, size);
    } else {
        report(PM_Error(PM_ERR_UNKNOWN_VERSION, version_place, file_name(), source));
    }
}

std::optional<int> PM_DPIAFile::version_of(std::uint32_t word) {
    if (word == version_1_word) return 1;
    if (word == version_2_word) return 2;
    return std::nullopt;
}

// Any text but that of version 2.0 is read in the layout of 1.0.
bool PM_DPIAFile::read_version() {
    char16_t version[version_units] = {};
    getVersion(version, version_units);
    return version == version_2;
}

// Where the parts of a directory's entry stand, which follows from the lengths of its texts. Most entries are
// shaped like the one in front of them: asking for that first, the processor needn't wait for one length to
// find the next.
class PM_DPIAFile::EntryShape {
public:
    explicit EntryShape(bool with_info) : m_with_info(with_info) {}

    // Takes the shape of the entry that `bytes` begin with; false if they don't hold it whole.
    bool fit(std::string_view bytes) {
        return (bytes.size() >= m_length && word_at(bytes, 0) == m_descriptor_length &&
                (!m_with_info || word_at(bytes, m_info_at - word_size) == m_info_length)) ||
               refit(bytes);
    }

    std::size_t length() const { return m_length; }
    std::string_view descriptor(std::string_view bytes) const {
        return {bytes.data() + word_size, m_descriptor_length};
    }
    std::string_view info(std::string_view bytes) const { return {bytes.data() + m_info_at, m_info_length}; }
    std::uint32_t offset(std::string_view bytes) const { return word_at(bytes, m_length - place_size); }
    std::uint32_t size(std::string_view bytes) const { return word_at(bytes, m_length - word_size); }

private:
    static constexpr std::size_t place_size = std::size_t{2} * word_size; // an offset and a size

    static std::uint32_t word_at(std::string_view bytes, std::size_t at) {
        return pm::load_u32(reinterpret_cast<const unsigned char*>(bytes.data() + at));
    }

    bool refit(std::string_view bytes) {
        if (bytes.size() < word_size) return false;
        m_descriptor_length = word_at(bytes, 0);
        m_info_at = word_size + std::size_t{m_descriptor_length};
        if (m_with_info) {
            m_info_at += word_size;
            if (bytes.size() < m_info_at) return forget();
            m_info_length = word_at(bytes, m_info_at - word_size);
        }
        m_length = m_info_at + m_info_length + place_size;
        return bytes.size() >= m_length || forget();
    }
    bool forget() {
        m_length = std::numeric_limits<std::size_t>::max();
        return false;
    }

    bool m_with_info;
    std::uint32_t m_descriptor_length = 0;
    std::uint32_t m_info_length = 0;
    std::size_t m_info_at = 0;
    std::size_t m_length = std::numeric_limits<std::size_t>::max(); // of the whole entry
};

// The directory, at whose start the stream stands. Whatever can't be had raises the stream's number.
class PM_DPIAFile::DirectoryReader {
public:
    explicit DirectoryReader(PM_DPIAFile& file)
        : m_file(file), m_bytes(*file.m_stream), m_position(file.m_directory_offset) {}

    std::uint32_t word() { return pm::load_u32(reinterpret_cast<const unsigned char*>(bytes(word_size))); }
    // A text with its length in front. Number 55 with `what` as detail if it can't be held.
    std::string_view text(const char16_t* what) {
        const std::uint32_t length = word();
        require(length);
        try {
            return {bytes(length), length};
        } catch (const std::bad_alloc&) {
            raise_no_memory(load_place, what);
        }
    }
    // As require_bytes(), for what takes memory.
    void require(std::uint64_t count) {
        if (count <= pm::BlockReader::block_size) return;
        const std::streampos here = m_file.m_stream->tellg();
        m_file.measure_file();
        m_file.m_stream->seekg(here);
        m_file.require_bytes(m_position, count, load_place, m_file.file_name());
    }
    // Hands those of the next `count` entries to the listener that need no more of the stream; gives their
    // number.
    template<class Listener>
    std::int32_t hand_entries(bool with_info, std::int32_t count, Listener& listener);
    // How far it has been read.
    std::uint64_t position() const { return m_position; }

private:
    const char* bytes(std::size_t count) {
        const char* const taken = m_bytes.take(count);
        if (taken == nullptr) m_file.check_stream(load_place, m_file.file_name());
        m_position += count;
        return taken;
    }

    PM_DPIAFile& m_file;
    pm::BlockReader m_bytes;
    std::uint64_t m_position;
};

template<class Listener>
std::int32_t PM_DPIAFile::DirectoryReader::hand_entries(bool with_info, std::int32_t count,
                                                        Listener& listener) {
    std::string_view left = m_bytes.at_hand();
    EntryShape shape(with_info);
    std::int32_t heard = 0;
    for (; heard < count && shape.fit(left); ++heard) {
        listener.hear_descriptor(shape.descriptor(left));
        if (with_info) listener.hear_info(shape.info(left));
        listener.hear_place(shape.offset(left), shape.size(left));
        left.remove_prefix(shape.length());
    }
    bytes(m_bytes.at_hand().size() - left.size());
    return heard;
}

template<class Listener>
void PM_DPIAFile::read_directory(bool with_info, Listener& listener) {
    DirectoryReader directory(*this);
    const auto count = static_cast<std::int32_t>(directory.word());
    if (count > 0) {
        const std::uint64_t least_entry = std::uint64_t{word_size} * (with_info ? 4 : 3);
        directory.require(static_cast<std::uint64_t>(count) * least_entry);
    }
    for (std::int32_t index = 0; index < count; ++index) {
        index += directory.hand_entries(with_info, count - index, listener);
        if (index == count) break;
        listener.hear_descriptor(directory.text(u"descriptor"));
        if (with_info) listener.hear_info(directory.text(u"info"));
        const std::uint32_t offset = directory.word();
        listener.hear_place(offset, directory.word());
    }
    m_data_offset = static_cast<std::uint32_t>(directory.position());
}

// Takes each section into the list.
class PM_DPIAFile::SectionList {
public:
    explicit SectionList(SimpleList<DPIA_Section>& sections) : m_sections(sections) {}

    void hear_descriptor(std::string_view bytes) { m_section.descriptor = wide(bytes, u"descriptor"); }
    void hear_info(std::string_view bytes) { m_section.info = wide(bytes, u"info"); }
    void hear_place(std::uint32_t offset, std::uint32_t size) {
        m_section.offset = offset;
        m_section.size = size;
        m_sections.append(std::exchange(m_section, {}));
    }

private:
    static pm::Block<char16_t> wide(std::string_view bytes, const char16_t* what) {
        pm::WideText text(pm::code_page(pm::utf8_code_page));
        if (!text.reserve(bytes.size())) raise_no_memory(load_place, what);
        widen(bytes, text, what);
        return text.take();
    }

    SimpleList<DPIA_Section>& m_sections;
    DPIA_Section m_section;
};

// Looks for the first section of a name. Texts count as if they were held.
class PM_DPIAFile::SectionSearch {
public:
    explicit SectionSearch(std::u16string_view name)
        : m_name(name),
          m_ascii(std::all_of(name.begin(), name.end(), [](char16_t unit) { return unit < 0x80; })),
          m_narrow(m_ascii ? pm::to_narrow(name, pm::utf8_code_page) : std::string()) {}

    void hear_descriptor(std::string_view bytes) {
        ask_for_memory(bytes, u"descriptor");
        m_matches = !m_found && is_name(bytes);
    }
    void hear_info(std::string_view bytes) { ask_for_memory(bytes, u"info"); }
    void hear_place(std::uint32_t offset, std::uint32_t size) {
        if (!m_matches) return;
        m_found = true;
        m_offset = offset;
        m_size = size;
    }

    bool found() const { return m_found; }
    std::uint32_t offset() const { return m_offset; }
    std::uint32_t size() const { return m_size; }

private:
    static void ask_for_memory(std::string_view bytes, const char16_t* what) {
        if (pm::refused((bytes.size() + 1) * sizeof(char16_t))) raise_no_memory(load_place, what);
    }
    // Nothing but its own bytes is read as a text of ASCII.
    bool is_name(std::string_view bytes) const {
        if (!m_ascii) return pm::to_wide(bytes.substr(0, bytes.find('\0')), pm::utf8_code_page) == m_name;
        const std::size_t size = m_narrow.size();
        if (bytes.size() < size || (bytes.size() > size && bytes[size] != '\0')) return false;
        // Names of one file mostly differ at their ends.
        return size == 0 || (bytes[size - 1] == m_narrow.back() && bytes.starts_with(m_narrow));
    }

    std::u16string_view m_name;
    bool m_ascii;
    std::string m_narrow;
    bool m_matches = false;
    bool m_found = false;
    std::uint32_t m_offset = 0;
    std::uint32_t m_size = 0;
};

bool PM_DPIAFile::read_sections() {
    const bool with_info = read_version();
    SectionList list(m_sections);
    read_directory(with_info, list);
    m_stream->seekg(m_data_offset);
    return with_info;
}

// A count that the rest of the file can't hold fails like the short read that it would end in, before memory
// is taken for it.
void PM_DPIAFile::require_bytes(std::uint64_t position, std::uint64_t count, const char16_t* place,
                                const char16_t* name) {
    if (position > m_file_size || count > m_file_size - position) {
        m_stream->setstate(std::ios::eofbit | std::ios::failbit);
    }
    check_stream(place, name);
}

void PM_DPIAFile::measure_file() {
    m_stream->seekg(0, std::ios::end);
    m_file_size = static_cast<std::uint64_t>(std::max<std::streamoff>(m_stream->tellg(), 0));
}

void PM_DPIAFile::load(PM_Object* target, const char16_t* base, PM_Object::FileType) {
    const bool with_info = read_sections();
    const auto write_texts = [&](std::u16string_view item, auto text_of) {
        const std::u16string path = below(base, {u"DPIA_directory", u"*", item});
        int index = 0;
        for (const DPIA_Section& section : m_sections) {
            set_string(*target, path.c_str(), text_of(section).data(), index++);
        }
    };
    write_texts(u"descriptor", [](const DPIA_Section& section) { return section.descriptor_text(); });
    if (with_info) write_texts(u"info", [](const DPIA_Section& section) { return section.info_text(); });
}

std::size_t PM_DPIAFile::count_sections() {
    read_sections();
    return static_cast<std::size_t>(m_sections.count());
}

std::vector<pm::DpiaSection> PM_DPIAFile::list_sections() {
    read_sections();
    std::vector<pm::DpiaSection> sections;
    for (const DPIA_Section& each : m_sections) {
        pm::DpiaSection section{std::u16string(each.descriptor_text()), std::nullopt,
                                std::uint64_t{m_data_offset} + each.offset, each.size};
        if (each.info) section.info = each.info_text();
        sections.push_back(std::move(section));
    }
    return sections;
}

void PM_DPIAFile::load_section(PM_Object* target, const char16_t* base, const char16_t* name) {
    const auto fail = [name] { throw PM_Severe(PM_ERR_NO_SUCH_SECTION, section_place, name, source); };
    if (target == nullptr || base == nullptr || name == nullptr) fail();
    SectionSearch section(name);
    read_directory(read_version(), section);
    if (!section.found()) fail();

    const std::uint64_t start = std::uint64_t{m_data_offset} + section.offset();
    measure_file();
    m_stream->seekg(static_cast<std::streamoff>(start));
    check_stream(section_place, name);
    require_bytes(start, section.size(), section_place, name);
    const auto block = pm::allocate_block<char>(std::size_t{section.size()} + 1);
    if (!block) return;
    m_stream->read(block.get(), section.size());
    check_stream(section_place, name);

    pm::MemoryStream content({block.get(), section.size()});
    PM_PIAFile filer(m_handler);
    filer.set_utf8(true);
    errno = 0;
    filer.attach(&content);
    filer.load(target, base, PM_Object::FILE_PIA);
    filer.close();
}

void PM_DPIAFile::save(const PM_Object* object, const char16_t* subtree, PM_Object::FileType,
                       const char16_t*) {
    m_stream->seekp(0);
    write_word(version_2_word, save_place, file_name());
    collect_sections(*object, subtree);
    write_directory();
    write_sections(*object, subtree);
    write_directory();
    m_stream->flush();
    check_stream(save_place, file_name());
}

void PM_DPIAFile::collect_sections(const PM_Object& object, const char16_t* subtree) {
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(subtree, 1));
    if (!walk) raise_no_memory(save_place, u"pIter");
    PM_Object::NodeType step{};
    while (const char16_t* name = walk->nextNode(step)) {
        if (step == PM_Object::NODE_PARENT) continue;
        DPIA_Section section;
        section.descriptor = copy_text(name, save_place, u"descriptor");
        section.info = copy_text(read_info(object, below(subtree, {name, u"info"})), save_place, u"info");
        m_sections.append(std::move(section));
    }
}

void PM_DPIAFile::write_sections(const PM_Object& object, const char16_t* subtree) {
    std::uint64_t running = 0;
    for (auto& section : m_sections) {
        std::stringstream content;
        content.put('\0'); // so that the writer's way to the start finds one
        object.save(content, PM_Object::FILE_PIA, section_tag,
                    below(subtree, {section.descriptor_text(), u"data"}).c_str(), true);
        const std::string_view bytes = content.view();
        section.offset = static_cast<std::uint32_t>(running);
        section.size = static_cast<std::uint32_t>(bytes.size());
        running += bytes.size();
        if (running > std::numeric_limits<std::uint32_t>::max()) m_stream->setstate(std::ios::failbit);
        m_stream->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        m_stream->flush();
        check_stream(save_place, file_name());
    }
}

void PM_DPIAFile::write_directory() {
    m_stream->seekp(m_directory_offset);
    write_word(static_cast<std::uint32_t>(m_sections.count()), directory_place, u"");
    for (const auto& section : m_sections) {
        const char16_t* name = section.descriptor.get();
        write_text(section.descriptor_text(), name);
        write_text(section.info_text(), name);
        write_word(section.offset, directory_place, name);
        write_word(section.size, directory_place, name);
    }
}

// The length word counts wide units, though the text goes out as UTF-8 (kept). A load takes the word for
// bytes, so that a directory with other than ASCII names reads back wrong from there on.
void PM_DPIAFile::write_text(std::u16string_view text, const char16_t* detail) {
    write_word(static_cast<std::uint32_t>(text.size()), directory_place, detail);
    const std::string bytes = pm::to_narrow(text, pm::utf8_code_page);
    m_stream->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    check_stream(directory_place, detail);
}

void PM_DPIAFile::write_word(std::uint32_t value, const char16_t* place, const char16_t* detail) {
    unsigned char bytes[word_size];
    pm::store_u32(bytes, value);
    m_stream->write(reinterpret_cast<const char*>(bytes), word_size);
    check_stream(place, detail);
}
