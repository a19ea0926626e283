#include "filers/pmpia.h"

#include "base/allocator.h"
#include "base/text.h"
#include "filers/compressed_body.h"
#include "filers/pia_writer.h"
#include "filers/plain_lines.h"
#include "filers/wide_text.h"
#include "platform/code_page.h"
#include "store/value_text.h"
#include <algorithm>
#include <limits>
#include <new>
#include <pm/codec.h>
#include <pm/error_number.h>
#include <pm/iterator.h>
#include <pm/value_text.h>

namespace {

constexpr const char16_t* source = u"$Workfile: pmpia $ $Revision: #1 $";
constexpr const char16_t* unit_place = u".\\pmpia";
constexpr const char16_t* load_place = u"PM_PIAFile::load()";
constexpr const char16_t* save_place = u"PM_PIAFile::save()";
constexpr const char16_t* version_place = u"PM_PIAFile::getVersion()";

constexpr std::u16string_view version_1 = u"PIAFILEVERSION_1.0";
constexpr std::u16string_view version_2 = u"PIAFILEVERSION_2.0";
constexpr std::u16string_view compress_word = u"compress";

constexpr std::size_t header_limit = 1023; // bytes
constexpr std::size_t version_units = 512;
constexpr std::size_t name_limit = 511;

// What a node's name can't hold, as bits.
constexpr std::uint64_t forbidden_in_node_name = [] {
    std::uint64_t bits = 0;
    for (const char16_t unit : std::u16string_view(u" *=\"'\t\r\n\v\b\f\a")) {
        bits |= std::uint64_t{1} << unit;
    }
    return bits;
}();

bool is_forbidden_in_node_name(char16_t unit) {
    return unit < 64 && (forbidden_in_node_name >> unit & 1) != 0;
}

[[noreturn]] void raise_no_memory(const char16_t* place, const char16_t* detail) {
    throw PM_Memory_Exception(place, detail, source);
}

bool holds(std::u16string_view text, std::u16string_view word) {
    return text.find(word) != std::u16string_view::npos;
}

// Raw data from here on is made where its digits stand, so that a long line is held once.
constexpr std::size_t made_in_place = 1 << 16; // bytes

// The name at the start of a line: what stands in front of the first blank or "=".
pm::TreeCursor::Name name_of(std::u16string_view line) {
    bool plain = true;
    const char16_t* at = line.data();
    const char16_t* const end = at + line.size();
    for (; at != end; ++at) {
        if (*at > u'\\') continue; // most letters
        if (*at == u'=' || *at == u' ') break;
        if (*at == u'\\' || *at == u'*') plain = false;
    }
    return {line.substr(0, static_cast<std::size_t>(at - line.data())), plain};
}

// Reads digits alone, as most numbers are, and only what fits.
bool parse_plain_long(std::u16string_view text, std::int32_t& out) {
    constexpr std::size_t most_digits = 10;
    const bool negative = text.front() == u'-';
    const std::u16string_view digits = text.substr(negative ? 1 : 0);
    if (digits.empty() || digits.size() > most_digits) return false;
    std::int64_t value = 0;
    for (const char16_t unit : digits) {
        if (!pm::is_digit(unit)) return false;
        value = value * 10 + (unit - u'0');
    }
    out = static_cast<std::int32_t>(negative ? -value : value);
    return value <= std::numeric_limits<std::int32_t>::max();
}

// Lets reports know of a load's cursor while the load runs.
class Lease {
public:
    Lease(pm::TreeCursor*& known, pm::TreeCursor& cursor) : m_known(known) { m_known = &cursor; }
    ~Lease() { m_known = nullptr; }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

private:
    pm::TreeCursor*& m_known;
};

pm::FileBlock read_whole(std::istream& stream) {
    pm::FileBlock file;
    stream.seekg(0, std::ios::end);
    const std::streamoff end = stream.tellg();
    if (end < 0) stream.setstate(std::ios::failbit);
    stream.seekg(0);
    if (!stream) return file;
    file.size = static_cast<std::size_t>(end);
    file.bytes = pm::allocate_block<unsigned char>(file.size + 1);
    if (!file.bytes) return file;
    stream.read(reinterpret_cast<char*>(file.bytes.get()), end);
    file.bytes[file.size] = 0;
    return file;
}

// A digit beyond ASCII counts as the bytes that it has in the code page.
std::string narrow_hex_to_bytes(std::u16string_view digits) {
    std::string bytes;
    try {
        bytes = pm::to_narrow(digits);
    } catch (const std::bad_alloc&) {
        raise_no_memory(unit_place, u"data");
    }
    if (!pm_hex_to_bin(bytes.c_str(), bytes.data())) {
        throw PM_Error(PM_ERR_BAD_RAW_DATA, unit_place, u"bad raw data value", source);
    }
    bytes.resize(bytes.size() / 2);
    return bytes;
}

} // namespace

