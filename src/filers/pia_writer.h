#pragma once

#include "base/allocator.h"
#include "platform/code_page.h"
#include <cstddef>
#include <iosfwd>
#include <pm/iterator.h>
#include <string>
#include <string_view>

namespace pm {

// Bytes on their way out, in one block that grows. Number 55 (place u"PM_PIAFile::save()", detail u"buffer")
// where it can't.
class OutputBlock {
public:
    // Where so many bytes may be written; end_at() tells how many were.
    char* room(std::size_t bytes) {
        if (bytes > m_capacity - m_size) grow(bytes);
        return m_bytes.get() + m_size;
    }
    void end_at(const char* end) { m_size = static_cast<std::size_t>(end - m_bytes.get()); }
    void append(std::string_view bytes);
    void append(std::size_t count, char byte);

    std::string_view view() const { return {m_bytes.get(), m_size}; }
    std::size_t size() const { return m_size; }
    void truncate(std::size_t size) { m_size = size; }

private:
    void grow(std::size_t bytes);

    Block<char> m_bytes;
    std::size_t m_capacity = 0;
    std::size_t m_size = 0;
};

// Writes the body of a PIA file: the properties of a walk's start node and the blocks of all nodes below,
// each level indented by `indent` blanks, and a zero byte.
class PiaWriter {
public:
    // The stream is borrowed. `text_code_page` is what wide text goes out in.
    PiaWriter(std::ostream& stream, unsigned text_code_page, int indent);
    // Without a stream all stays in memory, for pending().
    PiaWriter(unsigned text_code_page, int indent);

    // Wide text as it stands.
    void write_text(std::u16string_view text);
    // The whole body. Stops early, without a word, when the stream fails. When a value can't be had, the
    // lines in front of it are in the stream.
    void write_body(PM_Iterator& walk);
    // Hands what is kept back to the stream.
    void flush();
    // What is kept back.
    std::string_view pending() const { return m_pending.view(); }

private:
    void write_nodes(PM_Iterator& walk);
    void write_properties(const PM_Node* node, int level);
    void write_property(const PM_Property& prop, int level);
    void write_name(std::u16string_view name, int level);
    void write_string(const PM_Property& prop);
    void write_raw(const PM_Property& prop);
    void open_node(std::u16string_view name, int level);
    void close_node(int level);
    void indent_by(int level);
    bool flush_much();

    std::ostream* m_stream;
    const CodePage& m_page;
    int m_indent;
    OutputBlock m_pending;
    std::string m_narrow;
};

} // namespace pm
