#pragma once

#include "base/simple_list.h"
#include <cstdint>
#include <pm/zt_string.h>

// Records of sections that later sections refer to by name. Names in a record are references by name: one
// without a record is no failure.

using UC_Name_List = SimpleList<ZT_String>;

struct UC_Protocol {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t data_bits = 0; // codes, -1 for an unknown text
    std::int32_t stop_bits = 0;
    std::int32_t parity = 0;
};

struct UC_Media_Collating {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t collating_type = 0;
};

struct UC_Media_Cutting {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t when = 0;
};

struct UC_Media_Folding {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t folding_type = 0;
    std::int32_t when = 0;
};

struct UC_Media_Stapling {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t location = 0;
    std::int32_t when = 0;
    std::int32_t orientation = 0;
};

struct UC_Media_Destination {
    ZT_String name;
    ZT_String localized_name;
    ZT_String default_collating;
    ZT_String default_stapling;
    ZT_String default_cutting;
    ZT_String default_folding;
    UC_Name_List collating;
    UC_Name_List stapling;
    UC_Name_List cutting;
    UC_Name_List folding;

    void clear_lists() {
        for (UC_Name_List* list : {&collating, &stapling, &cutting, &folding}) {
            list->clear();
        }
    }
};

struct UC_Media_Source_Entry {
    ZT_String name;
    ZT_String localized_name;
    ZT_String default_size;
    float width = 0;
    float frame_height = 0;
    UC_Name_List size_names;

    void clear_lists() { size_names.clear(); }
};

struct UC_Memory_Area {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t device_memory = 0;
    std::int32_t printable_area = 0;
};

struct UC_Resolution {
    ZT_String name;
    ZT_String localized_name;
    float physical_x = 0;
    float physical_y = 0;
    float addressable_x = 0;
    float addressable_y = 0;
    float effective_x = 0;
    float effective_y = 0;
    ZT_String default_mem_area;
    ZT_String dithering;
    UC_Name_List mem_areas;

    void clear_lists() { mem_areas.clear(); }
};

struct UC_Resolution_Color_Memory {
    ZT_String name;
    ZT_String localized_name;
    std::int32_t number_of_colors = 0;
    std::int32_t color_depth = 0;
    std::int32_t undithered_colors = 0;
    std::int32_t color_system = 0;
    ZT_String default_resolution;
    UC_Name_List resolutions;

    void clear_lists() { resolutions.clear(); }
};
