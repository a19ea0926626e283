#include "devices/rules.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

constexpr std::string_view default_mode = "\\res_color_mem\\default_name";
constexpr std::string_view mode_list = "\\res_color_mem\\rcm_list";

// The mode that the configuration names, or null: any may be meant.
const ColourMode* named_mode(Checker& check) {
    const Setting* mode = check.settings.find("mode", {});
    return mode != nullptr ? check.device.modes.find(mode->as_name()) : nullptr;
}

const ColourMode* chosen_mode(Checker& check) {
    const Setting* mode = check.chosen("mode", default_mode);
    return mode != nullptr ? check.device.modes.find(mode->as_name()) : nullptr;
}

bool has_dots(const DeviceResolution& resolution, const Extent& asked) {
    const auto is_asked = [&](const std::optional<Extent>& dots) {
        return dots && is_same(dots->x, asked.x) && is_same(dots->y, asked.y);
    };
    return is_asked(resolution.addressable) || is_asked(resolution.physical);
}

// The dots that the configuration asks for: x and y alike unless both are told.
std::optional<Extent> asked_dots(Checker& check) {
    const Setting* x = check.settings.find("resolution_x", {});
    const Setting* y = check.settings.find("resolution_y", {});
    const auto first = x != nullptr ? x->number : std::nullopt;
    const auto second = y != nullptr ? y->number : std::nullopt;
    if (!first && !second) return std::nullopt;
    return Extent{first.value_or(second.value_or(0)), second.value_or(first.value_or(0))};
}

// The dots that a setting asks for together with the other one of its key.
Extent dots_of(Checker& check, const Setting& setting) {
    const bool is_x = setting.name == "resolution_x";
    const Setting* other = check.settings.find(is_x ? "resolution_y" : "resolution_x", setting.key);
    const double own = *setting.number;
    const double beside = other != nullptr ? other->number.value_or(own) : own;
    return is_x ? Extent{own, beside} : Extent{beside, own};
}

const DeviceResolution* resolution_with(const ColourMode& mode, const Extent& asked) {
    for (const DeviceResolution& resolution : mode.resolutions) {
        if (has_dots(resolution, asked)) return &resolution;
    }
    return nullptr;
}

std::string dots_text(const DeviceResolution& resolution) {
    const auto dots = resolution.dots();
    return dots ? size_text(dots->x, dots->y) : resolution.name;
}

std::vector<Offer> resolutions_of(const Device& device, const ColourMode* mode) {
    std::vector<Offer> offers;
    for (const ColourMode& candidate : device.modes) {
        if (mode != nullptr && &candidate != mode) continue;
        for (const DeviceResolution& resolution : candidate.resolutions) {
            offers.push_back({dots_text(resolution), resolution.text, resolution.path});
        }
    }
    return offers;
}

bool tells_dots(const Device& device, const ColourMode* mode) {
    return std::ranges::any_of(device.modes, [&](const ColourMode& candidate) {
        return (mode == nullptr || &candidate == mode) &&
               std::ranges::any_of(candidate.resolutions,
                                   [](const DeviceResolution& item) { return item.dots().has_value(); });
    });
}

void check_dots(Checker& check, Setting& setting) {
    const ColourMode* mode = named_mode(check);
    const std::string list =
        mode != nullptr ? mode->path + "\\resolution_list" : check.device.path(mode_list);
    if (!tells_dots(check.device, mode)) return check.silent(setting, list, "resolutions");
    if (!setting.number || *setting.number < 0) return check.unreadable(setting, "resolution");
    const Extent asked = dots_of(check, setting);
    for (const ColourMode& candidate : check.device.modes) {
        if (mode != nullptr && &candidate != mode) continue;
        if (const auto* resolution = resolution_with(candidate, asked)) {
            return check.pass(setting, resolution->path);
        }
    }
    check.fail(setting, {.description_path = list,
                         .offers = resolutions_of(check.device, mode),
                         .message = (mode != nullptr ? "The colour mode " + called(*mode)
                                                     : std::string("The device")) +
                                    " has no resolution of " + size_text(asked.x, asked.y) + '.'});
}

