#include <array>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <report/connections.h>
#include <report/picture.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

// A method's node is named by the number of its type.
std::string method_title(const Node& method) {
    const std::string name = method.name();
    long number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    return error == std::errc() && end == name.data() + name.size() ? word(Code::io_type, number)
                                                                    : fmt::format("unknown ({})", name);
}

void write_timeout(Page& page, const Node& method, std::string_view title, const std::string& kind) {
    const auto low = number(method, "min_" + kind);
    const auto high = number(method, "max_" + kind);
    const auto by_default = number(method, "default_" + kind);
    if (!low || !high || !by_default) {
        Facts facts(page);
        std::string inner(title); // behind another word
        inner.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(inner.front())));
        facts.add_property("Shortest " + inner, method, "min_" + kind, " s");
        facts.add_property("Longest " + inner, method, "max_" + kind, " s");
        facts.add_property(std::string(title) + " by default", method, "default_" + kind, " s");
        return;
    }
    Html& html = page.html;
    const Element figure(html, "figure", {{"class", "range-figure"}});
    {
        const Element caption(html, "figcaption");
        html.text(fmt::format("{}: {} s by default, {} to {} s", title, shown(*by_default), shown(*low),
                              shown(*high)));
        for (const std::string_view bound : {"min_", "max_"}) {
            write_badges(page, path_of(method, std::string(bound) + kind));
        }
    }
    write_range(html, {*low, *high, *by_default}, title, " s");
}

void write_rates(Page& page, const Node& method) {
    const std::vector<Node> rates = children(method, {"baudrates"});
    if (rates.empty()) {
        return;
    }
    Html& html = page.html;
    html.element("h4", "Baud rates");
    const auto by_default = integer(method, "default_baud_rate");
    const Element list(html, "ul", {{"class", "chips"}});
    for (const Node& rate : rates) {
        const auto value = integer(rate, "rate");
        const Element item(html, "li", {{"class", marked_class(page, "chip", rate.path())}});
        html.text(value ? grouped(*value) : "–");
        if (value && value == by_default) {
            write_tag(html, "default");
        }
        write_badges(page, rate.path());
    }
}

void write_protocols(Page& page, const Node& method) {
    const std::vector<Node> protocols = children(method, {"protocol"});
    if (protocols.empty()) {
        return;
    }
    Html& html = page.html;
    const std::string by_default = text(method, "default_protocol");
    html.element("h4", "Protocols");
    const Table table(html, fmt::format("Protocols: {}", method_title(method)),
                      {"Protocol", "Name", "Data bits", "Parity", "Stop bits"});
    const Element body(html, "tbody");
    for (const Node& protocol : protocols) {
        const std::string name = text(protocol, "canonical_name");
        const Element row(html, "tr", {{"class", marked_class(page, "protocol", protocol.path())}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            html.text(title(protocol, name));
            if (!name.empty() && name == by_default) {
                write_tag(html, "default");
            }
            write_badges(page, protocol.path());
        }
        {
            const Element cell(html, "td");
            write_code(html, name);
        }
        const auto write = [&](Code code, std::string_view item) {
            const auto number = integer(protocol, item);
            html.element("td", number ? word(code, *number) : "–");
        };
        write(Code::data_bits, "data_bits");
        write(Code::parity, "parity");
        write(Code::stop_bits, "stop_bits");
    }
}

void write_bits(Page& page, const Node& method, std::string_view item, Code code, std::string_view heading) {
    if (const auto bits = integer(method, item)) {
        Html& html = page.html;
        {
            const Element head(html, "h4");
            html.text(heading);
            write_badges(page, path_of(method, item));
        }
        write_chips(html, words(code, *bits));
    }
}

void write_method(Page& page, const Node& method, std::optional<long> default_type) {
    Html& html = page.html;
    const std::string path = method.path();
    const Element card(html, "div", {{"class", marked_class(page, "card method", path)}});
    {
        const Element heading(html, "h3");
        html.text(method_title(method));
        if (default_type && method.name() == fmt::to_string(*default_type)) {
            write_tag(html, "default");
        }
        write_badges(page, path);
    }
    write_timeout(page, method, "Output timeout", "output_timeout");
    write_timeout(page, method, "Input timeout", "input_timeout");
    write_rates(page, method);
    write_protocols(page, method);
    write_bits(page, method, "handshakes", Code::handshake_bit, "Handshakes");
    write_bits(page, method, "default_handshake", Code::handshake_bit, "Handshake by default");
    write_bits(page, method, "bidi_flags", Code::status_bit, "Reports of the device");
    if (!number(method, "default_output_timeout") && !below(method, {"protocol"}) &&
        !below(method, {"baudrates"})) {
        html.element("p", {{"class", "muted"}}, "Nothing more to set.");
    }
}

} // namespace

bool has_connections(const Node& description) {
    return below(description, {"io", "method"}).has_value();
}

void write_connections(Page& page, const Node& description) {
    const Section section(page, "io", "Connections");
    const auto io = below(description, {"io"});
    if (!io) {
        return;
    }
    {
        Facts facts(page);
        facts.add_property("Plot file extension by default", *io, "default_plot_file_extension");
    }
    const Element grid(page.html, "div", {{"class", "grid"}});
    for (const Node& method : children(*io, {"method"})) {
        write_method(page, method, integer(*io, "default_type"));
    }
}

} // namespace pm::kit::report
