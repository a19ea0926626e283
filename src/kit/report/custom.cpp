#include <report/custom.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

void write_values(Page& page, const Node& setting, const std::string& by_default) {
    Html& html = page.html;
    const Element cell(html, "td");
    if (truth(setting, "range_type").value_or(false)) {
        html.text(shown(number(setting, "range_min").value_or(0)) + " to " +
                  shown(number(setting, "range_max").value_or(0)));
        return;
    }
    const Element list(html, "ul", {{"class", "chips"}});
    for (const Node& value : children(setting, {"value_list"})) {
        const auto found = property(value, "value");
        const std::string text = found ? shown(*found) : "no value";
        const Element item(html, "li", {{"class", marked_class(page, "chip", value.path())}});
        html.text(text);
        if (text == by_default) {
            write_tag(html, "default");
        }
        write_badges(page, value.path());
    }
}

} // namespace

bool has_custom(const Node& description) {
    return below(description, {"custom_name"}).has_value();
}

void write_custom(Page& page, const Node& description) {
    const Section section(page, "custom", "Settings of this device alone");
    Html& html = page.html;
    const Table table(html, "Settings of this device alone",
                      {"Setting", "Name", "Kind", "By default", "Values"});
    const Element body(html, "tbody");
    for (const Node& setting : children(description, {"custom_name"})) {
        const std::string path = setting.path();
        const auto default_value = property(setting, "default_value");
        const std::string by_default = default_value ? shown(*default_value) : "–";
        const Element row(html, "tr", {{"class", marked_class(page, "custom", path)}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            html.text(title(setting, setting.name()));
            write_badges(page, path);
        }
        {
            const Element cell(html, "td");
            write_code(html, setting.name());
        }
        const auto type = integer(setting, "data_type");
        html.element("td", type ? word(Code::data_type, *type) : "–");
        html.element("td", by_default);
        write_values(page, setting, by_default);
    }
}

} // namespace pm::kit::report
