#include "filers/pia_writer.h"

#include <cstring>
#include <ostream>
#include <pm/exception.h>

namespace pm {

namespace {

constexpr std::size_t flush_size = 32768;

} // namespace

PiaWriter::PiaWriter(std::ostream& stream, unsigned text_code_page, int indent)
    : m_stream(stream), m_page(code_page(text_code_page)), m_indent(indent) {
    m_pending.reserve(flush_size + flush_size / 4);
}

void PiaWriter::write_text(std::u16string_view text) {
    m_page.encode(text, m_pending);
}

void PiaWriter::flush() {
    m_stream.write(m_pending.data(), static_cast<std::streamsize>(m_pending.size()));
    m_pending.clear();
}

void PiaWriter::write_body(PM_Iterator& walk) {
    try {
        write_properties(walk, 0);
        write_nodes(walk);
    } catch (const ZT_Exception&) {
        flush();
        throw;
    }
    m_pending += '\0';
    flush();
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
        write_properties(walk, level + m_indent);
        if (m_pending.size() >= flush_size) flush();
        if (!m_stream.good()) return;
    }
}

void PiaWriter::open_node(const char16_t* name, int level) {
    indent_by(level);
    write_text(name);
    m_pending += "{\n";
}

void PiaWriter::close_node(int level) {
    indent_by(level);
    m_pending += "}\n";
}

void PiaWriter::write_properties(PM_Iterator& walk, int level) {
    CurrentValue value;
    while (const char16_t* name = value.next(walk)) {
        indent_by(level);
        write_text(name);
        m_pending += '=';
        write_value(value);
        m_pending += '\n';
        if (m_pending.size() >= flush_size) flush();
        if (!m_stream.good()) return;
    }
}

void PiaWriter::write_value(const CurrentValue& value) {
    switch (value.type) {
    case PROP_VOID:
        m_pending += '\\';
        m_pending += value.text;
        m_pending += '\\';
        break;
    case PROP_STRING:
        m_pending += '"';
        write_stored_text(value.text, value.size - 1);
        break;
    case PROP_DOUBLE:
        write_stored_text(value.text, value.size);
        break;
    default:
        m_pending += value.text;
    }
}

// Wide text up to its terminator, or to the end of what is stored: a text cut at its limit has none.
void PiaWriter::write_stored_text(const char* value, std::size_t bytes) {
    m_units.resize(bytes / sizeof(char16_t));
    std::memcpy(m_units.data(), value, m_units.size() * sizeof(char16_t));
    const std::u16string_view units = m_units;
    write_text(units.substr(0, units.find(u'\0')));
}

} // namespace pm
