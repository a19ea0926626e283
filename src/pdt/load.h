#pragma once

#include "base/flags.h"
#include "pdt/place_cursor.h"
#include "pdt/record_list.h"
#include "pdt/records.h"
#include "pdt/row.h"
#include "pdt/string_table.h"
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <pm/object.h>
#include <string>

namespace pm {

// What one load of a device description carries from table to table.
struct PdtLoad {
    std::u16string string_file;  // its name, empty for a stream; the tables lie beside it
    PM_Object* object = nullptr; // borrowed; filled below `base`
    std::u16string base;

    StringTable strings;
    RowLine line;

    // Where the branches of this load write; made when first asked for, with the object and base of then.
    PlaceCursor& cursor();

    std::int32_t caps_type = 0; // of every "caps_type" item; nothing changes it
    bool landscape_seen = false;
    bool portrait_seen = false;

    RecordList<UC_Protocol> protocols;
    RecordList<UC_Media_Collating> collating;
    RecordList<UC_Media_Cutting> cutting;
    RecordList<UC_Media_Destination> destinations;
    RecordList<UC_Media_Folding> folding;
    RecordList<UC_Media_Stapling> stapling;
    RecordList<UC_Memory_Area> memory_areas;
    RecordList<UC_Resolution> resolutions;
    RecordList<UC_Resolution_Color_Memory> color_modes;
    RecordList<UC_Media_Source_Entry> source_entries;

    ZT_Media_Abilities media_abilities;
    ZT_ResColorMem_Abilities color_abilities;
    ZT_Plotter_IO_Abilities io_abilities;

    // What joins of records may make, and have made: nodes and properties together, as often as written. A
    // long text counts once more for each 32 units, so that the limit holds memory too.
    std::uint32_t join_limit = 2'000'000;
    std::uint32_t joined = 0;
    // To be called before a join writes so many. Number 66 with the string file if they pass the limit.
    void count_joined(std::size_t items);
    void count_joined(std::size_t items, std::initializer_list<const ZT_String*> texts);

private:
    std::optional<PlaceCursor> m_cursor;
};

} // namespace pm
