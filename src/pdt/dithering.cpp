#include "pdt/branch.h"

#include "base/text.h"
#include <algorithm>

namespace {

constexpr std::u16string_view renderers[] = {u"Neither", u"FrameBuffer", u"BothDitherAndFB"};

std::int32_t renderers_number(std::u16string_view cell) {
    if (cell.empty()) return 0;
    const auto* found = std::find(std::begin(renderers), std::end(renderers), cell);
    return found != std::end(renderers) ? static_cast<std::int32_t>(found - renderers) : -1;
}

constexpr std::size_t matrix_name_limit = 7;

// The matrix whose values are being read. Its rows follow its header; a flat list takes their values.
struct Matrix {
    std::u16string name;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t rows_left = 0;
    std::uint32_t index = 0; // wraps around
};

std::int32_t long_or(const char16_t* cell, std::int32_t if_empty) {
    return *cell != 0 ? pm::scan_long(cell) : if_empty;
}

// Fields past the end of the line buffer are empty: they count, but needn't be looked at.
template<class Write>
void take_matrix_row(pm::Row& row, Matrix& matrix, Write write) {
    const auto width = static_cast<std::uint32_t>(std::max(matrix.width, 0));
    for (std::uint32_t taken = 0; taken < width && !row.exhausted(); ++taken) {
        const char16_t* cell = row.next();
        if (*cell != 0) write(cell, static_cast<std::int32_t>(matrix.index + taken));
    }
    matrix.index += width;
    --matrix.rows_left;
}

} // namespace

// Columns: method, text, pixel expansion, type, source pixels, threshold, renderers, matrix width and height,
// matrix name, and a row of matrix values. A row without a method goes on with the matrix.
void PM_PDTFile::convert_dithering_method(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::dithering_method);
    Branch method(object, base, {u"\\res_color_mem\\dithering_list\\"});
    Matrix matrix;
    for (int number = pm::SectionReader::first_row; section.read_row(m_line); ++number) {
        pm::Row row(m_line, 10);
        const char16_t* name = row.name('A');
        if (*name != 0) {
            mark(m_res_color_mem_abilities, {5});
            method.enter({name});
            matrix.width = long_or(row['H'], 0);
            matrix.height = long_or(row['I'], 0);
            method.set_string(u"\\localized_name",
                              m_strings.localized(pm::Section::dithering_method, u'B', number));
            method.set_long(u"\\pixel_expansion_ratio", long_or(row['C'], 1));
            method.set_long(u"\\source_pixel_ratio", long_or(row['E'], 1));
            method.set_long(u"\\renderers", renderers_number(row['G']));
            method.set_long(u"\\caps_type", 0);
            if (row.has('D')) {
                method.set_long(u"\\dithering_type",
                                pm::lookup_enum_or(pm::Keywords::dithering_type, row['D'], -1));
            }
            if (row.has('F')) method.set_long(u"\\threshold", pm::scan_long(row['F']));
            method.set_long(u"\\matrix_size_x", matrix.width);
            method.set_long(u"\\matrix_size_y", matrix.height);
        }
        if (row.has('J')) {
            matrix.name = std::u16string_view(row['J']).substr(0, matrix_name_limit);
            matrix.index = 0;
            matrix.rows_left = matrix.height;
        }
        if (matrix.rows_left > 0) {
            const std::u16string item = u"\\matrix_list\\" + matrix.name + u"\\*\\data";
            take_matrix_row(row, matrix, [&](const char16_t* cell, std::int32_t index) {
                method.set_long(item, pm::scan_long(cell), index);
            });
        }
    }
}
