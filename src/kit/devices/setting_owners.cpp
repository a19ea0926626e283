#include "devices/setting_owners.h"
#include <algorithm>
#include <array>

namespace pm::kit::devices {

namespace {

constexpr std::string_view media = "\\media\\ui_owner";
constexpr std::string_view colours = "\\res_color_mem\\ui_owner";
constexpr std::string_view pens = "\\physical_pen\\ui_owner";
constexpr std::string_view io = "\\io\\ui_owner";
constexpr std::string_view start_strings = "\\init_term\\ui_owner";

struct Owner {
    std::string_view setting;
    std::string_view text;
    int digit;
};
constexpr std::array owners = std::to_array<Owner>({
    {"selection_method", media, 0},
    {"type", media, 1},
    {"source", media, 2},
    {"loaded", media, 2},
    {"feed", media, 3},
    {"stapling", media, 4},
    {"cutting", media, 5},
    {"folding", media, 6},
    {"collating", media, 7},
    {"collate", media, 7},
    {"size", media, 8},
    {"size_width", media, 9},
    {"size_height", media, 9},
    {"printable_part", media, 10},
    {"landscape", media, 12},
    {"copies", media, 13},
    {"duplex", media, 14},
    {"margin_left", media, 15},
    {"margin_bottom", media, 15},
    {"margin_right", media, 15},
    {"margin_top", media, 15},
    {"resolution", colours, 0},
    {"resolution_x", colours, 0},
    {"resolution_y", colours, 0},
    {"colour_depth", colours, 2},
    {"mode", colours, 3},
    {"dithering", colours, 6},
    {"colour", colours, 7},
    {"memory", colours, 9},
    {"memory_area", colours, 9},
    {"pen_count", pens, 0},
    {"pen_color", pens, 1},
    {"pen_width", pens, 2},
    {"pen_speed", pens, 3},
    {"fill_correction", pens, 4},
    {"pen_optimization", pens, 5},
    {"pen_enabled", pens, 6},
    {"port", io, 0},
    {"io_type", io, 1},
    {"protocol", io, 2},
    {"baud_rate", io, 3},
    {"handshake", io, 4},
    {"input_timeout", io, 5},
    {"output_timeout", io, 6},
    {"plot_to_file", io, 7},
    {"plot_file", io, 8},
    {"pre_init", start_strings, 0},
    {"post_init", start_strings, 1},
    {"termination", start_strings, 2},
});

} // namespace

std::pair<std::string_view, int> owner_of(const Setting& setting) noexcept {
    if (setting.row != nullptr && !setting.row->owner.empty()) {
        return {setting.row->owner, setting.row->owner_digit};
    }
    const auto found = std::ranges::find(owners, std::string_view(setting.name), &Owner::setting);
    return found == owners.end() ? std::pair(std::string_view(), -1) : std::pair(found->text, found->digit);
}

} // namespace pm::kit::devices
