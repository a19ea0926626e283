#pragma once

#include <span>
#include <string_view>

// The keywords that cells of a device description hold. A cell holds one exactly as it stands here, with its
// blanks and its case. What follows " = " tells the number or the name of the system's own; without it a
// keyword's number is its place.
namespace pm::kit::keywords {

using Words = std::span<const std::string_view>;

extern const Words io_types;
extern const Words parity;
extern const Words data_bits;
extern const Words stop_bits;
extern const Words handshakes;
extern const Words status;
extern const Words dithering_types;
extern const Words renderers;
extern const Words media_groups;
extern const Words feeds;
extern const Words collating_types;
extern const Words stapling_locations;
extern const Words stapling_times;
extern const Words folding_types;
extern const Words folding_times;
extern const Words cutting_times;
extern const Words raster_abilities;
extern const Words raster_orientations;
extern const Words color_systems;
extern const Words selection_methods;
extern const Words duplexing_modes;
extern const Words optimizations;
extern const Words line_types;
extern const Words line_type_abilities;
extern const Words start_string_owners;
extern const Words pen_owners;
extern const Words color_owners;
extern const Words io_owners;
extern const Words media_owners;

} // namespace pm::kit::keywords
