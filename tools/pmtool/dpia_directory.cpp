#include "dpia_directory.h"

#include "little_endian.h"

namespace pmtool {

namespace {

constexpr std::uint32_t version_1 = 0x00010000;
constexpr std::uint32_t version_2 = 0x00020000;

class Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    std::optional<std::uint32_t> word() {
        if (!skip(4)) return std::nullopt;
        return little_endian(m_bytes, m_at - 4);
    }

    // A length word and as many bytes.
    bool skip_text() {
        const std::optional<std::uint32_t> length = word();
        return length && skip(*length);
    }

    std::size_t left() const { return m_bytes.size() - m_at; }

private:
    bool skip(std::size_t count) {
        if (left() < count) return false;
        m_at += count;
        return true;
    }

    std::string_view m_bytes;
    std::size_t m_at = 0;
};

bool skip_entry(Reader& reader, int version) {
    return reader.skip_text() && (version == 1 || reader.skip_text()) && reader.word() && reader.word();
}

} // namespace

std::optional<DpiaDirectory> read_dpia_directory(std::string_view bytes) {
    Reader reader(bytes);
    const std::optional<std::uint32_t> word = reader.word();
    const std::optional<std::uint32_t> count = reader.word();
    if (!count || (*word != version_1 && *word != version_2)) return std::nullopt;
    const int version = *word == version_1 ? 1 : 2;
    for (std::uint32_t i = 0; i < *count; ++i) {
        if (!skip_entry(reader, version)) return std::nullopt;
    }
    return DpiaDirectory{version, *count};
}

} // namespace pmtool
