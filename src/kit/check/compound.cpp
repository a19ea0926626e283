#include "check/compound.h"

#include <algorithm>

namespace pm::kit {

namespace {

constexpr std::string_view signature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::size_t header_size = 512;
constexpr std::size_t difat_in_header = 109;
constexpr std::size_t entry_size = 128;
constexpr std::size_t mini_sector = 64;
constexpr std::uint64_t mini_limit = 4096;
constexpr std::uint32_t last_regular = 0xFFFFFFFA; // numbers of sectors are below

std::uint32_t word_in(std::string_view bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t byte = 4; byte-- > 0;) {
        word = word << 8 | static_cast<unsigned char>(bytes[at + byte]);
    }
    return word;
}

std::uint32_t half_in(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + 1])) << 8;
}

void append_words(std::string_view bytes, std::vector<std::uint32_t>& words) {
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        words.push_back(word_in(bytes, at));
    }
}

bool is_name(std::u16string_view name) {
    return !name.empty() &&
           name.find_first_of(std::u16string_view(u"/\\:!\0", 5)) == std::u16string_view::npos;
}

} // namespace

Compound::Compound(std::string_view file) : m_file(file) {
    if (!read_header() || !read_table() || !read_directory()) return;
    read_mini_stream();
}

std::uint32_t Compound::word(std::size_t at) const {
    return word_in(m_file, at);
}

bool Compound::read_header() {
    if (m_file.size() < header_size || !m_file.starts_with(signature)) {
        m_failure = "The file has no header of a compound file.";
    } else if (half_in(m_file, 28) != 0xFFFE || half_in(m_file, 32) != 6 || word(56) != mini_limit) {
        m_failure = "The header tells another byte order, mini sector or limit than compound files have.";
    } else if (half_in(m_file, 30) != 9 && half_in(m_file, 30) != 12) {
        m_failure = "The header tells a size of sectors that compound files don't have.";
    }
    if (!m_failure.empty()) return false;
    m_sector = std::size_t{1} << half_in(m_file, 30);
    m_sectors = m_file.size() <= m_sector ? 0 : (m_file.size() - 1) / m_sector;
    return true;
}

std::string_view Compound::sector(std::uint32_t number) const {
    if (number >= m_sectors) return {};
    return m_file.substr((std::size_t{number} + 1) * m_sector, m_sector);
}

bool Compound::read_table() {
    const std::uint32_t count = word(44);
    m_failure = "The allocation table lies outside of the file.";
    if (count == 0 || count > m_sectors) return false;
    std::vector<std::uint32_t> sectors;
    append_words(m_file.substr(76, std::min<std::size_t>(count, difat_in_header) * 4), sectors);
    std::uint32_t next = word(68);
    while (sectors.size() < count) { // each gives some, so a ring of them ends, too
        const std::string_view difat = sector(next);
        if (difat.size() < m_sector) return false;
        append_words(difat.substr(0, m_sector - 4), sectors);
        next = word_in(difat, m_sector - 4);
    }
    sectors.resize(count);
    for (const std::uint32_t number : sectors) {
        const std::string_view bytes = sector(number);
        if (bytes.empty()) return false;
        append_words(bytes, m_table);
        m_table.resize((m_table.size() + m_sector / 4 - 1) / (m_sector / 4) * (m_sector / 4), 0xFFFFFFFF);
    }
    m_failure.clear();
    return true;
}

std::optional<std::vector<std::uint32_t>>
Compound::chain(std::uint32_t first, const std::vector<std::uint32_t>& table, std::size_t most) const {
    constexpr std::size_t few =
        64; // are looked through, so that short chains cost nothing of the table's size
    std::vector<std::uint32_t> numbers;
    std::vector<bool> met(most > few ? table.size() : 0);
    for (std::uint32_t next = first; next < last_regular && numbers.size() < most; next = table[next]) {
        if (next >= table.size()) return std::nullopt;
        const bool again =
            met.empty() ? std::find(numbers.begin(), numbers.end(), next) != numbers.end() : met[next];
        if (again) return std::nullopt;
        if (!met.empty()) met[next] = true;
        numbers.push_back(next);
    }
    return numbers;
}

