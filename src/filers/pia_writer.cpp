#include "filers/pia_writer.h"

#include "base/text.h"
#include "store/pmpmgr.h"
#include "store/value_text.h"
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/value_text.h>

namespace pm {

namespace {

constexpr std::size_t flush_size = 32768;
constexpr std::size_t longest_name_end = 16; // what stands behind a name
constexpr std::size_t longest_number = double_text_capacity;

using Units = std::uint16_t __attribute__((vector_size(16)));
using Bytes = unsigned char __attribute__((vector_size(8)));

constexpr std::uint64_t ones = 0x0001000100010001;
constexpr std::uint64_t beyond_ascii = 0xFF80FF80FF80FF80;

// Whether all four units are of ASCII and none is zero.
bool is_plain(std::uint64_t units) {
    return ((units | (units - ones)) & beyond_ascii) == 0;
}

// Narrows eight units; false, with nothing told of what was written, if one of them is zero or not of ASCII.
bool narrow_eight(const char16_t* from, char* to) {
    std::uint64_t words[2];
    std::memcpy(words, from, sizeof words);
    Units units;
    std::memcpy(&units, from, sizeof units);
    const auto bytes = __builtin_convertvector(units, Bytes);
    std::memcpy(to, &bytes, sizeof bytes);
    return is_plain(words[0]) && is_plain(words[1]);
}

// Narrows units up to the first that is zero or beyond ASCII; gives how many. There is room for all.
std::size_t narrow_plain(std::u16string_view wide, char* to) {
    std::size_t at = 0;
    if (wide.size() >= 8) {
        const std::size_t last = wide.size() - 8;
        while (at < last && narrow_eight(wide.data() + at, to + at)) {
            at += 8;
        }
        if (at >= last && narrow_eight(wide.data() + last, to + last)) return wide.size();
    }
    for (; at < wide.size() && wide[at] != 0 && wide[at] < 0x80; ++at) {
        to[at] = static_cast<char>(wide[at]);
    }
    return at;
}

char* copy(std::string_view text, char* to) {
    return std::copy(text.begin(), text.end(), to);
}

char* write_long(const PM_Property& prop, char* to) {
    std::int32_t value = 0;
    prop.get_number(value);
    return std::to_chars(to, to + longest_number, value).ptr;
}

char* write_double(const PM_Property& prop, char* to) {
    double value = 0;
    prop.get_number(value);
    return format_double(value, to);
}

char* write_bool(const PM_Property& prop, char* to) {
    unsigned char flag[8] = {};
    prop.GetData(flag, sizeof flag);
    return copy(flag[0] != 0 ? "TRUE" : "FALSE", to);
}

// What is stored; number 59 if there is nothing.
const unsigned char* value_of(const PM_Property& prop) {
    if (prop.data() == nullptr) prop.GetData(nullptr, 0);
    return prop.data();
}

} // namespace

void OutputBlock::grow(std::size_t bytes) {
    const std::size_t wanted = std::max({m_size + bytes, m_capacity + m_capacity / 2, flush_size});
    void* const moved = reallocate(m_bytes.get(), wanted);
    if (moved == nullptr) {
        throw PM_Memory_Exception(u"PM_PIAFile::save()", u"buffer", u"$Workfile: pmpia $ $Revision: #1 $");
    }
    (void)m_bytes.release();
    m_bytes.reset(static_cast<char*>(moved));
    m_capacity = wanted;
}

void OutputBlock::append(std::string_view bytes) {
    end_at(std::copy(bytes.begin(), bytes.end(), room(bytes.size())));
}

void OutputBlock::append(std::size_t count, char byte) {
    end_at(std::fill_n(room(count), count, byte));
}

PiaWriter::PiaWriter(std::ostream& stream, unsigned text_code_page, int indent)
    : m_stream(&stream), m_page(code_page(text_code_page)), m_indent(indent) {}

PiaWriter::PiaWriter(unsigned text_code_page, int indent)
    : m_stream(nullptr), m_page(code_page(text_code_page)), m_indent(indent) {}

void PiaWriter::write_text(std::u16string_view text) {
    char* const to = m_pending.room(text.size());
    const std::size_t plain = narrow_plain(text, to);
    m_pending.end_at(to + plain);
    if (plain == text.size()) return;
    m_narrow.clear();
    m_page.encode(text.substr(plain), m_narrow);
    m_pending.append(m_narrow);
}

void PiaWriter::flush() {
    m_stream->write(m_pending.view().data(), static_cast<std::streamsize>(m_pending.size()));
    m_pending.truncate(0);
}

// False when the stream fails.
bool PiaWriter::flush_much() {
    if (m_stream == nullptr || m_pending.size() < flush_size) return true;
    flush();
    return m_stream->good();
}

void PiaWriter::write_body(PM_Iterator& walk) {
    try {
        write_properties(walk.currentNode(), 0);
        write_nodes(walk);
    } catch (const ZT_Exception&) {
        if (m_stream == nullptr) throw;
        flush();
        if (m_stream->good()) throw;
        return; // the stream failed before the value was met
    }
    m_pending.append(1, '\0');
    if (m_stream != nullptr) flush();
}

// A block is closed by the step that leaves it: a sibling step closes the block before, a parent step the
// last child.
void PiaWriter::write_nodes(PM_Iterator& walk) {
    int level = -m_indent;
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    while (const char16_t* name = walk.nextNode(step)) {
        if (step == PM_Object::NODE_PARENT) {
            close_node(level);
            level -= m_indent;
            if (level == -m_indent) return;
            continue;
        }
        if (step == PM_Object::NODE_CHILD) {
            level += m_indent;
        } else {
            close_node(level);
        }
        open_node(name, level);
        write_properties(walk.currentNode(), level + m_indent);
        if (!flush_much()) return;
    }
}

void PiaWriter::open_node(std::u16string_view name, int level) {
    write_name(name, level);
    m_pending.append("{\n");
}

void PiaWriter::close_node(int level) {
    indent_by(level);
    m_pending.append("}\n");
}

void PiaWriter::indent_by(int level) {
    m_pending.append(static_cast<std::size_t>(std::max(level, 0)), ' ');
}

// A property of no type ends those of its node.
void PiaWriter::write_properties(const PM_Node* node, int level) {
    const PM_Property* prop = node != nullptr ? node->first_prop() : nullptr;
    for (; prop != nullptr && prop->type() >= PROP_LONG && prop->type() <= PROP_VOID; prop = prop->next()) {
        const std::size_t start = m_pending.size();
        try {
            write_property(*prop, level);
        } catch (const ZT_Exception&) {
            m_pending.truncate(start);
            throw;
        }
        if (!flush_much()) return;
    }
}

// Also makes room for what follows, unless that is long.
void PiaWriter::write_name(std::u16string_view name, int level) {
    const auto blanks = static_cast<std::size_t>(std::max(level, 0));
    char* const to = m_pending.room(blanks + name.size() + longest_name_end + longest_number);
    char* const at = std::fill_n(to, blanks, ' ');
    const std::size_t plain = narrow_plain(name, at);
    m_pending.end_at(at + plain);
    if (plain != name.size()) write_text(name.substr(plain));
}

void PiaWriter::write_property(const PM_Property& prop, int level) {
    write_name(prop.entry().view(), level);
    char* to = m_pending.room(longest_name_end + longest_number);
    *to++ = '=';
    switch (prop.type()) {
    case PROP_LONG:
        to = write_long(prop, to);
        break;
    case PROP_DOUBLE:
        to = write_double(prop, to);
        break;
    case PROP_BOOL:
        to = write_bool(prop, to);
        break;
    case PROP_STRING:
        m_pending.end_at(to);
        write_string(prop);
        to = m_pending.room(1);
        break;
    default:
        m_pending.end_at(to);
        write_raw(prop);
        to = m_pending.room(1);
    }
    *to++ = '\n';
    m_pending.end_at(to);
}

// Wide text up to its terminator, or to the end of what is stored: a text cut at its limit has none.
void PiaWriter::write_string(const PM_Property& prop) {
    const auto* const units = reinterpret_cast<const char16_t*>(value_of(prop));
    std::u16string_view text(units, prop.size() / sizeof(char16_t));
    if (text.ends_with(u'\0')) text.remove_suffix(1);
    char* const to = m_pending.room(text.size() + 1);
    *to = '"';
    const std::size_t plain = narrow_plain(text, to + 1);
    m_pending.end_at(to + 1 + plain);
    text.remove_prefix(plain);
    if (!text.empty() && text.front() != u'\0') write_text(text.substr(0, text.find(u'\0')));
}

void PiaWriter::write_raw(const PM_Property& prop) {
    const unsigned char* const bytes = value_of(prop);
    if (prop.size() == 0 || prop.size() > std::numeric_limits<int>::max()) {
        throw PM_Error(PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value",
                       u"$Workfile: pmobj $ $Revision: #1 $");
    }
    m_pending.append(1, '\\');
    char* const to = m_pending.room(2 * prop.size() + 1);
    pm_bin_to_hex(bytes, to, static_cast<int>(prop.size()));
    m_pending.end_at(to + 2 * prop.size());
    m_pending.append(1, '\\');
}

} // namespace pm