PM_PIAFile::~PM_PIAFile() = default;

void PM_PIAFile::open(const char16_t* name, bool write) {
    open_file(m_owned_file, name, write, {load_place, u"PM_PIAFile::open()", source});
}

void PM_PIAFile::attach(std::iostream* stream) {
    m_stream = stream;
    m_filename.clear();
}

void PM_PIAFile::close() {
    if (m_owned_file) m_owned_file->close();
}

void PM_PIAFile::check_stream(const char16_t* place, const char16_t* name) const {
    PM_File::check_stream(place, name, *m_stream, source);
}

unsigned PM_PIAFile::text_code_page() const {
    return m_utf8 ? pm::utf8_code_page : pm::default_code_page;
}

std::u16string PM_PIAFile::format_line_context(std::u16string_view line) const {
    std::u16string text(1, u'\n');
    pm::append_decimal(text, m_line_number);
    text += u", ";
    // No more than that is ever told.
    text += line.substr(0, ZT_Exception::detail_capacity);
    text += u", ";
    text += m_filename;
    return text;
}

void PM_PIAFile::rewind_reader() {
    m_stream->seekg(0);
    m_reader.attach(*m_stream);
}

void PM_PIAFile::getVersion(char16_t* buffer, std::size_t size) {
    rewind_reader();
    pm::LineReader::Line line;
    do {
        ++m_line_number;
        line = m_reader.read_line(header_limit);
        if (line.end == pm::LineReader::End::too_long) m_stream->setstate(std::ios::failbit);
        line.text = line.text.substr(0, line.text.find('\0'));
    } while (line.text.empty() && line.end == pm::LineReader::End::line);
    check_stream(version_place, file_name());

    const std::u16string wide = pm::to_wide(line.text);
    std::u16string_view text = wide;
    if (text.ends_with(u'\r')) text.remove_suffix(1);
    text = pm::skip_any(text, u" \t");
    if (m_file_type == PM_Object::FILE_PIA && !pm::starts_with_ignoring_case(text, version_1) &&
        !pm::starts_with_ignoring_case(text, version_2)) {
        report(PM_Error(PM_ERR_NOT_A_HEADER, version_place, file_name(), source));
    }
    copy_version(text, buffer, size);
}

PropType PM_PIAFile::classify_value(std::u16string_view value) {
    if (value.empty()) return PROP_NONE;
    const char16_t first = value.front();
    if (first == u'\\') return value.rfind(u'\\') > 0 ? PROP_VOID : PROP_NONE;
    if (first == u'"') return PROP_STRING;
    if (pm::is_letter(first)) {
        const bool known =
            pm::starts_with_ignoring_case(value, u"true") || pm::starts_with_ignoring_case(value, u"false");
        return known ? PROP_BOOL : PROP_NONE;
    }
    const auto number = first == u'-' ? value.substr(1) : value;
    const auto stop = std::find_if_not(
        number.begin(), number.end(), [](char16_t unit) { return pm::is_digit(unit) || pm::is_blank(unit); });
    if (stop == number.end()) return PROP_LONG;
    return *stop == u'.' ? PROP_DOUBLE : PROP_NONE;
}

void PM_PIAFile::load(PM_Object* target, const char16_t* base, PM_Object::FileType type) {
    m_file_type = type;
    char16_t header[version_units] = {};
    getVersion(header, version_units);

    std::unique_ptr<pm::CompressedBody> body;
    if (holds(header, compress_word)) {
        body = attach_body(header);
        // A file of neither version has now been read to its end, and gives no lines.
        if (!body) m_reader.attach(*m_stream);
    }
    load_body(*target, base, !body);
}

std::unique_ptr<pm::CompressedBody> PM_PIAFile::attach_body(std::u16string_view header) {
    pm::FileBlock file = read_whole(*m_stream);
    check_stream(load_place, file_name());
    if (!file.bytes) raise_no_memory(unit_place, u"buffer");
    const bool checked = header.starts_with(version_2);
    if (!checked && !header.starts_with(version_1)) return nullptr;

    auto body = std::make_unique<pm::CompressedBody>(std::move(file), checked);
    if (!body->attach_to(m_reader, m_handler)) {
        throw PM_Severe(PM_ERR_NOT_DECODED, unit_place, u"decompression of PIA data failed", source);
    }
    return body;
}