bool is_mode_by_default(Checker& check, const Setting& setting) {
    return setting.key.empty() && check.settings.find("mode", {}) == nullptr;
}

void check_resolution_name(Checker& check, Setting& setting) {
    const ColourMode* mode = setting.key.empty() ? chosen_mode(check) : check.device.modes.find(setting.key);
    if (mode == nullptr) {
        if (check.device.modes.empty()) {
            check.silent(setting, check.device.path(mode_list), "colour modes");
        } else if (setting.key.empty()) {
            check.without_choice(setting, "mode", default_mode, "colour mode");
        } // else nothing speaks of it
        return;
    }
    const std::string list = mode->path + "\\resolution_list";
    if (mode->resolutions.empty()) return check.silent(setting, list, "resolutions of this colour mode");
    if (const auto* resolution = mode->resolutions.find(setting.as_name())) {
        return check.pass(setting, resolution->path);
    }
    check.fail(setting, {.description_path = list,
                         .offers = nearest(mode->resolutions, setting.as_name()),
                         .message = "The colour mode " + called(*mode) +
                                    by_default(is_mode_by_default(check, setting)) + " has no resolution " +
                                    quoted(setting.as_name()) + '.'});
}

void check_mode_name(Checker& check, Setting& setting) {
    const std::string list = check.device.path(mode_list);
    if (check.device.modes.empty()) return check.silent(setting, list, "colour modes");
    if (const auto* mode = check.device.modes.find(setting.as_name())) return check.pass(setting, mode->path);
    check.fail(setting, {.description_path = list,
                         .offers = nearest(check.device.modes, setting.as_name()),
                         .message = "The device has no colour mode " + quoted(setting.as_name()) + '.'});
}

// Colour, or black and white, with the mode that is named or with any.
void check_colour(Checker& check, Setting& setting) {
    const std::string list = check.device.path(mode_list);
    if (check.device.modes.empty()) return check.silent(setting, list, "colour modes");
    if (!setting.number) return check.unreadable(setting, "choice of colour");
    const bool wanted = *setting.number != 0;
    const ColourMode* named = named_mode(check);
    std::vector<Offer> offers;
    for (const ColourMode& mode : check.device.modes) {
        if (mode.has_colours() != wanted) continue;
        if (named == nullptr || named == &mode) return check.pass(setting, mode.path + "\\color_system");
        offers.push_back(offer_of(mode));
    }
    check.fail(
        setting,
        {.description_path = named != nullptr ? named->path + "\\color_system" : list,
         .described = named != nullptr && named->system ? std::to_string(*named->system) : std::string(),
         .offers = std::move(offers),
         .message = (named != nullptr ? "The colour mode " + called(*named)
                                      : std::string("No colour mode of the device")) +
                    (named != nullptr ? (wanted ? " has no colours." : " has colours.")
                                      : (wanted ? " has colours." : " is without colours."))});
}

// The areas that a resolution lists or, if there are none, all.
std::vector<const MemoryArea*> areas_of(const Device& device, const DeviceResolution* resolution) {
    std::vector<const MemoryArea*> areas;
    if (resolution != nullptr) {
        for (const Named& item : resolution->memory) {
            if (const MemoryArea* area = device.memory.find(item.name)) areas.push_back(area);
        }
    }
    if (areas.empty()) {
        for (const MemoryArea& area : device.memory) {
            areas.push_back(&area);
        }
    }
    return areas;
}

std::vector<Offer> memory_offers(const std::vector<const MemoryArea*>& areas, double longest) {
    std::vector<Offer> offers;
    for (const MemoryArea* area : areas) {
        if (area->longest && is_longer(longest, *area->longest)) continue;
        offers.push_back({area->memory ? number_text(*area->memory) : area->name, area->text, area->path});
    }
    return offers;
}

// The longer side of the chosen size; 0 if memory doesn't bound it, or if it isn't known.
double longest_side(Checker& check) {
    if (check.device.number("\\res_color_mem\\memory_changes_print_area").value_or(0) == 0) return 0;
    const MediaSize* size = chosen_size(check);
    const MediaArea* area = size != nullptr ? check.device.area(*size) : nullptr;
    return area != nullptr && area->bounds ? std::max(area->bounds->x, area->bounds->y) : 0;
}

