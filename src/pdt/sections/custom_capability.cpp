#include "pdt/sections/custom_capability.h"

#include "base/text.h"
#include "pdt/typed_value.h"

namespace pm {

namespace {

struct DataType {
    char16_t letter;
    std::int32_t type;
};

constexpr DataType data_types[] = {
    {u'S', typed_string}, {u'L', typed_long}, {u'D', typed_double}, {u'B', typed_bool}, {u'R', typed_raw},
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

class Capabilities {
public:
    explicit Capabilities(PdtLoad& load)
        : m_caps_type(load.caps_type), m_capability(load, {u"\\custom_name\\"}) {}

    void begin(const Row& row, const char16_t* text);
    void add_value(char16_t* cell);
    void close_list();

private:
    void write_bounds(const Row& row);

    std::int32_t m_caps_type;
    Branch m_capability;
    std::int32_t m_type = no_type;
    std::int32_t m_values = 0;
};

void Capabilities::begin(const Row& row, const char16_t* text) {
    m_capability.enter({row['A']});
    m_type = data_type_of(row['G'], m_type);
    const bool is_range = *row['H'] == u'Y';
    m_capability.set_string(u"\\localized_name", text);
    m_capability.set_long(u"\\custom_caps_type", 0);
    m_capability.set_cell(u"\\verifiable", row['C'], CellForm::any_case_yes);
    m_capability.set_long(u"\\data_type", m_type);
    if (row.has('D')) set_typed_value(m_capability, u"\\default_value", row['D'], -1, m_type);
    m_capability.set_bool(u"\\range_type", is_range);
    if (is_range) {
        write_bounds(row);
    } else {
        add_value(row['I']);
    }
}

void Capabilities::write_bounds(const Row& row) {
    m_capability.set_cell(u"\\range_max", row['E'], CellForm::number);
    m_capability.set_cell(u"\\range_min", row['F'], CellForm::number);
}

void Capabilities::add_value(char16_t* cell) {
    set_typed_value(m_capability, u"\\value_list\\*\\value", cell, m_values, m_type);
    m_capability.set_long(u"\\value_list\\*\\caps_type", m_caps_type, m_values);
    ++m_values;
}

void Capabilities::close_list() {
    if (m_values > 0) m_capability.set_long(u"\\number_of_values", m_values);
    m_values = 0;
}

} // namespace

// A name, B text, C verifiable, D default value, E maximum, F minimum, G data type, H whether it is a range,
// I value. A row without a name adds its value to the list of the capability above it, also an empty one.
void convert_custom_capability(PdtLoad& load, Rows& rows) {
    Capabilities capabilities(load);
    while (rows.next()) {
        const Row row = rows.fields(9);
        if (*row.name('A') == 0) {
            capabilities.add_value(row['I']);
        } else {
            capabilities.close_list();
            capabilities.begin(row, rows.text(u'B'));
        }
    }
    capabilities.close_list();
}

} // namespace pm
