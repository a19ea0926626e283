#include "devices/number_words.h"
#include "devices/rules.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

constexpr int line_types = 18;
constexpr std::string_view line_type_texts = "\\linetype\\capabilities";

// A number of `\physical_pen` with the paths of its limits; without a least one it is a count.
struct PenLimit {
    std::string_view setting;
    std::string_view least;
    std::string_view most;
    std::string_view what;
    std::string_view programmable = {}; // the truth value that tells whether it can be set at all
    std::string_view fixed = {};        // what it is where it can't be set
};

constexpr PenLimit count_limit{"pen_count", "", "\\physical_pen\\max_npens", "The number of pens"};
constexpr PenLimit number_limit{"pen_number", "", "\\physical_pen\\max_npens", "The pen's number"};
constexpr PenLimit width_limit{
    "pen_width",       "\\physical_pen\\min_width",           "\\physical_pen\\max_width",
    "The pen's width", "\\physical_pen\\programmable_widths", "\\physical_pen\\default_width"};
constexpr PenLimit speed_limit{
    "pen_speed",       "\\physical_pen\\min_speed",           "\\physical_pen\\max_speed",
    "The pen's speed", "\\physical_pen\\programmable_speeds", "\\physical_pen\\default_speed"};

std::optional<double> limit_at(const Device& device, std::string_view path) {
    return path.empty() ? std::nullopt : device.number(path);
}

// Where it can't be set, a pen that is asked for as it is passes on to its limits.
bool is_set_anew(const Device& device, const PenLimit& limit, const Setting& setting) {
    if (limit_at(device, limit.programmable) != 0.0) return false;
    const auto fixed = limit_at(device, limit.fixed);
    return !fixed || !setting.number || !is_same(*setting.number, *fixed);
}

void refuse_setting(Checker& check, const PenLimit& limit, Setting& setting) {
    std::vector<Offer> offers;
    if (const auto fixed = limit_at(check.device, limit.fixed)) {
        offers.push_back({setting.in_unit(*fixed), {}, check.device.path(limit.fixed)});
    }
    check.fail(setting, {.description_path = check.device.path(limit.programmable),
                         .described = "false",
                         .offers = std::move(offers),
                         .message = std::string(limit.what) + " can't be set on this device."});
}

void check_limit(Checker& check, const PenLimit& limit, std::optional<double> least) {
    if (!check.settings.has(limit.setting)) return;
    const Range range{least ? least : limit_at(check.device, limit.least),
                      limit_at(check.device, limit.most)};
    for (Setting& setting : check.settings.all(limit.setting)) {
        const std::string most = check.device.path(limit.most);
        if (is_set_anew(check.device, limit, setting)) {
            refuse_setting(check, limit, setting);
        } else if (!range.most && !limit_at(check.device, limit.least)) {
            check.silent(setting, most, "limits of it");
        } else if (limit.least.empty()) {
            check_count(check, setting, range, most, number_text(*range.most), limit.what);
        } else {
            check_range(check, setting, range, check.device.path(limit.least), most, limit.what);
        }
    }
}

std::vector<Offer> offered_line_types(const Device& device) {
    std::vector<Offer> offers;
    for (int type = 0; type < line_types; ++type) {
        if (device.has_line_type(type).value_or(false)) {
            offers.push_back(
                {std::to_string(type), std::string(line_type_word(type)), device.path(line_type_texts)});
        }
    }
    return offers;
}

void check_type(Checker& check, Setting& setting) {
    const std::string path = check.device.path(line_type_texts);
    const auto type = integer_of(setting.number);
    if (!check.device.has_line_type(0)) return check.silent(setting, path, "line types");
    if (!type) return check.unreadable(setting, "integer");
    if (check.device.has_line_type(*type).value_or(false)) return check.pass(setting, path);
    const std::string word(line_type_word(*type));
    check.fail(setting, {.description_path = path,
                         .offers = offered_line_types(check.device),
                         .message = "The device doesn't draw line type " + std::to_string(*type) +
                                    (word.empty() ? "." : " (" + word + ")."),
                         .text = word});
}

} // namespace

