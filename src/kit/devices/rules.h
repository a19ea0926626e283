#pragma once

#include "devices/checker.h"
#include <array>
#include <span>

// The rules, one unit a group. Each takes up its settings one by one and says of each that it passes, fails,
// can't be compared, or is left to another rule.
namespace pm::kit::devices {

// As CompatibilityRule tells it; lists end with the first empty text.
struct Rule {
    std::string_view name;
    std::string_view group;
    Severity severity;
    std::string_view meaning;
    std::array<std::string_view, 8> settings;
    std::array<std::string_view, 5> capabilities;
    void (*run)(Checker&);
};

// In the order of findings.
[[nodiscard]] std::span<const Rule> rules() noexcept;

// The rule's settings whose chosen value has a counterpart: the resolution that the configuration means, and
// the setting that names it.
struct ChosenResolution {
    const ColourMode* mode = nullptr;
    const DeviceResolution* resolution = nullptr;
    Setting* setting = nullptr; // null: by default all the way

    [[nodiscard]] bool is_default() const noexcept { return setting == nullptr; }
};
[[nodiscard]] ChosenResolution chosen_resolution(Checker& check);
// The size that the configuration means, or the device's default; null if it isn't one of the device's.
[[nodiscard]] const MediaSize* chosen_size(Checker& check);

// --- media_rules.cpp
void check_media_size(Checker& check);
void check_media_source(Checker& check);
void check_media_loaded(Checker& check);
void check_size_in_source(Checker& check);
void check_destination(Checker& check);
void check_media_type(Checker& check);
void check_copies(Checker& check);
void check_duplex(Checker& check);
void check_selection(Checker& check);
// --- extent_rules.cpp
void check_bounds(Checker& check);
void check_extent(Checker& check);
void check_printable(Checker& check);
void check_rotation(Checker& check);
// --- finishing_rules.cpp
void check_collating(Checker& check);
void check_cutting(Checker& check);
void check_folding(Checker& check);
void check_stapling(Checker& check);
// --- colour_rules.cpp
void check_mode(Checker& check);
void check_depth(Checker& check);
void check_resolution(Checker& check);
void check_resolution_on_media(Checker& check);
void check_memory(Checker& check);
void check_dithering(Checker& check);
// --- pen_rules.cpp
void check_pen_count(Checker& check);
void check_pen_number(Checker& check);
void check_pen_width(Checker& check);
void check_pen_speed(Checker& check);
void check_optimization(Checker& check);
void check_pen_fill(Checker& check);
void check_line_type(Checker& check);
void check_line_width(Checker& check);
// --- io_rules.cpp
void check_method(Checker& check);
void check_timeouts(Checker& check);
void check_baud_rate(Checker& check);
void check_protocol(Checker& check);
void check_handshake(Checker& check);
void check_extension(Checker& check);
void check_start_strings(Checker& check);
// --- general_rules.cpp
void check_model(Checker& check);
void check_custom(Checker& check);
void check_owners(Checker& check);
void check_unspoken(Checker& check);

} // namespace pm::kit::devices
