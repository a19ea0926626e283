#include "check/pia/block.h"

#include "check/numbers.h"
#include <fmt/format.h>
#include <memory>
#include <pm/codec.h>
#include <pm/error_number.h>

namespace pm::kit {

namespace {

constexpr std::string_view tag = "pmzlibcodec";

std::uint32_t word_at(std::string_view bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t byte = 4; byte-- > 0;) {
        word = word << 8 | static_cast<unsigned char>(bytes[at + byte]);
    }
    return word;
}

// RFC 1950, section 8.2.
class Adler32 {
public:
    void add(std::string_view bytes) {
        constexpr std::size_t run = 5552; // the sums don't wrap before
        while (!bytes.empty()) {
            for (const char c : bytes.substr(0, run)) {
                m_low += static_cast<unsigned char>(c);
                m_high += m_low;
            }
            m_low %= modulus;
            m_high %= modulus;
            bytes.remove_prefix(std::min(run, bytes.size()));
        }
    }
    [[nodiscard]] std::uint32_t value() const { return m_high << 16 | m_low; }

private:
    static constexpr std::uint32_t modulus = 65521;
    std::uint32_t m_low = 1;
    std::uint32_t m_high = 0;
};

std::uint32_t adler_of(std::string_view bytes) {
    Adler32 sum;
    sum.add(bytes);
    return sum.value();
}

// Where the parts of a block stand, counted from its tag.
struct Frame {
    std::size_t at = 0; // the block in the file
    bool checked = false;
    std::uint32_t checksum = 0;
    std::uint32_t length = 0;
    std::string_view stream;
    std::string_view behind;
};

class BlockCheck {
public:
    BlockCheck(std::string_view file, const Place& place, Findings& findings)
        : m_file(file), m_place(place), m_findings(findings) {}

    std::optional<std::string> run(std::size_t header, bool checked);

private:
    bool take_frame(bool checked);
    std::optional<std::string> decode();
    void check_length(std::string_view body);
    void say(Rule rule, std::string message, std::uint32_t number = 0,
             std::optional<Severity> severity = {}) {
        m_findings.add({.rule = rule,
                        .place = m_place,
                        .message = std::move(message),
                        .number = number,
                        .severity = severity});
    }

    std::string_view m_file;
    const Place& m_place;
    Findings& m_findings;
    Frame m_frame;
};

bool BlockCheck::take_frame(bool checked) {
    m_frame.at = std::string_view(m_file.data(), std::min(m_file.find('\0'), m_file.size())).find(tag);
    switch (pm_zlib_block_frame(m_file.data(), m_file.size(), checked)) {
    case PM_BLOCK_MISSING:
        say(Rule::damaged_compression,
            "There is no block behind the header, which tells of a compressed body.", PM_ERR_NOT_DECODED);
        return false;
    case PM_BLOCK_CUT:
        say(Rule::cut_file, "The file ends within its compressed body.", PM_ERR_NOT_DECODED);
        return false;
    default:
        break;
    }
    const std::string_view block = m_file.substr(m_frame.at);
    const std::size_t sum = checked ? 4 : 0;
    m_frame.checked = checked;
    if (checked) m_frame.checksum = word_at(block, tag.size());
    m_frame.length = word_at(block, tag.size() + sum);
    const std::size_t start = tag.size() + sum + 8;
    m_frame.stream = block.substr(start, word_at(block, start - 4));
    m_frame.behind = block.substr(start + m_frame.stream.size());
    return true;
}

std::optional<std::string> BlockCheck::run(std::size_t header, bool checked) {
    if (!take_frame(checked)) return std::nullopt;
    if (m_frame.at > header) {
        say(Rule::trailing_data,
            fmt::format("{} bytes between the header and the compressed body aren't read.",
                        m_frame.at - header));
    }
    if (!m_frame.behind.empty()) {
        say(Rule::trailing_data,
            fmt::format("{} bytes behind the compressed body aren't read.", m_frame.behind.size()));
    }
    if (checked && m_frame.checksum != adler_of(m_frame.stream)) {
        say(Rule::damaged_compression,
            fmt::format("The checksum of the compressed body is {:08X}, and {:08X} is stored.",
                        adler_of(m_frame.stream), m_frame.checksum));
    }
    return decode();
}

std::optional<std::string> BlockCheck::decode() {
    if (pm_zlib_block_frame(m_file.data(), m_file.size(), m_frame.checked) == PM_BLOCK_TOO_LARGE) {
        say(Rule::damaged_compression,
            fmt::format("The block tells of {} bytes, more than its stream of {} can hold.", m_frame.length,
                        m_frame.stream.size()));
        return std::nullopt;
    }
    PM_zlib_Codec codec(reinterpret_cast<const unsigned char*>(m_file.data()),
                        static_cast<std::uint32_t>(m_file.size()), nullptr);
    unsigned char* block = nullptr;
    std::uint32_t size = 0;
    if (!(m_frame.checked ? codec.decodeCRC(block, size) : codec.decode(block, size))) {
        say(Rule::damaged_compression, "The compressed body doesn't decode.", PM_ERR_NOT_DECODED);
        return std::nullopt;
    }
    const auto release = [](unsigned char* owned) { PM_Mem_Obj::operator delete(owned); };
    const std::unique_ptr<unsigned char, decltype(release)> owned(block, release);
    std::string body(reinterpret_cast<const char*>(block), size);
    check_length(body);
    return body;
}

// A stream of fewer bytes than the block tells is read with zeros behind. Its own end tells what it held.
void BlockCheck::check_length(std::string_view body) {
    const std::size_t held = cut_end(body, std::string_view("\0", 1)).size();
    std::string_view end =
        m_frame.stream.substr(m_frame.stream.size() - std::min<std::size_t>(4, m_frame.stream.size()));
    if (end.size() < 4) return;
    const std::string reversed(end.rbegin(), end.rend());
    const std::uint32_t wanted = word_at(reversed, 0);
    Adler32 sum;
    sum.add(body.substr(0, held));
    std::size_t size = held;
    while (sum.value() != wanted && size < body.size()) {
        sum.add(body.substr(size++, 1));
    }
    if (sum.value() != wanted) {
        say(Rule::trailing_data,
            "Bytes behind the end of the stream, within the compressed body, aren't read.");
    } else if (size < body.size()) {
        say(Rule::damaged_compression,
            fmt::format("The block tells of {} bytes, and its stream holds {}.", body.size(), size));
    }
}

} // namespace

std::optional<std::string> check_block(std::string_view file, std::size_t header, bool checked,
                                       const Place& place, Findings& findings) {
    return BlockCheck(file, place, findings).run(header, checked);
}

} // namespace pm::kit