void check_pen_count(Checker& check) {
    check_limit(check, count_limit, 0);
}

void check_pen_number(Checker& check) {
    check_limit(check, number_limit, 1);
}

void check_pen_width(Checker& check) {
    check_limit(check, width_limit, std::nullopt);
}

void check_pen_speed(Checker& check) {
    check_limit(check, speed_limit, std::nullopt);
}

void check_optimization(Checker& check) {
    const std::string path = check.device.path("\\physical_pen\\max_optimization");
    const auto most = check.device.number("\\physical_pen\\max_optimization");
    for (Setting& setting : check.settings.all("pen_optimization")) {
        const auto level = integer_of(setting.number);
        if (!most) {
            check.silent(setting, path, "optimisation of pens");
        } else if (!level) {
            check.unreadable(setting, "integer");
        } else if (*level >= 0 && *level <= *most) {
            check.pass(setting, path);
        } else {
            std::vector<Offer> offers;
            for (int offered = 0; offered <= std::min(*most, 6.0); ++offered) {
                offers.push_back({std::to_string(offered), std::string(optimization_word(offered)), path});
            }
            check.fail(setting,
                       {.description_path = path,
                        .described = number_text(*most),
                        .offers = std::move(offers),
                        .message = "The device's best optimisation of pens is " + number_text(*most) + '.',
                        .text = std::string(optimization_word(*level))});
        }
    }
}

void check_pen_fill(Checker& check) {
    const std::string path = check.device.path("\\physical_pen\\area_fill_corr");
    const auto corrects = check.device.number("\\physical_pen\\area_fill_corr");
    for (Setting& setting : check.settings.all("fill_correction")) {
        if (!corrects) {
            check.silent(setting, path, "correction of area fills");
        } else if (!setting.number) {
            check.unreadable(setting, "truth value");
        } else if (*setting.number == 0 || *corrects != 0) {
            check.pass(setting, path);
        } else {
            check.fail(
                setting,
                {.description_path = path,
                 .described = "false",
                 .message = "The device doesn't correct the edges of filled areas for the pen's width."});
        }
    }
}

void check_line_type(Checker& check) {
    for (Setting& setting : check.settings.all("line_type")) {
        check_type(check, setting);
    }
    for (Setting& setting : check.settings.all("line_type_count")) {
        const std::string path = check.device.path(line_type_texts);
        const double count = static_cast<double>(offered_line_types(check.device).size());
        if (check.device.has_line_type(0)) {
            check_count(check, setting, {std::nullopt, count}, path, check.device.text(line_type_texts),
                        "The number of line types");
        } else {
            check.silent(setting, path, "line types");
        }
    }
}

// A pen that draws a line type is as wide as the type asks.
void check_line_width(Checker& check) {
    for (Setting& setting : check.settings.all("line_type")) {
        const auto type = integer_of(setting.number);
        Setting* width = check.settings.find("pen_width", setting.key);
        if (!type || width == nullptr || !width->number) continue;
        const std::string path = "\\linetype\\font\\" + std::to_string(*type) + "\\width";
        const auto least = check.device.number(path);
        if (!least) continue;
        if (!is_above(*least, *width->number)) {
            check.pass(*width, check.device.path(path));
            continue;
        }
        const std::string word(line_type_word(*type));
        check.fail(*width, {.description_path = check.device.path(path),
                            .described = number_text(*least),
                            .offers = {{"from " + width->in_unit(*least), word, check.device.path(path)}},
                            .message = "The line type " + std::to_string(*type) +
                                       (word.empty() ? "" : " (" + word + ")") +
                                       " needs a width of at least " + width->said(*least) + '.'});
    }
}

} // namespace pm::kit::devices
