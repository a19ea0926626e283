#include "check/encoding.h"

#include <algorithm>
#include <fmt/format.h>
#include <pm/text.h>

namespace pm::kit {

namespace {

// The first byte or sequence beyond ASCII of a kind in a text, with its line.
struct Mark {
    std::string_view bytes;
    Place place;
};

// What stands in a text beyond ASCII: sequences of UTF-8, and bytes that are none.
struct Kinds {
    std::optional<Mark> sequence;
    std::optional<Mark> byte;
};

template<class Action>
void for_each_piece(std::string_view line, Action action) {
    std::string_view rest = line;
    while (!rest.empty()) {
        const detail::Sequence sequence = detail::read_sequence(rest, false);
        if (!sequence.good || sequence.length > 1) action(rest.substr(0, sequence.length), sequence.good);
        rest.remove_prefix(sequence.length);
    }
}

Kinds kinds_of(SourceText& source) {
    Kinds kinds;
    SourceLine line;
    while (source.next_line(line) && !(kinds.sequence && kinds.byte)) {
        if (is_ascii(line.text)) continue;
        for_each_piece(line.text, [&](std::string_view piece, bool good) {
            std::optional<Mark>& mark = good ? kinds.sequence : kinds.byte;
            if (!mark) mark = Mark{piece, source.place(line, piece.data())};
        });
    }
    return kinds;
}

std::string hexadecimal(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        text += fmt::format("{}{:02X}", text.empty() ? "" : " ", static_cast<unsigned char>(c));
    }
    return text;
}

void check_mixture(const Kinds& kinds, Findings& findings) {
    const bool byte_first = kinds.byte->place.line < kinds.sequence->place.line;
    const Mark& second = byte_first ? *kinds.sequence : *kinds.byte;
    const Mark& first = byte_first ? *kinds.byte : *kinds.sequence;
    findings.add({Rule::mixed_encoding, second.place,
                  fmt::format("The bytes {} are {}, and {} on line {} are {}.", hexadecimal(second.bytes),
                              byte_first ? "UTF-8" : "none of UTF-8", hexadecimal(first.bytes),
                              first.place.line, byte_first ? "none" : "UTF-8")});
}

void check_kinds(const Kinds& kinds, const NarrowText& narrow, Findings& findings) {
    if (kinds.sequence && kinds.byte) return check_mixture(kinds, findings);
    if (!kinds.sequence || narrow.is_unicode()) return;
    const Mark& mark = *kinds.sequence;
    findings.add(
        {Rule::mixed_encoding, mark.place,
         fmt::format("The text is UTF-8 and is read in code page {}: {} reads as {}.", narrow.code_page(),
                     in_quotes(mark.bytes), in_quotes(to_utf8(narrow.decode(mark.bytes))))});
}

// Bytes that the code page has no character for, of one line.
std::string_view undecodable(std::string_view line, const NarrowText& narrow, std::string& bytes) {
    std::string_view first;
    const auto note = [&](std::string_view piece) {
        if (first.empty()) first = piece;
        bytes += piece;
    };
    if (narrow.is_unicode()) {
        for_each_piece(line, [&](std::string_view piece, bool good) {
            if (!good) note(piece);
        });
    } else if (narrow.has_double_bytes()) {
        if (narrow.decode(line.substr(0, line.find('\0'))).find(u'\uFFFD') != std::u16string::npos) {
            note(line.substr(0, 1));
        }
    } else {
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (narrow.is_undefined(static_cast<unsigned char>(line[at]))) note(line.substr(at, 1));
        }
    }
    return first;
}

// One diagnostic a line. A byte that the tree gives back as it was is worth a note.
void check_bytes(SourceText& source, Findings& findings) {
    constexpr std::size_t most_shown = 4;
    const NarrowText& narrow = source.narrow();
    const bool lost = narrow.is_unicode() || narrow.has_double_bytes();
    SourceLine line;
    while (source.next_line(line)) {
        if (is_ascii(line.text)) continue;
        std::string bytes;
        const std::string_view first = undecodable(line.text, narrow, bytes);
        if (first.empty()) continue;
        const std::string shown = narrow.has_double_bytes()
                                      ? std::string("Bytes of the line")
                                      : fmt::format("{} {}{}", bytes.size() == 1 ? "Byte" : "Bytes",
                                                    hexadecimal(bytes.substr(0, most_shown)),
                                                    bytes.size() > most_shown ? " ..." : "");
        const bool one = bytes.size() == 1 && !narrow.has_double_bytes();
        findings.add(
            {.rule = Rule::undecodable_byte,
             .place = narrow.has_double_bytes() ? source.place(line) : source.place(line, first.data()),
             .message = lost ? fmt::format("{} {} no text in code page {} and {} as U+FFFD.", shown,
                                           one ? "is" : "are", narrow.code_page(), one ? "reads" : "read")
                             : fmt::format("{} {} no character in code page {}.", shown, one ? "has" : "have",
                                           narrow.code_page()),
             .severity = lost ? Severity::error : Severity::note});
    }
}

} // namespace

void check_encoding(std::string_view content, const NarrowText& narrow, const Place& where,
                    std::uint64_t first_line, Findings& findings) {
    if (is_ascii(content)) return;
    if (!narrow.has_double_bytes()) {
        SourceText source(content, narrow, where, first_line);
        const Kinds kinds = kinds_of(source);
        check_kinds(kinds, narrow, findings);
        // Its sequences are bytes of the code page by chance.
        if (!kinds.byte && !narrow.is_unicode()) return;
    }
    SourceText bytes(content, narrow, where, first_line);
    check_bytes(bytes, findings);
}

} // namespace pm::kit
