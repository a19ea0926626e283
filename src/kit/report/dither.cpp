#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <report/dither.h>
#include <report/picture.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

// Larger matrices aren't drawn.
constexpr long most_cells = 64L * 64;

struct Matrix {
    long width = 0;
    long height = 0;
    std::vector<std::optional<long>> values = {}; // row after row; a gap where the description has none
    long low = 0;
    long high = 0;
};

std::optional<Matrix> read_matrix(const Node& method, const Node& list) {
    Matrix matrix{integer(method, "matrix_size_x").value_or(0), integer(method, "matrix_size_y").value_or(0)};
    if (matrix.width <= 0 || matrix.height <= 0 || matrix.width > most_cells || matrix.height > most_cells ||
        matrix.width * matrix.height > most_cells) {
        return {};
    }
    matrix.values.resize(static_cast<std::size_t>(matrix.width * matrix.height));
    for (const Node& cell : children(list)) {
        const std::string name = cell.name();
        const bool is_index = !name.empty() && name.size() < 6 && std::ranges::all_of(name, [](char digit) {
            return digit >= '0' && digit <= '9';
        });
        const auto at = is_index ? std::stoul(name) : matrix.values.size();
        if (at < matrix.values.size()) {
            matrix.values[at] = integer(cell, "data");
        }
    }
    bool first = true;
    for (const auto& value : matrix.values) {
        if (value) {
            matrix.low = first ? *value : std::min(matrix.low, *value);
            matrix.high = first ? *value : std::max(matrix.high, *value);
            first = false;
        }
    }
    return first ? std::nullopt : std::optional(std::move(matrix));
}

// 0 for the lowest value, 1 for the highest.
double level(const Matrix& matrix, long value) {
    return matrix.high == matrix.low
               ? 0.5
               : static_cast<double>(value - matrix.low) / static_cast<double>(matrix.high - matrix.low);
}

void write_cells(Html& html, const Matrix& matrix, const std::string& title) {
    const double side =
        std::clamp(160.0 / static_cast<double>(std::max(matrix.width, matrix.height)), 3.0, 26.0);
    const bool with_numbers = side >= 18;
    Picture picture(html, title,
                    {side * static_cast<double>(matrix.width), side * static_cast<double>(matrix.height)},
                    "matrix");
    for (std::size_t at = 0; at < matrix.values.size(); ++at) {
        const std::size_t row = at / static_cast<std::size_t>(matrix.width);
        const double x = side * static_cast<double>(at % static_cast<std::size_t>(matrix.width));
        const double y = side * static_cast<double>(row);
        const auto& value = matrix.values[at];
        if (!value) {
            picture.rectangle(x, y, side, side, "gap");
            continue;
        }
        const double grey = level(matrix, *value);
        const long shade = std::lround(grey * 255);
        html.empty("rect", {{"x", coordinate(x)},
                            {"y", coordinate(y)},
                            {"width", coordinate(side)},
                            {"height", coordinate(side)},
                            {"fill", fmt::format("rgb({0},{0},{0})", shade)}});
        if (with_numbers) {
            html.element("text",
                         {{"x", coordinate(x + side / 2)},
                          {"y", coordinate(y + side / 2 + 4)},
                          {"text-anchor", "middle"},
                          {"class", grey < 0.5 ? "on-dark" : "on-light"}},
                         fmt::to_string(*value));
        }
    }
}

// Where the matrix lets a dot of ink stand, in runs of a row each.
void write_ramp(Html& html, const Matrix& matrix) {
    constexpr long columns = 96;
    constexpr long rows = 16;
    Picture picture(html, "A ramp from black to white, dithered with this matrix", {288, 48},
                    {static_cast<double>(columns), static_cast<double>(rows)}, "ramp");
    picture.rectangle(0, 0, columns, rows, "ramp-paper");
    const double steps = static_cast<double>(matrix.high - matrix.low) + 1;
    std::string dots;
    for (long y = 0; y < rows; ++y) {
        for (long x = 0; x < columns; ++x) {
            const auto& value =
                matrix
                    .values[static_cast<std::size_t>((y % matrix.height) * matrix.width + x % matrix.width)];
            const double lightness = (static_cast<double>(x) + 0.5) / columns;
            const double threshold = value ? (static_cast<double>(*value - matrix.low) + 0.5) / steps : 0.5;
            if (lightness < threshold) {
                dots += fmt::format("M{} {}h1v1h-1z", x, y);
            }
        }
    }
    picture.path(dots, "ink");
}

void write_matrix(Page& page, const Node& method, const Node& list) {
    Html& html = page.html;
    const std::string name = list.name();
    const Element figure(html, "figure");
    const auto matrix = read_matrix(method, list);
    const long width = integer(method, "matrix_size_x").value_or(0);
    const long height = integer(method, "matrix_size_y").value_or(0);
    const std::string title = fmt::format("Matrix {}, {} × {}", name, width, height);
    if (matrix) {
        const Element drawings(html, "div", {{"class", "matrix-drawings"}});
        write_cells(
            html, *matrix,
            fmt::format("{}: thresholds from {} (black) to {} (white)", title, matrix->low, matrix->high));
        write_ramp(html, *matrix);
    }
    html.element("figcaption", matrix ? title : title + " (not drawn)");
}

void write_method(Page& page, const Node& method) {
    Html& html = page.html;
    const std::string name = method.name();
    const std::string path = method.path();
    const Element card(html, "div", {{"class", marked_class(page, "card dithering", path)}});
    {
        const Element heading(html, "h3");
        html.text(title(method, name));
        write_badges(page, path);
    }
    {
        const Element line(html, "p", {{"class", "muted"}});
        write_code(html, name);
    }
    {
        Facts facts(page);
        if (const auto type = integer(method, "dithering_type")) {
            facts.add("Type", word(Code::dithering_type, *type));
        }
        if (const auto renderer = integer(method, "renderers")) {
            facts.add("For", word(Code::renderer, *renderer));
        }
        facts.add_property("Threshold", method, "threshold");
        const auto source = integer(method, "source_pixel_ratio");
        const auto expansion = integer(method, "pixel_expansion_ratio");
        if (source && expansion) {
            facts.add("Pixels", fmt::format("{} to {}", *source, *expansion));
        }
    }
    for (const Node& list : children(method, {"matrix_list"})) {
        write_matrix(page, method, list);
    }
}

} // namespace

bool has_dithering(const Node& description) {
    return below(description, {"res_color_mem", "dithering_list"}).has_value();
}

void write_dithering(Page& page, const Node& description) {
    const Section section(page, "dither", "Dithering");
    const Element grid(page.html, "div", {{"class", "grid"}});
    for (const Node& method : children(description, {"res_color_mem", "dithering_list"})) {
        write_method(page, method);
    }
}

} // namespace pm::kit::report