// The first of `usable` that has the room counts.
void check_area(Checker& check, Setting& setting, const std::vector<const MemoryArea*>& usable,
                const std::vector<const MemoryArea*>& all, std::string_view memory, Severity severity) {
    const double needed = longest_side(check);
    const MemoryArea* roomiest = usable.front();
    for (const MemoryArea* area : usable) {
        if (!area->longest || !is_longer(needed, *area->longest)) return check.pass(setting, area->path);
        if (*area->longest > *roomiest->longest) roomiest = area;
    }
    check.fail(setting, {.description_path = roomiest->path + "\\printable_area",
                         .described = number_text(*roomiest->longest),
                         .offers = memory_offers(all, needed),
                         .message = std::string(memory) + " has room for a side of " +
                                    number_text(*roomiest->longest) + ", and " + called(*chosen_size(check)) +
                                    by_default(check.settings.find("size", {}) == nullptr) + " has one of " +
                                    number_text(needed) + '.',
                         .severity = severity});
}

void check_installed(Checker& check, Setting& setting) {
    const std::string list = check.device.path("\\res_color_mem\\mem_area_list");
    if (check.device.memory.empty()) return check.silent(setting, list, "sizes of memory");
    if (!setting.number) return check.unreadable(setting, "number");
    const auto chosen = chosen_resolution(check);
    const DeviceResolution* resolution = chosen.resolution;
    const auto areas = areas_of(check.device, resolution);
    std::vector<const MemoryArea*> usable;
    for (const MemoryArea* area : areas) {
        if (!area->memory || !is_above(*area->memory, *setting.number)) usable.push_back(area);
    }
    if (!usable.empty()) {
        std::ranges::stable_sort(usable, std::ranges::greater(),
                                 [](const MemoryArea* area) { return area->memory.value_or(0); });
        return check_area(check, setting, usable, areas, "The installed memory", Severity::error);
    }
    check.fail(setting, {.description_path = resolution != nullptr ? resolution->path + "\\mem_area" : list,
                         .offers = memory_offers(areas, 0),
                         .message = (resolution != nullptr ? "The resolution " + called(*resolution) +
                                                                 by_default(chosen.is_default())
                                                           : std::string("The device")) +
                                    " needs more memory than " + number_text(*setting.number) + '.'});
}

// `mode\resolution` as the key of a setting.
const DeviceResolution* keyed_resolution(const Device& device, std::string_view key) {
    const std::size_t cut = key.find('\\');
    const ColourMode* mode = device.modes.find(key.substr(0, cut));
    return mode != nullptr && cut != std::string_view::npos ? mode->resolutions.find(key.substr(cut + 1))
                                                            : nullptr;
}

// What names neither its resolution nor has one that is chosen. Of a resolution of its own that isn't there
// nothing speaks.
void answer_without_resolution(Checker& check, Setting& setting) {
    if (!setting.key.empty()) return;
    const auto chosen = chosen_resolution(check);
    if (chosen.setting != nullptr) return Checker::leave(setting);
    if (check.device.modes.empty()) {
        check.silent(setting, check.device.path(mode_list), "colour modes");
    } else if (chosen.mode == nullptr) {
        check.without_choice(setting, "mode", default_mode, "colour mode");
    } else {
        const std::string& name = chosen.mode->default_resolution;
        check.silent(setting, chosen.mode->path + "\\default_resolution",
                     name.empty() ? "default resolution of this colour mode"
                                  : "resolution " + quoted(name) + ", which is its default");
    }
}

