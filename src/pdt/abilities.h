#pragma once

#include "base/flags.h"
#include <initializer_list>

namespace pm {

// The flags that a description marks, named by what marks them. Numbers that are always marked together have
// names of their own: readers of the texts look at either.

struct MediaAbility {
    enum : int {
        selection_methods = 0,
        source_listed = 1,
        sources = 2,
        source_entries = 3,
        joined_entries = 4,
        size_listed = 5,
        sizes = 6,
        destination_listed = 7,
        destinations = 8,
        descriptions = 9,
        type_listed = 10,
        types = 11,
        orientations = 12,
        media_bounds = 14,
        printable_bounds = 15,
        printable_area = 16,
        dimensional = 17,
        default_stapling = 18,
        default_collating = 19,
        default_folding = 20,
        default_cutting = 21,
        duplexing_modes = 22,
        media_copies = 23,
        form_read = 24,
        longplot_reduction = 25,
        drying_time = 30,
        max_resolution = 31,
        feed = 32,
        media_group = 33,
        default_size = 34,
        stapling = 35,
        collating = 36,
        folding = 37,
        copies = 39,
        default_source = 40,
        default_destination = 42,
        default_type = 43,
        default_selection_method = 45,
        default_duplexing_mode = 46,
        entry_width = 48,
        entry_frame_height = 49,
        max_roll_height = 50
    };
};

struct ColorAbility {
    enum : int {
        modes = 0,
        joined_modes = 1,
        mode_resolutions = 2,
        joined_resolutions = 3,
        dithering = 4,
        dithering_methods = 5,
        printable_area = 6,
        memory_areas = 7,
        physical_resolution = 8,
        addressable_resolution = 9,
        effective_resolution = 10,
        form_line_67 = 11,
        form_line_68 = 12,
        form_line_66 = 15,
        memory_changes_print_area = 18,
        default_mode = 22,
        color_control = 23
    };
};

struct IoAbility {
    enum : int {
        methods = 0,
        plot_file_extension = 1,
        known_methods = 2,
        default_type = 3,
        cable = 4, // serial or parallel
        default_protocol = 5,
        default_baud_rate = 6,
        handshakes = 7,
        default_output_timeout = 8,
        default_input_timeout = 9,
        plot_to_file = 10,
        path_name = 11
    };
};

struct MethodAbility {
    enum : int {
        default_output_timeout = 0,
        max_output_timeout = 1,
        min_output_timeout = 2,
        default_input_timeout = 3,
        max_input_timeout = 4,
        min_input_timeout = 5,
        default_protocol = 6,
        protocols = 7,
        default_baud_rate = 8,
        baud_rates = 9,
        type = 10,
        bidi_status = 11,
        handshake_listed = 12,
        output_timeout_changes = 13,
        input_timeout_changes = 14,
        protocol_changes = 15,
        cable = 16,
        baud_rate_changes = 17,
        handshakes = 18,
        default_handshake = 19
    };
};

struct PenAbility {
    enum : int {
        pens = 0,
        hardware_fills = 1,
        area_fill_correction = 2,
        width_changes = 3,
        speed_changes = 4,
        pen_changes = 5,
        max_optimization = 6,
        min_width = 7,
        max_width = 8,
        min_speed = 9,
        max_speed = 10,
        default_width = 11,
        default_speed = 12,
        default_pen_count = 13,
        default_optimization = 14,
        max_pen_count = 16,
        programmable_widths = 17,
        programmable_speeds = 18
    };
};

struct StartStringAbility {
    enum : int { pre_init = 0, post_init = 1, termination = 2 };
};

// Numbers of flags that are marked together.
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

inline void mark(ZT_Flags& flags, const Marks& marks) {
    constexpr int marked = 5;
    for (const int index : marks) {
        FlagAccess::set(flags, index, marked);
    }
}

} // namespace pm
