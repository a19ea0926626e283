#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pm::kit {

// A compound file for reading, as docs/doc.md has the format. Nothing in it is trusted.
class Compound {
public:
    static constexpr std::uint32_t no_entry = 0xFFFFFFFF;
    enum class Kind : std::uint8_t { unused = 0, storage = 1, stream = 2, root = 5 };
    struct Entry {
        std::u16string name;
        bool named = false; // its name is one that the format has
        std::uint8_t kind = 0;
        std::uint32_t left = no_entry;
        std::uint32_t right = no_entry;
        std::uint32_t child = no_entry;
        std::uint32_t first = 0;
        std::uint64_t size = 0;
    };

    explicit Compound(std::string_view file);

    // Empty if the tables could be read, or else what is wrong with them. Nothing else may be asked then.
    [[nodiscard]] const std::string& failure() const { return m_failure; }
    [[nodiscard]] const std::vector<Entry>& entries() const { return m_entries; }
    // The elements of a storage, by number of entry; `met` marks those that were met anywhere, and a link to
    // one of them, or to nothing, is counted in `broken`.
    [[nodiscard]] std::vector<std::uint32_t> elements(std::uint32_t storage, std::vector<bool>& met,
                                                      std::size_t& broken) const;
    // A stream's bytes, `most` at most; nothing if its chain is broken or too short.
    [[nodiscard]] std::optional<std::string> read(const Entry& entry, std::size_t most) const;
    // How many bytes of the file stand behind its last sector that is in use.
    [[nodiscard]] std::size_t unused_end() const;

private:
    bool read_header();
    bool read_table();
    bool read_directory();
    void read_mini_stream();
    [[nodiscard]] std::uint32_t word(std::size_t at) const;
    [[nodiscard]] std::string_view sector(std::uint32_t number) const;
    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    chain(std::uint32_t first, const std::vector<std::uint32_t>& table, std::size_t most) const;
    [[nodiscard]] std::optional<std::string> gather(std::uint32_t first, std::size_t size) const;
    [[nodiscard]] Entry read_entry(std::string_view bytes) const;

    std::string_view m_file;
    std::string m_failure;
    std::size_t m_sector = 512;
    std::size_t m_sectors = 0;
    std::vector<std::uint32_t> m_table;
    std::vector<std::uint32_t> m_mini_table;
    std::optional<std::string> m_mini_stream;
    std::vector<Entry> m_entries;
};

} // namespace pm::kit
