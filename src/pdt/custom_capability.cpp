#include "pdt/branch.h"

#include "base/text.h"
#include "pdt/typed_value.h"

namespace {

struct DataType {
    char16_t letter;
    std::int32_t type;
};

constexpr DataType data_types[] = {
    {u'S', pm::typed_string}, {u'L', pm::typed_long}, {u'D', pm::typed_double},
    {u'B', pm::typed_bool},   {u'R', pm::typed_raw},
};
constexpr std::int32_t no_type = -1;
constexpr std::size_t letter_place = 3;

// Only the fourth character of the cell tells the type; any other letter keeps the `current` one.
std::int32_t data_type_of(std::u16string_view cell, std::int32_t current) {
    for (const DataType& each : data_types) {
        if (cell.size() > letter_place && cell[letter_place] == each.letter) return each.type;
    }
    return current;
}

} // namespace

// Columns: name, text, verifiable, default, maximum, minimum, data type, range or list, value. A row without
// a name adds a value to the list of the capability above it, also when its value cell is empty.
void PM_PDTFile::convert_custom_capability(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::custom_capability);
    Branch capability(object, base, {u"\\custom_name\\"});
    std::int32_t type = no_type;
    std::int32_t values = 0;
    const auto add_value = [&](const char16_t* cell) {
        capability.set_typed_value(u"\\value_list\\*\\value", cell, values, type);
        capability.set_long(u"\\value_list\\*\\caps_type", m_caps_type, values);
        ++values;
    };
    const auto close_list = [&] {
        if (values > 0) capability.set_long(u"\\number_of_values", values);
        values = 0;
    };
    for (int number = pm::SectionReader::first_row; section.read_row(m_line); ++number) {
        const pm::Row row(m_line, 9);
        const char16_t* name = row.name('A');
        if (*name == 0) {
            add_value(row['I']);
            continue;
        }
        close_list();
        capability.enter({name});
        type = data_type_of(row['G'], type);
        const bool is_range = *row['H'] == u'Y';
        capability.set_string(u"\\localized_name",
                              m_strings.localized(pm::Section::custom_capability, u'B', number));
        capability.set_long(u"\\custom_caps_type", 0);
        capability.set_bool(u"\\verifiable", pm::to_lower(*row['C']) == u'y');
        capability.set_long(u"\\data_type", type);
        if (row.has('D')) capability.set_typed_value(u"\\default_value", row['D'], -1, type);
        capability.set_bool(u"\\range_type", is_range);
        if (is_range) {
            capability.set_double(u"\\range_max", pm::cell_number(row['E']));
            capability.set_double(u"\\range_min", pm::cell_number(row['F']));
        } else {
            add_value(row['I']);
        }
    }
    close_list();
}