void PM_PIAFile::load_body(PM_Object& target, const char16_t* base, bool from_stream) {
    if (pm::view(base).size() > pm::WorkingPath::capacity) {
        throw PM_Warning(PM_ERR_BAD_PATH, load_place, base, source);
    }
    pm::TreeCursor place(target, pm::view(base));
    const Lease lease(m_cursor, place);
    pm::WideText line(pm::code_page(text_code_page()));
    bool more = true;
    while (more) {
        load_plain_lines(place);
        more = read_line(line, from_stream);
        std::u16string_view text = line.view();
        if (text.empty() || text.front() == u';') continue;
        while (text.ends_with(u' ')) {
            text.remove_suffix(1);
        }
        line.truncate(text.size());
        load_line(place, line);
    }
}

// As many as follow one another.
void PM_PIAFile::load_plain_lines(pm::TreeCursor& place) {
    if (m_unopened != 0) return;
    static_assert(pm::LineReader::margin >= pm::PlainLines::margin);
    const pm::PlainLines loaded = pm::load_plain_lines(place, m_reader.whole_lines());
    m_line_number += loaded.count;
    m_reader.go_on_at(loaded.end);
}

// False for the last line.
bool PM_PIAFile::read_line(pm::WideText& line, bool from_stream) {
    ++m_line_number;
    m_reader.skip_white_space();
    pm::LineReader::Line read = m_reader.read_line();
    bool held = true;
    if (read.end == pm::LineReader::End::too_long) {
        line.clear();
        for (; held && read.end == pm::LineReader::End::too_long; read = m_reader.read_line()) {
            held = line.append(read.text);
        }
        held = held && line.append(read.text) && line.end();
    } else {
        held = line.assign(read.text);
    }
    if (!held) raise_no_memory(unit_place, u"line");
    const bool more = read.end == pm::LineReader::End::line;
    if (!more && from_stream && !m_stream->eof()) check_stream(load_place, file_name());
    return more;
}

void PM_PIAFile::load_line(pm::TreeCursor& place, pm::WideText& line) {
    const std::u16string_view text = line.view();
    const pm::TreeCursor::Name name = name_of(text);
    const std::size_t behind = name.text.size();
    if (behind < text.size() && (text[behind] == u'=' || holds(text.substr(behind), u"="))) {
        if (m_unopened == 0) property_line(place, name, line);
    } else if (text.find(u'{') != std::u16string_view::npos) {
        opening_line(place, text);
    } else if (text.find(u'}') != std::u16string_view::npos) {
        closing_line(place, text);
    } else {
        raise_bad_line(text);
    }
}

void PM_PIAFile::raise_bad_line(std::u16string_view line) const {
    throw PM_Error(PM_ERR_BAD_LINE, load_place, format_line_context(line).c_str(), source);
}

template<class E>
void PM_PIAFile::report_bad_line(std::u16string_view line) {
    report(E(PM_ERR_BAD_LINE, load_place, format_line_context(line).c_str(), source));
}

void PM_PIAFile::property_line(pm::TreeCursor& place, const pm::TreeCursor::Name& name, pm::WideText& line) {
    const std::u16string_view text = line.view();
    const std::size_t length = name.text.size();
    if (length == 0 || length > name_limit || !place.has_room_for(name.text)) {
        report_bad_line<PM_Warning>(text);
        return;
    }
    std::size_t value = length;
    while (value < text.size() && (text[value] == u'=' || text[value] == u' ')) {
        ++value;
    }
    if (!place.is_moved_by(name)) return store_value(place, name, text.substr(value), line);
    // What stores a value may take the line away.
    const std::u16string kept(name.text);
    store_value(place, name, text.substr(value), line);
    place.leave({kept, name.plain});
}

void PM_PIAFile::store_value(pm::TreeCursor& place, const pm::TreeCursor::Name& name,
                             std::u16string_view value, pm::WideText& line) {
    if (value.empty()) return report_bad_line<PM_Error>(line.view());
    std::int32_t number = 0;
    if (value.front() == u'"') return place.set_string(name, value.substr(1));
    if (parse_plain_long(value, number)) return place.set_long(name, number);
    if (value == u"TRUE" || value == u"FALSE") return place.set_bool(name, value.front() == u'T');
    switch (classify_value(value)) {
    case PROP_LONG:
        place.set_long(name, pm::scan_long(value));
        break;
    case PROP_DOUBLE:
        store_double(place, name, value, line.view());
        break;
    case PROP_BOOL:
        place.set_bool(name, pm::starts_with_ignoring_case(value, u"true"));
        break;
    case PROP_VOID:
        store_raw(place, name, value, line);
        break;
    default:
        report_unknown_value(line);
    }
}

