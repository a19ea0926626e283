#pragma once

#include "pdt/section_reader.h"
#include <cstddef>
#include <filesystem>
#include <string>

namespace pm::bench {

// The sample description with the rows of its tables as many times over as told, each time under other
// names and with texts of their own. Its files end with it.
class LongDescription {
public:
    explicit LongDescription(int times);
    ~LongDescription();
    LongDescription(const LongDescription&) = delete;
    LongDescription& operator=(const LongDescription&) = delete;

    const std::filesystem::path& folder() const { return m_folder; }
    std::u16string string_file() const { return (m_folder / "strings.pdt").u16string(); }
    std::size_t bytes() const { return m_bytes; }

private:
    void add_table(Section section);
    void add_texts(Section section, int offset, int count);
    void write(const std::string& name, const std::string& content);

    int m_times;
    std::filesystem::path m_folder;
    std::string m_strings;
    std::size_t m_bytes = 0;
};

// What a load has to do before it looks at anything: reads the same files and decodes their lines.
void decode_files(const LongDescription& description);

} // namespace pm::bench