std::optional<std::string> Compound::gather(std::uint32_t first, std::size_t size) const {
    const std::optional<std::vector<std::uint32_t>> sectors =
        chain(first, m_table, (size + m_sector - 1) / m_sector);
    if (!sectors) return std::nullopt;
    std::string bytes;
    for (const std::uint32_t number : *sectors) {
        bytes += sector(number);
    }
    if (bytes.size() < size) return std::nullopt;
    bytes.resize(size);
    return bytes;
}

Compound::Entry Compound::read_entry(std::string_view bytes) const {
    Entry entry;
    const std::uint32_t size = half_in(bytes, 64);
    entry.kind = static_cast<std::uint8_t>(bytes[66]);
    entry.left = word_in(bytes, 68);
    entry.right = word_in(bytes, 72);
    entry.child = word_in(bytes, 76);
    entry.first = word_in(bytes, 116);
    entry.size = word_in(bytes, 120);
    if (half_in(m_file, 26) > 3) entry.size |= static_cast<std::uint64_t>(word_in(bytes, 124)) << 32;
    const bool sized = size >= 2 && size <= 64 && size % 2 == 0;
    for (std::size_t at = 0; sized && at + 2 < size; at += 2) {
        entry.name += static_cast<char16_t>(half_in(bytes, at));
    }
    entry.named = sized && half_in(bytes, size - 2) == 0 && is_name(entry.name);
    return entry;
}

bool Compound::read_directory() {
    m_failure = "The directory can't be read.";
    const std::optional<std::vector<std::uint32_t>> sectors = chain(word(48), m_table, m_sectors);
    if (!sectors || sectors->empty()) return false;
    for (const std::uint32_t number : *sectors) {
        const std::string_view bytes = sector(number);
        if (bytes.empty()) return false;
        for (std::size_t at = 0; at + entry_size <= bytes.size(); at += entry_size) {
            m_entries.push_back(read_entry(bytes.substr(at, entry_size)));
        }
    }
    if (m_entries.empty() || m_entries.front().kind != static_cast<std::uint8_t>(Kind::root)) return false;
    m_failure.clear();
    return true;
}

void Compound::read_mini_stream() {
    const std::optional<std::vector<std::uint32_t>> sectors = chain(word(60), m_table, m_sectors);
    if (sectors) {
        for (const std::uint32_t number : *sectors) {
            append_words(sector(number), m_mini_table);
        }
    }
    if (m_entries.front().size <= m_file.size()) {
        m_mini_stream = gather(m_entries.front().first, static_cast<std::size_t>(m_entries.front().size));
    }
}

std::vector<std::uint32_t> Compound::elements(std::uint32_t storage, std::vector<bool>& met,
                                              std::size_t& broken) const {
    std::vector<std::uint32_t> found;
    std::vector<std::uint32_t> waiting{m_entries[storage].child};
    while (!waiting.empty()) {
        const std::uint32_t next = waiting.back();
        waiting.pop_back();
        if (next == no_entry) continue;
        if (next >= m_entries.size() || met[next]) {
            ++broken;
            continue;
        }
        met[next] = true;
        found.push_back(next);
        waiting.push_back(m_entries[next].right);
        waiting.push_back(m_entries[next].left);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::string> Compound::read(const Entry& entry, std::size_t most) const {
    if (entry.size == 0) return std::string();
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(entry.size, most));
    if (entry.size >= mini_limit) return gather(entry.first, size);
    if (!m_mini_stream) return std::nullopt;
    const auto wanted = static_cast<std::size_t>((entry.size + mini_sector - 1) / mini_sector);
    const std::optional<std::vector<std::uint32_t>> sectors = chain(entry.first, m_mini_table, wanted);
    if (!sectors || sectors->size() < wanted) return std::nullopt;
    std::string bytes;
    for (const std::uint32_t number : *sectors) {
        const std::size_t at = std::size_t{number} * mini_sector;
        if (at >= m_mini_stream->size()) return std::nullopt;
        bytes += m_mini_stream->substr(at, mini_sector);
    }
    if (bytes.size() < size) return std::nullopt;
    bytes.resize(size);
    return bytes;
}

std::size_t Compound::unused_end() const {
    std::size_t last = 0;
    for (std::size_t number = 0; number < std::min(m_sectors, m_table.size()); ++number) {
        if (m_table[number] != 0xFFFFFFFF) last = number + 1;
    }
    const std::size_t end = (last + 1) * m_sector;
    return m_file.size() > end ? m_file.size() - end : 0;
}

} // namespace pm::kit