// The line itself is the place of this report, which keeps it.
void PM_PIAFile::report_unknown_value(pm::WideText& line) {
    std::shared_ptr<const char16_t[]> place(line.take().release(), pm::Releaser());
    report(PM_Warning(PM_ERR_UNKNOWN_VALUE, std::move(place), u"", u""));
}

void PM_PIAFile::store_double(pm::TreeCursor& place, const pm::TreeCursor::Name& name,
                              std::u16string_view value, std::u16string_view line) {
    double number = 0;
    if (pm::parse_double(value, number)) {
        place.set_double(name, number);
    } else {
        report_bad_line<PM_Warning>(line);
    }
}

void PM_PIAFile::store_raw(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::u16string_view value,
                           pm::WideText& line) {
    const std::u16string_view start = pm::skip_any(value, u" \\");
    const std::u16string_view digits = start.substr(0, start.find(u'\\'));
    if (digits.empty() || digits.size() % 2 != 0) {
        report_bad_line<PM_Warning>(line.view());
        return;
    }
    const std::size_t size = digits.size() / 2;
    if (size >= made_in_place) {
        const std::u16string kept_name(name.text);
        if (pm::hex_to_bytes(digits, line.bytes())) {
            line.shrink(size);
            place.set_data(kept_name, line.bytes(), size, PROP_VOID);
            return;
        }
    }
    const auto data = pm::allocate_block<unsigned char>(size);
    if (!data) raise_no_memory(unit_place, u"data");
    if (pm::hex_to_bytes(digits, data.get())) {
        place.set_data(name, data.get(), size, PROP_VOID);
    } else {
        const std::string bytes = narrow_hex_to_bytes(digits);
        place.set_data(name, bytes.data(), bytes.size(), PROP_VOID);
    }
}

void PM_PIAFile::opening_line(pm::TreeCursor& place, std::u16string_view line) {
    // What stands behind the "{" counts for nothing and isn't told either.
    const std::u16string_view name = line.substr(0, line.find(u'{'));
    if (name.empty() || std::any_of(name.begin(), name.end(), is_forbidden_in_node_name)) {
        raise_bad_line(name);
    }
    if (m_unopened == 0 && name.size() <= name_limit && place.push(name)) return;
    // A block whose name has no room is passed over whole.
    if (m_unopened++ == 0) report_bad_line<PM_Error>(name);
}

void PM_PIAFile::closing_line(pm::TreeCursor& place, std::u16string_view line) {
    if (m_unopened > 0) {
        --m_unopened;
    } else if (!place.pop()) {
        raise_bad_line(line);
    }
}

void PM_PIAFile::save(const PM_Object* saved, const char16_t* subtree, PM_Object::FileType type,
                      const char16_t* tag) {
    m_stream->seekp(0);
    if (type == PM_Object::FILE_PIA) write_header(pm::view(tag));
    check_stream(save_place, file_name());

    const std::unique_ptr<PM_Iterator> walk(saved->newIterator(subtree, 0));
    if (!walk) raise_no_memory(save_place, u"piter");
    if (holds(pm::view(tag), compress_word)) {
        pm::PiaWriter body(text_code_page(), m_indent);
        body.write_body(*walk);
        encode_body(body.pending());
    } else {
        pm::PiaWriter(*m_stream, text_code_page(), m_indent).write_body(*walk);
    }
    m_stream->flush();
    check_stream(save_place, file_name());
}

void PM_PIAFile::write_header(std::u16string_view tag) {
    pm::PiaWriter header(*m_stream, text_code_page(), m_indent);
    header.write_text(version_2);
    header.write_text(u",");
    header.write_text(tag);
    header.write_text(u"\r\n");
    header.flush();
}

void PM_PIAFile::encode_body(std::string_view text) {
    unsigned char* block = nullptr;
    std::uint32_t size = 0;
    PM_zlib_Codec codec(reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<std::uint32_t>(text.size()), m_handler);
    if (text.size() > std::numeric_limits<std::uint32_t>::max() || !codec.encodeCRC(block, size)) {
        throw PM_Severe(PM_ERR_NOT_ENCODED, unit_place, u"compression of PIA data failed", source);
    }
    const pm::Block<unsigned char> owned(block);
    m_stream->write(reinterpret_cast<const char*>(block), static_cast<std::streamsize>(size));
}
