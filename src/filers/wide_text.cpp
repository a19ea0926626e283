#include "filers/wide_text.h"

#include "base/widen.h"
#include <algorithm>
#include <cstdint>
#include <cstring>

namespace pm {

namespace {

constexpr std::size_t sparing_capacity = 1 << 20; // from here on, room is taken with little to spare
constexpr std::size_t longest_character = 4;      // bytes

constexpr std::uint64_t ones = 0x0101010101010101;
constexpr std::uint64_t tops = 0x8080808080808080;

// Whether all eight bytes are of ASCII and none is zero.
bool is_plain(std::uint64_t bytes) {
    return ((bytes | (bytes - ones)) & tops) == 0;
}

bool is_plain(char byte) {
    return byte > 0;
}

// Widens what is left behind the first `done` bytes, less than eight, together with some of those; gives how
// many are widened then.
std::size_t widen_last(std::string_view narrow, std::size_t done, char16_t* to) {
    const std::size_t start = narrow.size() - 8;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, narrow.data() + start, sizeof bytes);
    if (!is_plain(bytes)) return done;
    widen_eight(narrow.data() + start, to + start);
    return narrow.size();
}

} // namespace

std::size_t widen_plain(std::string_view narrow, char16_t* to) {
    std::size_t at = 0;
    for (; at + 8 <= narrow.size(); at += 8) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, narrow.data() + at, sizeof bytes);
        if (!is_plain(bytes)) break;
        widen_eight(narrow.data() + at, to + at);
    }
    if (at < narrow.size() && narrow.size() - at < 8 && at != 0) at = widen_last(narrow, at, to);
    for (; at < narrow.size() && is_plain(narrow[at]); ++at) {
        to[at] = static_cast<unsigned char>(narrow[at]);
    }
    return at;
}

bool WideText::reserve(std::size_t units) {
    if (units < m_capacity) return true;
    const std::size_t spare = m_capacity < sparing_capacity ? m_capacity : m_capacity / 16;
    const std::size_t wanted = std::max(units + 1, m_capacity + spare);
    void* const moved = reallocate(m_units.get(), wanted * sizeof(char16_t));
    if (moved == nullptr) return false;
    (void)m_units.release();
    m_units.reset(static_cast<char16_t*>(moved));
    m_capacity = wanted;
    return true;
}

void WideText::clear() {
    m_ended = false;
    m_pending.clear();
    if (m_units) truncate(0);
}

void WideText::truncate(std::size_t size) {
    m_size = size;
    m_units[size] = u'\0';
}

bool WideText::assign(std::string_view narrow) {
    m_ended = false;
    m_size = 0;
    if (!reserve(narrow.size())) return false;
    const std::size_t plain = widen_plain(narrow, m_units.get());
    truncate(plain);
    if (plain == narrow.size() || narrow[plain] == '\0') return true;
    const std::string_view rest = narrow.substr(plain);
    return append_decoded(rest.substr(0, rest.find('\0')));
}

bool WideText::append(std::string_view piece) {
    if (m_ended) return true;
    if (!reserve(m_size + piece.size())) return false;
    if (m_pending.empty()) {
        const std::size_t plain = widen_plain(piece, m_units.get() + m_size);
        truncate(m_size + plain);
        piece.remove_prefix(plain);
    }
    m_ended = piece.find('\0') != std::string_view::npos;
    m_pending += piece.substr(0, piece.find('\0'));
    const std::size_t whole = m_ended ? m_pending.size() : whole_characters();
    if (!append_decoded(std::string_view(m_pending).substr(0, whole))) return false;
    m_pending.erase(0, whole);
    return true;
}

bool WideText::end() {
    if (!reserve(m_size)) return false;
    truncate(m_size);
    const bool done = append_decoded(m_pending);
    m_pending.clear();
    return done;
}

// How much of what is pending can be decoded without what follows. No character of any code page goes on
// behind a byte below 40; without one, characters are counted off from the start.
std::size_t WideText::whole_characters() const {
    const auto low =
        std::find_if(m_pending.rbegin(), m_pending.rend(), [](char c) { return c >= 0 && c < 0x40; });
    if (low != m_pending.rend()) return static_cast<std::size_t>(m_pending.rend() - low);
    std::size_t at = 0;
    while (at + longest_character <= m_pending.size()) {
        at += m_page->character_length(m_pending.c_str() + at);
    }
    return at;
}

bool WideText::append_decoded(std::string_view narrow) {
    if (narrow.empty()) return true;
    m_scratch.clear();
    m_page->decode(narrow, m_scratch);
    if (!reserve(m_size + m_scratch.size())) return false;
    std::copy(m_scratch.begin(), m_scratch.end(), m_units.get() + m_size);
    truncate(m_size + m_scratch.size());
    return true;
}

Block<char16_t> WideText::take() {
    m_capacity = m_size = 0;
    return std::move(m_units);
}

void WideText::shrink(std::size_t size) {
    const std::size_t units = (size + 1) / sizeof(char16_t) + 1;
    if (units >= m_capacity) return;
    void* const moved = reallocate(m_units.get(), units * sizeof(char16_t));
    if (moved == nullptr) return;
    (void)m_units.release();
    m_units.reset(static_cast<char16_t*>(moved));
    m_capacity = units;
    m_size = 0;
}

} // namespace pm
