#pragma once

#include "base/allocator.h"
#include "base/simple_list.h"
#include "filers/pmfile.h"
#include <cstdint>
#include <fstream>
#include <memory>
#include <optional>
#include <pm/inspect.h>
#include <string>
#include <string_view>
#include <vector>

// Reads and writes DPIA files: a directory and the sections that it names, each a PIA file of its own. The
// format is told in docs/dpia.md.
class PM_DPIAFile : public PM_File {
public:
    explicit PM_DPIAFile(ZT_Error_Handler* handler) : PM_File(handler) {}
    ~PM_DPIAFile() override;

    // Mirrors the directory into the tree below `base`: "DPIA_directory\<i>\descriptor" and, of a file of
    // version 2.0, "DPIA_directory\<i>\info". Numbers: 69 an unknown version (reported; the directory is then
    // read as version 1.0), 55, the stream errors.
    void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) override;
    // Writes each child of `subtree` as a section: its name, the text of its property "info", the subtree of
    // its child "data". `tag` isn't used.
    void save(const PM_Object* source, const char16_t* subtree, PM_Object::FileType type,
              const char16_t* tag) override;
    void attach(std::iostream* stream) override;
    void open(const char16_t* name, bool write) override;
    void close() override;
    // "DPIA_VERSION_1.0" or "DPIA_VERSION_2.0"; the buffer stays as it is when an unknown version is let
    // pass.
    void getVersion(char16_t* buffer, std::size_t size) override;
    // Loads the first section of that name, compared exactly. Number 83 (PM_Severe) if there is none, or for
    // a null argument; otherwise the numbers of a PIA file.
    virtual void load_section(PM_Object* target, const char16_t* base, const char16_t* name);
    // The directory, in its order. Numbers as load().
    std::vector<pm::DpiaSection> list_sections();
    // Their number alone.
    std::size_t count_sections();

    // 1 or 2, the version that a version word stands for; nothing for another.
    static std::optional<int> version_of(std::uint32_t word);

private:
    struct DPIA_Section {
        std::u16string_view descriptor_text() const { return descriptor.get(); }
        std::u16string_view info_text() const { return info ? info.get() : std::u16string_view(); }

        pm::Block<char16_t> descriptor;
        pm::Block<char16_t> info; // null in a file of version 1.0
        std::uint32_t offset = 0; // from m_data_offset
        std::uint32_t size = 0;
    };

    void check_stream(const char16_t* place, const char16_t* name) const;

    class EntryShape;
    class DirectoryReader;
    class SectionList;
    class SectionSearch;

    // Whether the directory has info texts.
    bool read_version();
    // The directory as a whole; whether it has info texts.
    bool read_sections();
    // `listener` hears of each entry's texts, as the file has them, and of where its section lies.
    template<class Listener>
    void read_directory(bool with_info, Listener& listener);
    void require_bytes(std::uint64_t position, std::uint64_t count, const char16_t* place,
                       const char16_t* name);
    // Finds the file's size, at which the stream then stands.
    void measure_file();

    void collect_sections(const PM_Object& source, const char16_t* subtree);
    void write_sections(const PM_Object& source, const char16_t* subtree);
    void write_directory();
    void write_word(std::uint32_t value, const char16_t* place, const char16_t* detail);
    void write_text(std::u16string_view text, const char16_t* detail);

    std::uint32_t m_directory_offset = 4;
    std::uint32_t m_data_offset = 0;
    std::unique_ptr<std::fstream> m_owned_file;
    SimpleList<DPIA_Section> m_sections;
    std::uint64_t m_file_size = 0; // once it is measured
};
