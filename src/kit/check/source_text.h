#pragma once

#include "check/narrow_text.h"
#include <cstdint>
#include <pm/kit/diagnostic.h>
#include <string>
#include <string_view>

namespace pm::kit {

// A line of a text as an editor sees it, without its line feed.
struct SourceLine {
    std::string_view text;
    std::uint64_t number = 0;
    bool ended = false; // by a line feed
};

// The text of a file on its way through a scanner.
class SourceText {
public:
    // `where` has the file and section; `first_line` is the number of the text's first line. The content and
    // the code page are borrowed.
    SourceText(std::string_view content, const NarrowText& narrow, Place where, std::uint64_t first_line = 1);
    SourceText(const SourceText&) = delete;
    SourceText& operator=(const SourceText&) = delete;

    // As it stands.
    [[nodiscard]] std::string_view content() const { return m_content; }
    // To be scanned: of the same size, second bytes of double ones apart.
    [[nodiscard]] std::string_view text() const { return m_scanned; }
    [[nodiscard]] const NarrowText& narrow() const { return m_narrow; }

    // The next line behind the last one; false at the end. An empty text has no line, and one that ends in a
    // line feed has none behind it.
    bool next_line(SourceLine& line);
    // Of a line, and of what stands at `at` in it.
    [[nodiscard]] Place place(const SourceLine& line) const;
    [[nodiscard]] Place place(const SourceLine& line, const char* at) const;
    [[nodiscard]] const Place& where() const { return m_where; }

    // A part of text() in UTF-8: as the file's own if that is UTF-8, else as the library reads it.
    [[nodiscard]] std::string utf8(std::string_view part) const;
    [[nodiscard]] std::string quoted(std::string_view part) const { return kit::in_quotes(utf8(part)); }
    // How many units of the tree a part of text() has.
    [[nodiscard]] std::size_t units(std::string_view part) const;
    [[nodiscard]] bool is_longer(std::string_view part, std::size_t most) const {
        return part.size() > most && units(part) > most;
    }

private:
    [[nodiscard]] std::size_t characters(std::string_view part) const;

    std::string_view m_content;
    const NarrowText& m_narrow;
    Place m_where;
    std::string m_masked; // in a double-byte code page
    std::string_view m_scanned;
    bool m_utf8; // how characters are counted and shown
    std::size_t m_at = 0;
    std::uint64_t m_next_line;
};

} // namespace pm::kit
