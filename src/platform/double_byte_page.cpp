#include "platform/double_byte_page.h"

#include "platform/double_byte_characters.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <type_traits>

namespace pm {

namespace {

constexpr char16_t replacement = u'\uFFFD';
constexpr unsigned char first_lead = 0x81;
constexpr unsigned char last_lead = 0xFE;

constexpr unsigned char code(char byte) {
    return static_cast<unsigned char>(byte);
}

// How the bytes of a page lie.
struct Layout {
    std::array<char16_t, 0x100>
        single; // units of the bytes that are characters alone; 0 for a lead byte, and for 0
    unsigned char last_trail;

    constexpr bool is_lead(char byte) const { return code(byte) >= first_lead && single[code(byte)] == 0; }
    constexpr bool is_trail(char byte) const {
        return code(byte) >= 0x40 && code(byte) <= last_trail && code(byte) != 0x7F;
    }
};

constexpr void put_ascii(Layout& layout) {
    for (std::size_t byte = 0; byte < 0x80; ++byte) {
        layout.single[byte] = static_cast<char16_t>(byte);
    }
}

// 932: half-width katakana stand between two ranges of lead bytes.
constexpr Layout shift_jis_layout = [] {
    Layout layout{{}, 0xFC};
    put_ascii(layout);
    for (const std::size_t undefined : {0x80U, 0xA0U, 0xFDU, 0xFEU, 0xFFU}) {
        layout.single[undefined] = replacement;
    }
    for (std::size_t byte = 0xA1; byte <= 0xDF; ++byte) {
        layout.single[byte] = static_cast<char16_t>(0xFF61 + (byte - 0xA1));
    }
    return layout;
}();

// 936, 949 and 950, by the units that Windows gives to the bytes around the lead bytes.
constexpr Layout make_layout(char16_t unit_of_80, char16_t unit_of_ff) {
    Layout layout{{}, 0xFE};
    put_ascii(layout);
    layout.single[0x80] = unit_of_80;
    layout.single[0xFF] = unit_of_ff;
    return layout;
}
constexpr Layout gbk_layout = make_layout(0x20AC, 0xF8F5);
constexpr Layout korean_layout = make_layout(0x0080, 0xF8F7);
constexpr Layout big5_layout = make_layout(0x0080, 0xF8F8);

// All characters of a page.
struct Characters {
    std::array<std::array<char16_t, 0x100>, last_lead - first_lead + 1> units; // by lead and trail byte
    std::array<std::uint16_t, 0x10000> bytes; // by unit: lead and trail byte, or a byte alone; 0 for none
};

// While one lives, others with the same flag wait. In place of a mutex, which isn't a constant on every
// system.
class Turn {
public:
    explicit Turn(std::atomic_flag& taken) : m_taken(taken) {
        while (m_taken.test_and_set(std::memory_order_acquire)) {
            std::this_thread::yield();
        }
    }
    ~Turn() { m_taken.clear(std::memory_order_release); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    std::atomic_flag& m_taken;
};

class DoubleBytePage final : public CodePage {
public:
    constexpr DoubleBytePage(unsigned number, const Layout& layout, Characters& characters)
        : CodePage(number), m_layout(layout), m_characters(characters) {}

    // Whether the characters are known. The first call learns them.
    bool is_ready() {
        if (m_ready.load(std::memory_order_acquire)) return true;
        const Turn turn(m_learning);
        if (!m_ready.load(std::memory_order_relaxed)) m_ready.store(learn(), std::memory_order_release);
        return m_ready.load(std::memory_order_relaxed);
    }

    std::size_t character_length(const char* text) const override {
        return m_layout.is_lead(text[0]) && text[1] != '\0' ? 2 : 1;
    }

private:
    bool learn() {
        const std::unique_ptr<DoubleByteCharacters> system = DoubleByteCharacters::open(number());
        if (!system) return false;
        for (unsigned byte = 0; byte < m_layout.single.size(); ++byte) {
            if (m_layout.is_lead(static_cast<char>(byte))) {
                learn_lead(*system, static_cast<unsigned char>(byte));
            } else if (m_layout.single[byte] != replacement) {
                m_characters.bytes[m_layout.single[byte]] = static_cast<std::uint16_t>(byte);
            }
        }
        return true;
    }

    // Only a unit that several characters have is asked for in turn. So nothing that is merely like a
    // character goes out as that character.
    void learn_lead(DoubleByteCharacters& system, unsigned char lead) {
        for (unsigned trail = 0; trail <= m_layout.last_trail; ++trail) {
            if (!m_layout.is_trail(static_cast<char>(trail))) continue;
            const char16_t unit = system.unit_of(lead, static_cast<unsigned char>(trail));
            m_characters.units[lead - first_lead][trail] = unit;
            if (unit == replacement) continue;
            std::uint16_t& bytes = m_characters.bytes[unit];
            bytes = bytes == 0 ? static_cast<std::uint16_t>(lead * 0x100U + trail) : system.bytes_of(unit);
        }
    }

    // A lead byte without a trail byte is one broken sequence, a pair without a meaning another.
    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        const std::size_t start = wide.size();
        wide.resize(start + narrow.size());
        char16_t* out = wide.data() + start;
        for (std::size_t at = 0; at < narrow.size(); ++at) {
            const char byte = narrow[at];
            if (!m_layout.is_lead(byte)) {
                *out++ = m_layout.single[code(byte)];
            } else if (at + 1 < narrow.size() && m_layout.is_trail(narrow[at + 1])) {
                *out++ = m_characters.units[code(byte) - first_lead][code(narrow[++at])];
            } else {
                *out++ = replacement;
            }
        }
        wide.resize(static_cast<std::size_t>(out - wide.data()));
    }

    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        const std::size_t start = narrow.size();
        narrow.resize(start + 2 * wide.size());
        char* out = narrow.data() + start;
        for (const char16_t unit : wide) {
            const std::uint16_t bytes = m_characters.bytes[unit];
            if (bytes > 0xFF) *out++ = static_cast<char>(bytes >> 8);
            *out++ = bytes != 0 || unit == 0 ? static_cast<char>(bytes & 0xFF) : '?';
        }
        narrow.resize(static_cast<std::size_t>(out - narrow.data()));
    }

    const Layout& m_layout;
    Characters& m_characters;
    std::atomic<bool> m_ready{false};
    std::atomic_flag m_learning;
};

static_assert(std::is_trivially_destructible_v<DoubleBytePage>);

// Zero at first and part of the library, so that no memory has to be had for them.
constinit Characters shift_jis_characters{};
constinit Characters gbk_characters{};
constinit Characters korean_characters{};
constinit Characters big5_characters{};

constinit DoubleBytePage pages[] = {{932, shift_jis_layout, shift_jis_characters},
                                    {936, gbk_layout, gbk_characters},
                                    {949, korean_layout, korean_characters},
                                    {950, big5_layout, big5_characters}};

} // namespace

const CodePage* find_double_byte_page(unsigned number) {
    auto* page = std::find_if(std::begin(pages), std::end(pages),
                              [number](const CodePage& each) { return each.number() == number; });
    return page != std::end(pages) && page->is_ready() ? page : nullptr;
}

} // namespace pm
