#pragma once

#include "filers/current_value.h"
#include "platform/code_page.h"
#include <cstddef>
#include <iosfwd>
#include <pm/iterator.h>
#include <string>
#include <string_view>

namespace pm {

// Writes the body of a PIA file: the properties of a walk's start node and the blocks of all nodes below,
// each level indented by `indent` blanks, and a zero byte.
class PiaWriter {
public:
    // The stream is borrowed. `text_code_page` is what wide text goes out in.
    PiaWriter(std::ostream& stream, unsigned text_code_page, int indent);

    // Wide text as it stands.
    void write_text(std::u16string_view text);
    // The whole body. Stops early, without a word, when the stream fails. When a value can't be had, the
    // lines in front of it are in the stream.
    void write_body(PM_Iterator& walk);
    // Hands what is kept back to the stream.
    void flush();

private:
    void write_nodes(PM_Iterator& walk);
    void write_properties(PM_Iterator& walk, int level);
    void write_value(const CurrentValue& value);
    void write_stored_text(const char* value, std::size_t bytes);
    void open_node(const char16_t* name, int level);
    void close_node(int level);
    void indent_by(int level) { m_pending.append(static_cast<std::size_t>(level > 0 ? level : 0), ' '); }

    std::ostream& m_stream;
    const CodePage& m_page;
    int m_indent;
    std::string m_pending;
    std::u16string m_units;
};

} // namespace pm
