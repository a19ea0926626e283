#pragma once

#include "base/flags.h"
#include "filers/pmpia.h"
#include "pdt/enum_tables.h"
#include "pdt/records.h"
#include "pdt/section_reader.h"
#include "pdt/string_table.h"
#include <initializer_list>
#include <string_view>

// Reads the description of a device: a folder of tables, one file each, beside a file of translated texts,
// whose name is the name of the description. Fills the subtrees of the capabilities; the tables and the tree
// are told in docs/pdt.md.
class PM_PDTFile : public PM_PIAFile {
public:
    using PM_PIAFile::PM_PIAFile;
    ~PM_PDTFile() override;

    // What the joins of records make, nodes and properties together, written again or not.
    static constexpr std::uint32_t most_joined = 2'000'000;

    // Numbers (PM_Severe, place u"PM_PDTFile::load()"): 66 if joins would make more than most_joined, with the
    // string file; 52 no object, 51 an empty base, 54 another type, each
    // with the base; those of SectionReader for a table that can't be read, 56 for the string file. Bad cells
    // are no failure. What setData raises passes.
    void load(PM_Object* object, const char16_t* root, PM_Object::FileType type) override;
    // The version text of the description, from the table "Global Static Lists".
    void getVersion(char16_t* buffer, std::size_t size) override;

protected:
    class Branch; // branch.h

    class IoMethods;       // io_method.cpp
    class DestinationJoin; // media_destination_join.cpp
    struct MiscRow;        // misc_info_rows.h
    class MiscInfo;        // misc_info.cpp

    // How a cell is stored.
    enum class CellForm {
        text,          // as it stands
        name,          // after normalize_name
        integer,       // as _wtol
        number,        // as _wtof
        narrow_number, // as _wtof, rounded to 32 bits
        exact_yes,     // true for "Y" as first character
        any_case_yes,  // true for "Y" and "y"
        unless_u       // false for "U"
    };

    // Numbers of abilities that are marked together.
    class Marks {
    public:
        constexpr Marks(std::initializer_list<int> indices) {
            for (const int index : indices) {
                m_indices[m_count++] = index;
            }
        }
        constexpr const int* begin() const { return m_indices; }
        constexpr const int* end() const { return m_indices + m_count; }

    private:
        int m_indices[4] = {};
        int m_count = 0;
    };

    // An item that a cell is written to, and the abilities that are then marked, if the cell of the column
    // `tested` isn't empty.
    struct CellItem {
        char tested;
        char column;
        const char16_t* item;
        CellForm form;
        Marks marks;
    };

    // A converter reads one section, in its own stream, and writes below `base`, or fills a list that later
    // converters look names up in. None rolls back.
    using Converter = void (PM_PDTFile::*)(PM_Object& object, const char16_t* base);

    void convert_custom_capability(PM_Object& object, const char16_t* base);
    void convert_dithering_method(PM_Object& object, const char16_t* base);
    void read_protocol(PM_Object& object, const char16_t* base);
    void convert_io_method(PM_Object& object, const char16_t* base);
    void read_media_collating(PM_Object& object, const char16_t* base);
    void read_media_cutting(PM_Object& object, const char16_t* base);
    void convert_media_description(PM_Object& object, const char16_t* base);
    void read_media_destination(PM_Object& object, const char16_t* base);
    void read_media_folding(PM_Object& object, const char16_t* base);
    void convert_media_size(PM_Object& object, const char16_t* base);
    void read_media_source_entry(PM_Object& object, const char16_t* base);
    void convert_media_source(PM_Object& object, const char16_t* base);
    void read_media_stapling(PM_Object& object, const char16_t* base);
    void convert_media_type(PM_Object& object, const char16_t* base);
    // Joins each destination with its finishing records; reads no section.
    void convert_media_destination(PM_Object& object, const char16_t* base);
    void convert_memory_area(PM_Object& object, const char16_t* base);
    void convert_raster(PM_Object& object, const char16_t* base);
    void read_resolution(PM_Object& object, const char16_t* base);
    void read_resolution_color_memory(PM_Object& object, const char16_t* base);
    void convert_misc_info(PM_Object& object, const char16_t* base);
    void convert_meta(PM_Object& object, const char16_t* base);
    void convert_linetype(PM_Object& object, const char16_t* base);

    // Writes an entry below the source that `source` is at.
    void write_source_entry(const Branch& source, const UC_Media_Source_Entry& record, bool first);
    // A step of convert_misc_info: writes the colour records with their resolutions and memory areas.
    void publish_res_color_mem(PM_Object& object, const char16_t* base);
    // Writes a resolution below the colour record that `mode` is at.
    void write_resolution(const Branch& mode, const UC_Resolution& record, bool first);
    void write_memory_areas(Branch& resolution, const UC_Name_List& names);
    // The last step of load.
    void write_capability_states(PM_Object& object, const char16_t* base);

    void load_strings();
    // The section's reader, at its first data row.
    pm::SectionReader open_rows(pm::Section section) const;

    // Fills a list from the rows of a section by the rule of PendingRecord (record_rows.h).
    template<class Record, class Named, class Every>
    void read_records(pm::Section section, int columns, SimpleListWithSearch<Record>& list, Named named,
                      Every every);
    template<class Record, class Named>
    void read_records(pm::Section section, int columns, SimpleListWithSearch<Record>& list, Named named);
    // To be called before a join writes so many nodes and properties.
    void count_joined(std::uint32_t items);
    // Appends the cell as a name, unless the cell is empty.
    static void append_name(UC_Name_List& list, const pm::Row& row, char column);

    static void mark(ZT_Flags& flags, const Marks& marks);
    // Writes a property in the data type of a custom capability (typed_value.h); other types write nothing.
    static void set_typed_value(PM_Object& object, const char16_t* path, const char16_t* text, int index,
                                std::int32_t type);

    pm::StringTable m_strings;
    pm::RowLine m_line;
    std::int32_t m_caps_type = 0; // of every "caps_type" item; nothing changes it
    std::uint32_t m_joined = 0;
    bool m_landscape_seen = false;
    bool m_portrait_seen = false;

    SimpleListWithSearch<UC_Protocol> m_protocols;
    SimpleListWithSearch<UC_Media_Collating> m_collating;
    SimpleListWithSearch<UC_Media_Cutting> m_cutting;
    SimpleListWithSearch<UC_Media_Destination> m_destinations;
    SimpleListWithSearch<UC_Media_Folding> m_folding;
    SimpleListWithSearch<UC_Media_Stapling> m_stapling;
    SimpleListWithSearch<UC_Memory_Area> m_memory_areas;
    SimpleListWithSearch<UC_Resolution> m_resolutions;
    SimpleListWithSearch<UC_Resolution_Color_Memory> m_color_modes;
    SimpleListWithSearch<UC_Media_Source_Entry> m_source_entries;

    ZT_Media_Abilities m_media_abilities;
    ZT_ResColorMem_Abilities m_res_color_mem_abilities;
    ZT_Plotter_IO_Abilities m_io_abilities;
};