void check_memory_name(Checker& check, Setting& setting) {
    const auto chosen = chosen_resolution(check);
    const DeviceResolution* resolution =
        setting.key.empty() ? chosen.resolution : keyed_resolution(check.device, setting.key);
    if (resolution == nullptr) return answer_without_resolution(check, setting);
    const std::string list = resolution->path + "\\mem_area";
    const Named* item = resolution->memory.find(setting.as_name());
    const MemoryArea* area = item != nullptr ? check.device.memory.find(item->name) : nullptr;
    if (area == nullptr) {
        return check.fail(setting,
                          {.description_path = list,
                           .offers = memory_offers(areas_of(check.device, resolution), 0),
                           .message = "The resolution " + called(*resolution) +
                                      by_default(setting.key.empty() && chosen.is_default()) +
                                      " doesn't go with the memory " + quoted(setting.as_name()) + '.'});
    }
    // Of a description's own defaults only those of the default mode are to hold the default size.
    if (resolution != chosen.resolution) return check.pass(setting, item->path);
    check_area(check, setting, {area}, areas_of(check.device, resolution), "The memory " + called(*area),
               Severity::error);
}

// Nothing tells how much is installed: the device's default memory has to do.
void check_default_memory(Checker& check) {
    Setting* size = check.settings.find("size", {});
    const auto chosen = chosen_resolution(check);
    if (size == nullptr || chosen.resolution == nullptr || chosen_size(check) == nullptr) return;
    const MemoryArea* area = check.device.memory.find(chosen.resolution->default_memory);
    if (area == nullptr || longest_side(check) == 0) return;
    check_area(check, *size, {area}, areas_of(check.device, chosen.resolution),
               "The device's default memory " + called(*area), Severity::warning);
}

} // namespace

ChosenResolution chosen_resolution(Checker& check) {
    ChosenResolution chosen;
    chosen.mode = chosen_mode(check);
    Setting* x = check.settings.find("resolution_x", {});
    if (const auto dots = asked_dots(check)) {
        chosen.setting = x != nullptr ? x : check.settings.find("resolution_y", {});
        if (chosen.mode != nullptr) chosen.resolution = resolution_with(*chosen.mode, *dots);
        // Without a mode of its own, a configuration means one that has the resolution.
        for (const ColourMode& mode : check.device.modes) {
            if (chosen.resolution != nullptr || named_mode(check) != nullptr) break;
            chosen.resolution = resolution_with(mode, *dots);
            if (chosen.resolution != nullptr) chosen.mode = &mode;
        }
        return chosen;
    }
    if (chosen.mode == nullptr) return chosen;
    chosen.setting = check.settings.find("resolution", {});
    if (chosen.setting == nullptr) chosen.setting = check.settings.find("resolution", chosen.mode->name);
    chosen.resolution = chosen.mode->resolutions.find(
        chosen.setting != nullptr ? chosen.setting->as_name() : chosen.mode->default_resolution);
    return chosen;
}

void check_mode(Checker& check) {
    for (Setting& setting : check.settings.all("mode")) {
        check_mode_name(check, setting);
    }
    for (Setting& setting : check.settings.all("colour")) {
        check_colour(check, setting);
    }
}

void check_depth(Checker& check) {
    for (Setting& setting : check.settings.all("colour_depth")) {
        const ColourMode* named = named_mode(check);
        const std::string list = check.device.path(mode_list);
        if (check.device.modes.empty()) {
            check.silent(setting, list, "colour modes");
            continue;
        }
        if (!setting.number) {
            check.unreadable(setting, "number");
            continue;
        }
        std::vector<Offer> offers;
        const ColourMode* found = nullptr;
        for (const ColourMode& mode : check.device.modes) {
            const bool is_deep = mode.depth && *mode.depth == *setting.number;
            if (is_deep && found == nullptr && (named == nullptr || named == &mode)) found = &mode;
            if (mode.depth) offers.push_back({number_text(*mode.depth), mode.text, mode.path});
        }
        if (found != nullptr) {
            check.pass(setting, found->path + "\\color_depth");
            continue;
        }
        check.fail(setting, {.description_path = named != nullptr ? named->path + "\\color_depth" : list,
                             .described = named != nullptr && named->depth ? number_text(*named->depth)
                                                                           : std::string(),
                             .offers = std::move(offers),
                             .message = (named != nullptr ? "The colour mode " + called(*named)
                                                          : std::string("No colour mode of the device")) +
                                        (named != nullptr ? " hasn't " : " has ") + setting.text + " bits."});
    }
}

