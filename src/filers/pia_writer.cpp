#include "filers/pia_writer.h"

#include "base/text.h"
#include "store/pmpmgr.h"
#include "store/value_text.h"
#include <algorithm>
#include <charconv>
#include <limits>
#include <ostream>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/value_text.h>

namespace pm {

namespace {

constexpr std::size_t flush_size = 32768;
constexpr std::size_t longest_long = 11;

// Narrows units up to the first beyond ASCII; gives how many.
std::size_t narrow_plain(std::u16string_view wide, char* to) {
    std::size_t at = 0;
    for (; at + 8 <= wide.size(); at += 8) {
        unsigned seen = 0;
        for (std::size_t i = 0; i < 8; ++i) {
            seen |= wide[at + i];
            to[at + i] = static_cast<char>(wide[at + i]);
        }
        if (seen >= 0x80) break;
    }
    for (; at < wide.size() && wide[at] < 0x80; ++at) {
        to[at] = static_cast<char>(wide[at]);
    }
    return at;
}

} // namespace

char* OutputBlock::room(std::size_t bytes) {
    if (bytes > m_capacity - m_size) {
        const std::size_t wanted = std::max({m_size + bytes, m_capacity + m_capacity / 2, flush_size});
        void* const moved = reallocate(m_bytes.get(), wanted);
        if (moved == nullptr) {
            throw PM_Memory_Exception(u"PM_PIAFile::save()", u"buffer",
                                      u"$Workfile: pmpia $ $Revision: #1 $");
        }
        (void)m_bytes.release();
        m_bytes.reset(static_cast<char*>(moved));
        m_capacity = wanted;
    }
    return m_bytes.get() + m_size;
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
        if (m_stream != nullptr) flush();
        throw;
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

void PiaWriter::open_node(const char16_t* name, int level) {
    indent_by(level);
    write_text(name);
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

void PiaWriter::write_property(const PM_Property& prop, int level) {
    indent_by(level);
    write_text(prop.name());
    m_pending.append(1, '=');
    write_value(prop);
    m_pending.append(1, '\n');
}

void PiaWriter::write_value(const PM_Property& prop) {
    switch (prop.type()) {
    case PROP_LONG:
        return write_long(prop);
    case PROP_DOUBLE:
        return write_double(prop);
    case PROP_STRING:
        return write_string(prop);
    case PROP_BOOL:
        return write_bool(prop);
    default:
        return write_raw(prop);
    }
}

void PiaWriter::write_long(const PM_Property& prop) {
    std::int32_t value = 0;
    prop.GetData(&value, sizeof value);
    char* const to = m_pending.room(longest_long);
    m_pending.end_at(std::to_chars(to, to + longest_long, value).ptr);
}

void PiaWriter::write_double(const PM_Property& prop) {
    double value = 0;
    prop.GetData(&value, sizeof value);
    char* const to = m_pending.room(double_text_capacity);
    m_pending.end_at(format_double(value, to));
}

// Wide text up to its terminator, or to the end of what is stored: a text cut at its limit has none.
void PiaWriter::write_string(const PM_Property& prop) {
    m_units.resize((prop.size() + 1) / sizeof(char16_t));
    prop.GetData(m_units.data(), m_units.size() * sizeof(char16_t));
    const std::u16string_view units = std::u16string_view(m_units).substr(0, prop.size() / sizeof(char16_t));
    m_pending.append(1, '"');
    write_text(units.substr(0, units.find(u'\0')));
}

void PiaWriter::write_bool(const PM_Property& prop) {
    unsigned char flag[8] = {};
    prop.GetData(flag, sizeof flag);
    m_pending.append(flag[0] != 0 ? "TRUE" : "FALSE");
}

void PiaWriter::write_raw(const PM_Property& prop) {
    if (prop.size() == 0) prop.GetData(nullptr, 0); // fails if there never was a value
    if (prop.size() == 0 || prop.size() > std::numeric_limits<int>::max()) {
        throw PM_Error(PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value",
                       u"$Workfile: pmobj $ $Revision: #1 $");
    }
    m_pending.append(1, '\\');
    char* const to = m_pending.room(2 * prop.size() + 1);
    pm_bin_to_hex(prop.data(), to, static_cast<int>(prop.size()));
    m_pending.end_at(to + 2 * prop.size());
    m_pending.append(1, '\\');
}

} // namespace pm
