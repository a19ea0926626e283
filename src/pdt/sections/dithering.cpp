#include "pdt/sections/dithering.h"

#include "base/text.h"
#include "pdt/branch.h"
#include "pdt/enum_tables.h"
#include <algorithm>

namespace pm {

namespace {

constexpr Keyword renderers[] = {{0, u"Neither"}, {1, u"FrameBuffer"}, {2, u"BothDitherAndFB"}};

constexpr std::size_t matrix_name_limit = 7;

// The matrix whose values are being read. Its rows follow its header; a flat list takes their values.
struct Matrix {
    std::u16string name;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t rows_left = 0;
    std::uint32_t index = 0; // wraps around

    void begin(std::u16string_view cell) {
        name = cell.substr(0, matrix_name_limit);
        index = 0;
        rows_left = height;
    }
};

std::int32_t long_or(const char16_t* cell, std::int32_t if_empty) {
    return *cell != 0 ? scan_long(cell) : if_empty;
}

void write_method(Branch& method, const Row& row, const char16_t* text, const Matrix& matrix) {
    method.set_string(u"\\localized_name", text);
    method.set_long(u"\\pixel_expansion_ratio", long_or(row['C'], 1));
    method.set_long(u"\\source_pixel_ratio", long_or(row['E'], 1));
    method.set_long(u"\\renderers", row.has('G') ? lookup_enum_or(renderers, row['G'], -1) : 0);
    method.set_long(u"\\caps_type", 0);
    if (row.has('D')) {
        method.set_long(u"\\dithering_type", lookup_enum_or(keywords::dithering_type, row['D'], -1));
    }
    if (row.has('F')) method.set_long(u"\\threshold", scan_long(row['F']));
    method.set_long(u"\\matrix_size_x", matrix.width);
    method.set_long(u"\\matrix_size_y", matrix.height);
}

// Fields past the end of the line buffer are empty: they count, but needn't be looked at.
void write_matrix_row(Branch& method, Row& row, Matrix& matrix) {
    const std::u16string item = u"\\matrix_list\\" + matrix.name + u"\\*\\data";
    const auto width = static_cast<std::uint32_t>(std::max(matrix.width, 0));
    for (std::uint32_t taken = 0; taken < width && !row.exhausted(); ++taken) {
        const char16_t* cell = row.next();
        if (*cell == 0) continue;
        method.set_long(item, scan_long(cell), static_cast<std::int32_t>(matrix.index + taken));
    }
    matrix.index += width;
    --matrix.rows_left;
}

} // namespace

// A method, B text, C pixel expansion, D type, E source pixels, F threshold, G renderers, H and I matrix
// width and height, J matrix name, from K on a row of matrix values. A row without a method goes on with the
// matrix.
void convert_dithering_method(PdtLoad& load, Rows& rows) {
    Branch method(load, {u"\\res_color_mem\\dithering_list\\"});
    Matrix matrix;
    while (rows.next()) {
        Row row = rows.fields(10);
        if (*row.name('A') != 0) {
            mark(load.color_abilities, {ColorAbility::dithering_methods});
            method.enter({row['A']});
            matrix.width = long_or(row['H'], 0);
            matrix.height = long_or(row['I'], 0);
            write_method(method, row, rows.text(u'B'), matrix);
        }
        if (row.has('J')) matrix.begin(row['J']);
        if (matrix.rows_left > 0) write_matrix_row(method, row, matrix);
    }
}

} // namespace pm