void check_resolution(Checker& check) {
    // A pair is told of once, at x.
    for (Setting& x : check.settings.all("resolution_x")) {
        check_dots(check, x);
        Setting* y = check.settings.find("resolution_y", x.key);
        if (x.number && y != nullptr && y->number && !y->was_looked_at) check.follow(*y);
    }
    for (Setting& y : check.settings.all("resolution_y")) {
        const Setting* x = check.settings.find("resolution_x", y.key);
        if (x == nullptr || !x->number) {
            check_dots(check, y);
        } else if (!y.number) {
            check.unreadable(y, "resolution");
        } else {
            Checker::leave(y);
        }
    }
    for (Setting& setting : check.settings.all("resolution")) {
        check_resolution_name(check, setting);
    }
}

void check_resolution_on_media(Checker& check) {
    const auto chosen = chosen_resolution(check);
    Setting* type_setting = check.chosen("type", "\\media\\default_type");
    if (type_setting == nullptr || chosen.resolution == nullptr) return;
    Setting* asked = chosen.setting != nullptr ? chosen.setting : type_setting;
    const MediaType* type = check.device.types.find(type_setting->as_name());
    const auto dots = chosen.resolution->dots();
    if (type == nullptr || !dots || !type->best_resolution || asked->is_default()) return;
    const bool is_too_wide = is_above(dots->x, type->best_resolution->x);
    const bool is_too_high = is_above(dots->y, type->best_resolution->y);
    const bool is_at_y = is_too_high && !is_too_wide;
    const std::string path = type->path + (is_at_y ? "\\max_resolution_y" : "\\max_resolution_x");
    if (!is_too_wide && !is_too_high) return check.pass(*asked, path);
    std::vector<Offer> offers;
    for (const MediaType& other : check.device.types) {
        if (!other.best_resolution || is_above(dots->x, other.best_resolution->x) ||
            is_above(dots->y, other.best_resolution->y)) {
            continue;
        }
        offers.push_back(offer_of(other));
    }
    const std::string best = size_text(type->best_resolution->x, type->best_resolution->y);
    check.fail(*asked,
               {.description_path = path,
                .described = number_text(is_at_y ? type->best_resolution->y : type->best_resolution->x),
                .offers = std::move(offers),
                .message = "The media type " + called(*type) + by_default(*type_setting) + " takes at most " +
                           best + ", and " + called(*chosen.resolution) + by_default(chosen.is_default()) +
                           " is more."});
}

void check_memory(Checker& check) {
    for (Setting& setting : check.settings.all("memory")) {
        check_installed(check, setting);
    }
    for (Setting& setting : check.settings.all("memory_area")) {
        check_memory_name(check, setting);
    }
    if (!check.settings.has("memory") && !check.settings.has("memory_area")) check_default_memory(check);
}

void check_dithering(Checker& check) {
    const std::string list = check.device.path("\\res_color_mem\\dithering_list");
    for (Setting& setting : check.settings.all("dithering")) {
        const Named* method = check.device.dithering.find(setting.as_name());
        // One with a key stands below its resolution.
        const auto chosen = chosen_resolution(check);
        const DeviceResolution* resolution = setting.key.empty() ? chosen.resolution : nullptr;
        if (check.device.dithering.empty()) {
            check.silent(setting, list, "dithering methods");
        } else if (method == nullptr) {
            check.fail(setting,
                       {.description_path = list,
                        .offers = nearest(check.device.dithering, setting.as_name()),
                        .message = "The device has no dithering method " + quoted(setting.as_name()) + '.'});
        } else if (resolution == nullptr || resolution->dithering.empty() ||
                   resolution->dithering == method->name) {
            check.pass(setting, method->path);
        } else {
            const Named* own = check.device.dithering.find(resolution->dithering);
            check.fail(setting,
                       {.description_path = resolution->path + "\\res_color_mem\\dithering_list",
                        .described = resolution->dithering,
                        .offers = {own != nullptr ? offer_of(*own) : Offer{resolution->dithering, {}, {}}},
                        .message = "The resolution " + called(*resolution) + by_default(chosen.is_default()) +
                                   " is dithered by " + quoted(resolution->dithering) + '.',
                        .severity = Severity::warning,
                        .text = method->text});
        }
    }
}

} // namespace pm::kit::devices
