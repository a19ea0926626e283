#include "check/pia/check.h"

#include "check/encoding.h"
#include "check/library_load.h"
#include "check/numbers.h"
#include "check/pia/block.h"
#include "check/pia/body.h"
#include <fmt/format.h>
#include <numeric>
#include <pm/error_number.h>

namespace pm::kit {

namespace {

constexpr std::size_t longest_header = 1023; // bytes
constexpr std::size_t seen_of_header = 511;  // characters
constexpr std::string_view version_1 = "PIAFILEVERSION_1.0";
constexpr std::string_view version_2 = "PIAFILEVERSION_2.0";
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

enum class Body { plain, compressed, compressed_1, none };

// The header of a file: the first line that isn't empty.
class Header {
public:
    Header(std::string_view content, const Place& where, Findings& findings)
        : m_content(content), m_where(where), m_findings(findings) {}

    // False if nothing is read behind it.
    bool check();
    [[nodiscard]] Body body() const { return m_body; }
    // In bytes, with its line feed, and in lines.
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] std::uint64_t lines() const { return m_lines; }

private:
    bool find_line();
    void check_version(std::string_view text);
    void say(Rule rule, std::string message, std::uint32_t number) {
        Place place = m_where;
        place.line = m_lines;
        m_findings.add(
            {.rule = rule, .place = std::move(place), .message = std::move(message), .number = number});
    }

    std::string_view m_content;
    const Place& m_where;
    Findings& m_findings;
    std::string_view m_line;
    Body m_body = Body::plain;
    std::size_t m_size = 0;
    std::uint64_t m_lines = 0;
};

bool Header::find_line() {
    while (true) {
        const std::string_view rest = m_content.substr(m_size);
        const std::size_t end = rest.find('\n');
        ++m_lines;
        // No line end at all is beyond any limit.
        if (end > longest_header) {
            const bool ends = rest.size() <= longest_header;
            say(ends ? Rule::cut_file : Rule::bad_header,
                ends ? "The file ends within its header."
                     : fmt::format("The header has more than {} bytes.", longest_header),
                PM_ERR_STREAM_FAILED);
            return false;
        }
        m_size += end + 1;
        m_line = rest.substr(0, end);
        m_line = m_line.substr(0, m_line.find('\0'));
        if (!m_line.empty()) return true;
    }
}

void Header::check_version(std::string_view text) {
    if (starts_ignoring_case(text, version_1) || starts_ignoring_case(text, version_2)) return;
    const bool marked = text.starts_with(byte_order_mark);
    say(Rule::bad_header,
        marked ? std::string("A byte order mark stands in front of the header.")
               : fmt::format("{} is no header of property text.", in_quotes(to_utf8(to_utf16(text)))),
        PM_ERR_NOT_A_HEADER);
}

bool Header::check() {
    if (!find_line()) return false;
    std::string_view text = m_line;
    if (text.ends_with('\r')) text.remove_suffix(1);
    text = skip(text, " \t");
    check_version(text);
    if (text.substr(0, seen_of_header).find("compress") == std::string_view::npos) return true;
    m_body = text.starts_with(version_2)   ? Body::compressed
             : text.starts_with(version_1) ? Body::compressed_1
                                           : Body::none;
    if (m_body != Body::none) return true;
    say(Rule::bad_header, "A compressed body needs the version in capital letters, and isn't read.", 0);
    return false;
}

// The lines of a file that the library counts, with those in front of the body.
std::vector<std::uint64_t> with_header(const Header& header, const std::vector<std::uint64_t>& body) {
    std::vector<std::uint64_t> lines(header.lines());
    std::iota(lines.begin(), lines.end(), 1);
    lines.insert(lines.end(), body.begin(), body.end());
    return lines;
}

} // namespace

void check_pia(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings) {
    const std::size_t first = findings.count();
    Header header(content, where, findings);
    if (!header.check()) return;
    std::string_view body = content.substr(header.size());
    std::optional<std::string> decoded;
    if (header.body() != Body::plain) {
        Place place = where;
        place.line = header.lines() + 1;
        decoded = check_block(content, header.size(), header.body() == Body::compressed, place, findings);
        if (!decoded) return;
        body = *decoded;
    }
    check_encoding(content.substr(0, header.size()), narrow, where, 1, findings);
    check_encoding(body, narrow, where, header.lines() + 1, findings);
    SourceText source(body, narrow, where, header.lines() + 1);
    PiaBody scanner(source, findings);
    scanner.check();
    const std::string harmless = std::string(version_2) + "\n" + scanner.harmless();
    std::vector<Heard> heard = hear(harmless, PM_Object::FILE_PIA);
    for (Heard& each : heard) {
        if (each.counted > 0) each.counted += header.lines() - 1;
    }
    add_unfound(heard, with_header(header, scanner.counted_lines()), where, first, findings);
    findings.sort_from(first);
}

} // namespace pm::kit
