#include "devices/rules.h"
#include "devices/value_words.h"
#include <array>
#include <cmath>

namespace pm::kit::devices {

namespace {

constexpr double fraction_tolerance = 0.00005;

// Widths and heights that belong together: the names of the settings, joined by the key.
struct Side {
    std::string_view setting;
    std::string_view other;
    bool is_width;
};

Extent pair_of(Checker& check, const Setting& setting, const Side& side) {
    const Setting* other = check.settings.find(side.other, setting.key);
    const double beside = other != nullptr ? other->number.value_or(0) : 0;
    return side.is_width ? Extent{*setting.number, beside} : Extent{beside, *setting.number};
}

bool fits(const Extent& asked, const Extent& room) {
    return !is_longer(asked.x, room.x) && !is_longer(asked.y, room.y);
}

bool fits_turned(const Extent& asked, const Extent& room) {
    return fits(asked, room) || fits({asked.y, asked.x}, room);
}

// The size that lengths of this key are about, or null.
const MediaSize* size_of(Checker& check, const Setting& setting) {
    if (setting.key.empty()) {
        const Setting* size = check.settings.find("size", {});
        return size != nullptr ? check.device.sizes.find(size->as_name()) : nullptr;
    }
    const Setting* entry = check.settings.find("size_entry", setting.key);
    return entry != nullptr ? check.device.sizes.find(entry->as_name()) : nullptr;
}

const MediaArea* chosen_area(Checker& check) {
    const MediaSize* size = chosen_size(check);
    return size != nullptr ? check.device.area(*size) : nullptr;
}

bool is_size_by_default(Checker& check) {
    return check.settings.find("size", {}) == nullptr;
}

void check_against_bounds(Checker& check, Setting& setting, const MediaSize& size, bool is_width) {
    const MediaArea* area = check.device.area(size);
    if (area == nullptr || !area->bounds) {
        return check.silent(setting, area != nullptr ? area->path : size.path, "bounds of this media size");
    }
    const std::string path = area->path + (is_width ? "\\media_bounds_urx" : "\\media_bounds_ury");
    if (!setting.number) return check.unreadable(setting, "number");
    const double bound = is_width ? area->bounds->x : area->bounds->y;
    const bool is_possible =
        area->is_dimensional ? is_same_length(*setting.number, bound) : !is_longer(*setting.number, bound);
    if (is_possible) return check.pass(setting, path);
    check.fail(
        setting,
        {.description_path = path,
         .described = number_text(bound),
         .offers = {{(area->is_dimensional ? "" : "up to ") + setting.in_unit(bound), size.text, path}},
         .message = "The media size " + called(size) + " is " + (area->is_dimensional ? "" : "at most ") +
                    setting.said(bound) + (is_width ? " wide." : " high.")});
}

std::optional<Extent> largest(const Device& device) {
    const auto x = device.number("\\media\\size_max_x");
    const auto y = device.number("\\media\\size_max_y");
    return x && y ? std::optional(Extent{*x, *y}) : std::nullopt;
}

void check_against_largest(Checker& check, Setting& setting, const Side& side) {
    const std::string path = check.device.path(side.is_width ? "\\media\\size_max_x" : "\\media\\size_max_y");
    const auto room = largest(check.device);
    if (!room) return check.silent(setting, path, "largest size");
    if (!setting.number) return check.unreadable(setting, "number");
    const Extent asked = pair_of(check, setting, side);
    const double most = std::max(room->x, room->y);
    // Two lengths that fit one by one and not together are told of once, at the width.
    const bool is_own_fault =
        is_longer(*setting.number, most) ||
        (side.is_width && !fits_turned(asked, *room) && !is_longer(std::max(asked.x, asked.y), most));
    if (!is_own_fault) return check.pass(setting, path);
    check.fail(setting,
               {.description_path = path,
                .described = number_text(side.is_width ? room->x : room->y),
                .offers = {{setting.in_unit(room->x, room->y), {}, path}},
                .message = "The largest size of the device is " + setting.said(room->x, room->y) + '.'});
}

// A plot on a size that isn't known has room if some size of the device has it.
void check_any_room(Checker& check, Setting& setting, const Extent& asked) {
    const auto path = check.device.path("\\media\\description");
    bool is_told = false;
    for (const MediaArea& area : check.device.areas) {
        if (!area.printable) continue;
        is_told = true;
        const auto& [left, bottom, right, top] = *area.printable;
        if (fits(asked, {right - left, top - bottom})) return check.pass(setting, area.path);
    }
    if (!is_told) return check.silent(setting, path, "printable bounds");
    check.fail(setting, {.description_path = path,
                         .message = "No media size of the device has a printable area of " +
                                    setting.said(asked.x, asked.y) + '.'});
}

// The sizes whose printable area has room, the smallest first.
std::vector<Offer> sizes_for(const Device& device, const Extent& asked) {
    std::vector<std::pair<double, const MediaSize*>> roomy;
    for (const MediaSize& size : device.sizes) {
        const MediaArea* area = device.area(size);
        if (area == nullptr || !area->printable) continue;
        const auto& [left, bottom, right, top] = *area->printable;
        if (fits(asked, {right - left, top - bottom})) {
            roomy.emplace_back((right - left) * (top - bottom), &size);
        }
    }
    std::ranges::stable_sort(roomy, {}, [](const auto& entry) { return entry.first; });
    std::vector<Offer> offers;
    offers.reserve(roomy.size());
    for (const auto& [room, size] : roomy) {
        offers.push_back(offer_of(*size));
    }
    return offers;
}

void check_plot(Checker& check, Setting& setting, const Side& side) {
    if (!setting.number) return check.unreadable(setting, "number");
    const Extent asked = pair_of(check, setting, side);
    const Setting* named = check.settings.find("size", {});
    const MediaSize* size = named != nullptr ? check.device.sizes.find(named->as_name()) : nullptr;
    if (size == nullptr) return check_any_room(check, setting, asked);
    const MediaArea* area = check.device.area(*size);
    if (area == nullptr || !area->printable) {
        return check.silent(setting, size->path, "printable bounds of this media size");
    }
    const auto& [left, bottom, right, top] = *area->printable;
    const double bound = side.is_width ? right : top;
    const double room = side.is_width ? right - left : top - bottom;
    const std::string path =
        area->path + (side.is_width ? "\\printable_bounds_urx" : "\\printable_bounds_ury");
    if (!is_longer(*setting.number, room)) return check.pass(setting, path);
    check.fail(setting, {.description_path = path,
                         .described = number_text(bound),
                         .offers = sizes_for(check.device, asked),
                         .message = "The printable area of " + called(*size) + " is only " +
                                    setting.said(room) + (side.is_width ? " wide." : " high.")});
}

void check_printable_part(Checker& check, Setting& setting) {
    const MediaArea* area = chosen_area(check);
    const std::string path =
        area != nullptr ? area->path + "\\printable_area" : check.device.path("\\media\\description");
    if (area == nullptr || !area->printable_part) {
        return check.silent(setting, path, "printable part of this media size");
    }
    if (!setting.number) return check.unreadable(setting, "number");
    if (*setting.number <= *area->printable_part + fraction_tolerance) return check.pass(setting, path);
    const std::string part = number_text(*area->printable_part);
    check.fail(setting, {.description_path = path,
                         .described = part,
                         .offers = {{"up to " + part, area->text, path}},
                         .message = "Only " + part + " of the area " + called(*area) +
                                    by_default(is_size_by_default(check)) + " can be printed."});
}

struct Margin {
    std::string_view setting;
    std::string_view bound;
    std::size_t side;                     // of the printable bounds
    double (*opposite)(const MediaArea&); // bound of the medium; null at 0
};
constexpr std::array<Margin, 4> margins{{
    {"margin_left", "\\printable_bounds_llx", 0, nullptr},
    {"margin_bottom", "\\printable_bounds_lly", 1, nullptr},
    {"margin_right", "\\printable_bounds_urx", 2, [](const MediaArea& area) { return area.bounds->x; }},
    {"margin_top", "\\printable_bounds_ury", 3, [](const MediaArea& area) { return area.bounds->y; }},
}};

void check_margin(Checker& check, Setting& setting, const Margin& margin) {
    const MediaArea* area = chosen_area(check);
    const std::string path =
        area != nullptr ? area->path + std::string(margin.bound) : check.device.path("\\media\\description");
    if (area == nullptr || !area->printable || !area->bounds) {
        return check.silent(setting, path, "printable bounds of this media size");
    }
    if (!setting.number) return check.unreadable(setting, "number");
    const double bound = (*area->printable)[margin.side];
    const double least = margin.opposite != nullptr ? margin.opposite(*area) - bound : bound;
    if (!is_longer(least, *setting.number)) return check.pass(setting, path);
    check.fail(setting,
               {.description_path = path,
                .described = number_text(bound),
                .offers = {{"from " + setting.in_unit(least), area->text, path}},
                .message = "The device leaves a margin of at least " + setting.said(least) + " on " +
                           called(*area) + by_default(is_size_by_default(check), Goes::no_further) + '.'});
}

// Sizes of the other rotation with the same sides.
std::vector<Offer> turned(const Device& device, const MediaSize& size) {
    std::vector<Offer> same_sides;
    const MediaArea* area = device.area(size);
    for (const MediaSize& other : device.sizes) {
        const MediaArea* other_area = device.area(other);
        if (!other.landscape || other.landscape == size.landscape || area == nullptr ||
            other_area == nullptr) {
            continue;
        }
        if (!area->bounds || !other_area->bounds) continue;
        if (is_same_length(area->bounds->x, other_area->bounds->y) &&
            is_same_length(area->bounds->y, other_area->bounds->x)) {
            same_sides.push_back(offer_of(other));
        }
    }
    return same_sides;
}

std::string_view rotation_word(bool landscape) {
    return landscape ? "landscape" : "portrait";
}

bool tells_rotations(const Device& device) {
    return std::ranges::any_of(device.sizes,
                               [](const MediaSize& size) { return size.landscape.has_value(); });
}

void check_landscape(Checker& check, Setting& setting) {
    if (!tells_rotations(check.device)) {
        return check.silent(setting, check.device.path("\\media\\size"), "rotation of its media sizes");
    }
    if (!setting.number) return check.unreadable(setting, "rotation");
    const bool asked = *setting.number != 0;
    const MediaSize* size = size_of(check, setting);
    if (size == nullptr && setting.key.empty()) {
        const auto found =
            std::ranges::find(check.device.sizes.items(), std::optional(asked), &MediaSize::landscape);
        if (found != check.device.sizes.end()) return check.pass(setting, found->path + "\\landscape_mode");
        return check.fail(setting, {.description_path = check.device.path("\\media\\size"),
                                    .message = "No media size of the device is " +
                                               std::string(rotation_word(asked)) + '.'});
    }
    if (size == nullptr) { // of what has no name nothing speaks, and another rule tells of a wrong one
        if (check.settings.find("size_entry", setting.key) != nullptr) Checker::leave(setting);
        return;
    }
    const std::string path = size->path + "\\landscape_mode";
    if (!size->landscape) return check.silent(setting, path, "rotation of this media size");
    if (*size->landscape == asked) return check.pass(setting, path);
    check.fail(setting, {.description_path = path,
                         .described = *size->landscape ? "true" : "false",
                         .offers = turned(check.device, *size),
                         .message = "The media size " + called(*size) + " is " +
                                    std::string(rotation_word(*size->landscape)) + '.'});
}

// A plot that is turned needs a device that has sizes of both rotations.
void check_turn(Checker& check, Setting& setting) {
    const std::string path = check.device.path("\\media\\landscape");
    if (!tells_rotations(check.device)) return check.silent(setting, path, "rotation of its media sizes");
    if (!setting.number) return check.unreadable(setting, "number");
    const double quarters = *setting.number / 90;
    const bool is_turn = std::trunc(quarters) == quarters;
    const bool is_upright = is_turn && std::fmod(quarters, 2) == 0;
    const bool can_turn = check.device.number("\\media\\landscape").value_or(0) != 0;
    if (is_upright || (is_turn && can_turn)) return check.pass(setting, path);
    check.fail(setting, {.description_path = path,
                         .described = can_turn ? "true" : "",
                         .offers = {{can_turn ? "0, 90, 180, 270" : "0, 180", {}, path}},
                         .message = "The device can't turn a plot by " + setting.text + " degrees."});
}

constexpr std::array<Side, 2> media_sides{
    {{"size_width", "size_height", true}, {"size_height", "size_width", false}}};
constexpr std::array<Side, 2> extent_sides{
    {{"extent_width", "extent_height", true}, {"extent_height", "extent_width", false}}};
constexpr std::array<Side, 2> plot_sides{
    {{"plot_width", "plot_height", true}, {"plot_height", "plot_width", false}}};

} // namespace

void check_bounds(Checker& check) {
    for (const Side& side : media_sides) {
        for (Setting& setting : check.settings.all(side.setting)) {
            const MediaSize* size = size_of(check, setting);
            if (size != nullptr) check_against_bounds(check, setting, *size, side.is_width);
        }
    }
}

void check_extent(Checker& check) {
    for (const Side& side : media_sides) {
        for (Setting& setting : check.settings.all(side.setting)) {
            if (size_of(check, setting) == nullptr) check_against_largest(check, setting, side);
        }
    }
    for (const Side& side : extent_sides) {
        for (Setting& setting : check.settings.all(side.setting)) {
            check_against_largest(check, setting, side);
        }
    }
    const std::string roll = check.device.path("\\media\\max_roll_height");
    for (Setting& setting : check.settings.all("long_plot")) {
        check_range(check, setting, {std::nullopt, check.device.number("\\media\\max_roll_height")}, roll,
                    roll, "The length of a long plot");
    }
}

void check_printable(Checker& check) {
    for (const Side& side : plot_sides) {
        for (Setting& setting : check.settings.all(side.setting)) {
            check_plot(check, setting, side);
        }
    }
    for (Setting& setting : check.settings.all("printable_part")) {
        check_printable_part(check, setting);
    }
    for (const Margin& margin : margins) {
        for (Setting& setting : check.settings.all(margin.setting)) {
            check_margin(check, setting, margin);
        }
    }
}

void check_rotation(Checker& check) {
    for (Setting& setting : check.settings.all("landscape")) {
        check_landscape(check, setting);
    }
    for (Setting& setting : check.settings.all("rotate")) {
        check_turn(check, setting);
    }
}

} // namespace pm::kit::devices
