#include <algorithm>
#include <fmt/format.h>
#include <report/ownership.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

constexpr int owners = 4;

int digit_value(char digit) {
    return digit >= '0' && digit <= '9' ? digit - '0' : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

std::string flag_name(std::span<const std::string_view> names, std::size_t at) {
    return at < names.size() && !names[at].empty() ? std::string(names[at]) : fmt::format("(no. {})", at);
}

// The settings of one owner. A place without a name belongs to nobody as long as it is 0.
std::vector<std::string> settings_of(const Area& area, const std::string& digits, int owner) {
    std::vector<std::string> found;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        const bool named = at < area.settings.size() && !area.settings[at].empty();
        if (digit_value(digits[at]) == owner && (named || owner != 0)) {
            found.push_back(flag_name(area.settings, at));
        }
    }
    return found;
}

void write_list_cell(Html& html, std::span<const std::string> list) {
    const Element cell(html, "td");
    if (list.empty()) {
        html.text("–");
    } else {
        write_chips(html, list);
    }
}

void write_owners(Page& page, const Node& description) {
    Html& html = page.html;
    html.element("h3", "Owners of settings");
    html.element(
        "p", {{"class", "muted"}},
        "Each setting belongs to one of four parties, which descriptions know by number. What nobody claims "
        "is owner 0's.");
    const Table table(html, "Owners of settings",
                      {"Settings of", "Owner 0", "Owner 1", "Owner 2", "Owner 3"});
    const Element body(html, "tbody");
    for (const Area& area : areas()) {
        const auto node = below(description, {area.node});
        const std::string digits = node ? text(*node, "ui_owner") : std::string();
        if (digits.empty()) {
            continue;
        }
        const Element row(html, "tr");
        html.element("th", {{"scope", "row"}}, area.title);
        for (int owner = 0; owner < owners; ++owner) {
            write_list_cell(html, settings_of(area, digits, owner));
        }
    }
}

// The names of the flags that are marked, or of those that aren't, each once, in order. A name that two flags
// share is marked if one of them is.
std::vector<std::string> flags(std::span<const std::string_view> names, const std::string& digits,
                               bool marked) {
    std::vector<std::string> found;
    std::vector<std::string> others;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        const bool is_marked = digits[at] != '0';
        const bool named = at < names.size() && !names[at].empty();
        if (named || is_marked) {
            (is_marked ? found : others).push_back(flag_name(names, at));
        }
    }
    const auto drop_repeated = [](std::vector<std::string>& list) {
        std::vector<std::string> once;
        for (std::string& name : list) {
            if (std::ranges::find(once, name) == once.end()) {
                once.push_back(std::move(name));
            }
        }
        list = std::move(once);
    };
    drop_repeated(found);
    drop_repeated(others);
    std::erase_if(others,
                  [&](const std::string& name) { return std::ranges::find(found, name) != found.end(); });
    return marked ? found : others;
}

void write_ability_row(Html& html, std::string_view title, std::span<const std::string_view> names,
                       const std::string& digits) {
    const Element row(html, "tr");
    html.element("th", {{"scope", "row"}}, title);
    for (const bool marked : {true, false}) {
        write_list_cell(html, flags(names, digits, marked));
    }
}

void write_abilities(Page& page, const Node& description) {
    Html& html = page.html;
    html.element("h3", "Abilities");
    const Table table(html, "Abilities", {"Of", "Told by the description", "Not told"});
    const Element body(html, "tbody");
    for (const Area& area : areas()) {
        const auto node = below(description, {area.node});
        if (const std::string digits = node ? text(*node, area.abilities_item) : std::string();
            !digits.empty()) {
            write_ability_row(html, area.title, area.abilities, digits);
        }
    }
    for (const Node& method : children(description, {"io", "method"})) {
        if (const std::string digits = text(method, "abilities"); !digits.empty()) {
            const std::string name = method.name();
            const bool is_number =
                !name.empty() && name.size() < 6 &&
                std::ranges::all_of(name, [](char digit) { return digit >= '0' && digit <= '9'; });
            const std::string title = is_number ? word(Code::io_type, std::stol(name)) : name;
            write_ability_row(html, title, method_abilities(), digits);
        }
    }
}

} // namespace

bool has_ownership(const Node& description) {
    return std::ranges::any_of(areas(), [&](const Area& area) {
        const auto node = below(description, {area.node});
        return node && (!text(*node, "ui_owner").empty() || !text(*node, area.abilities_item).empty());
    });
}

void write_ownership(Page& page, const Node& description) {
    const Section section(page, "ownership", "Ownership and abilities");
    write_owners(page, description);
    write_abilities(page, description);
    const auto raster = below(description, {"RASTER"});
    const auto orientation = raster ? integer(*raster, "orientation_prefs") : std::nullopt;
    if (orientation) {
        Facts facts(page);
        facts.add("Rasters are best given as", word(Code::raster_orientation, *orientation));
    }
}

} // namespace pm::kit::report
