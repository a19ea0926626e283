#include "pdt/sections/io_method.h"

#include "base/text.h"
#include "pdt/branch.h"
#include "pdt/enum_tables.h"
#include "pdt/record_rows.h"

namespace pm {

// A protocol, B text, C data bits, D stop bits, E parity.
void read_protocol(PdtLoad& load, Rows& rows) {
    read_records(rows, 5, load.protocols, [](UC_Protocol& record, const Row& row) {
        record.data_bits = lookup_enum_or(keywords::data_bits, row['C'], -1);
        record.stop_bits = lookup_enum_or(keywords::stop_bits, row['D'], -1);
        record.parity = lookup_enum_or(keywords::parity, row['E'], -1);
    });
}

namespace {

// What types of method are marked with, besides what all are.
struct TypeMarks {
    std::u16string_view type;
    Marks method;
    Marks io;
};

constexpr TypeMarks type_marks[] = {
    {u"File", {}, {IoAbility::plot_to_file, IoAbility::path_name}},
    {u"RS232", {MethodAbility::cable}, {IoAbility::cable}},
    {u"Parallel", {MethodAbility::cable}, {IoAbility::cable}},
};

// A plain setting, of the first row of a group.
struct Setting {
    CellItem cell; // marks abilities of the method
    Marks io = {};
};

constexpr Setting settings[] = {
    {.cell = {.column = 'D',
              .item = u"\\max_output_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::max_output_timeout}}},
    {.cell = {.column = 'E',
              .item = u"\\min_output_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::min_output_timeout}}},
    {.cell = {.column = 'F',
              .item = u"\\max_input_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::max_input_timeout, MethodAbility::input_timeout_changes}}},
    {.cell = {.column = 'G',
              .item = u"\\min_input_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::min_input_timeout},
              .if_set = 'D'}}, // and not its own cell (kept)
    {.cell = {.column = 'H',
              .item = u"\\default_output_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::default_output_timeout, MethodAbility::output_timeout_changes}},
     .io = {IoAbility::default_output_timeout}},
    {.cell = {.column = 'I',
              .item = u"\\default_input_timeout",
              .form = CellForm::integer,
              .marks = {MethodAbility::default_input_timeout}},
     .io = {IoAbility::default_input_timeout}},
    {.cell = {.column = 'K',
              .item = u"\\default_baud_rate",
              .form = CellForm::integer,
              .marks = {MethodAbility::default_baud_rate, MethodAbility::baud_rate_changes}},
     .io = {IoAbility::default_baud_rate}},
    {.cell = {.column = 'L',
              .item = u"\\default_protocol",
              .form = CellForm::text,
              .marks = {MethodAbility::default_protocol, MethodAbility::protocol_changes}},
     .io = {IoAbility::default_protocol}},
};

// Bits that the rows of a group add up.
struct Masks {
    std::int32_t bidi_status = 0; // not reset between groups (kept)
    std::int32_t handshakes = 0;
    std::int32_t default_handshake = 0;
};

struct MaskCell {
    char column;
    KeywordTable keywords;
    std::int32_t Masks::*mask;
    Marks marks;
};

constexpr MaskCell mask_cells[] = {
    {'B', keywords::bidi_status, &Masks::bidi_status, {MethodAbility::bidi_status}},
    {'M',
     keywords::handshake,
     &Masks::handshakes,
     {MethodAbility::handshakes, MethodAbility::handshake_listed}},
    {'J', keywords::handshake, &Masks::default_handshake, {MethodAbility::default_handshake}},
};

// One group of rows for each method of output. The first row of a group has the method's type and its plain
// settings; each row adds a status, a protocol, handshakes and a baud rate.
class IoMethods {
public:
    explicit IoMethods(PdtLoad& load) : m_load(load), m_method(load, {u"\\io\\method\\"}) {}

    // False for a row of an unknown type, which is dropped whole.
    bool take_row(const Row& row, bool first);
    void finish();

private:
    bool open_group(const Row& row);
    void close_group();
    void write_handshakes();
    bool has(int ability) const { return FlagAccess::get(m_abilities, ability) != 0; }
    void mark_type(std::u16string_view type);
    void write_settings(const Row& row);
    void add_bits(const Row& row);
    void add_protocol(const char16_t* name);
    void add_baud_rate(const char16_t* rate);

    PdtLoad& m_load;
    Branch m_method;
    UC_Method_Abilties m_abilities;
    Masks m_masks;
    // Not reset between groups (kept).
    std::int32_t m_protocol_index = 0;
    std::int32_t m_baud_rate_index = 0;
};

bool IoMethods::take_row(const Row& row, bool first) {
    if (row.has('A')) {
        mark(m_load.io_abilities, {IoAbility::methods});
        if (!first) close_group();
        if (!open_group(row)) return false;
    }
    add_bits(row);
    if (row.has('C')) add_protocol(row['C']);
    if (row.has('N')) add_baud_rate(row['N']);
    return true;
}

bool IoMethods::open_group(const Row& row) {
    const std::uint32_t type = lookup_enum(keywords::io_type, row['A']);
    if (type == unknown_keyword) return false;
    m_method.enter({to_decimal(type)});
    mark_type(row['A']);
    m_method.set_long(u"\\caps_type", m_load.caps_type);
    write_settings(row);
    return true;
}

void IoMethods::mark_type(std::u16string_view type) {
    mark(m_load.io_abilities, {IoAbility::known_methods});
    mark(m_abilities, {MethodAbility::type});
    for (const TypeMarks& each : type_marks) {
        if (each.type != type) continue;
        mark(m_abilities, each.method);
        mark(m_load.io_abilities, each.io);
    }
}

void IoMethods::write_settings(const Row& row) {
    for (const Setting& setting : settings) {
        const bool written = m_method.set_present(setting.cell, row, m_abilities);
        if (written) mark(m_load.io_abilities, setting.io);
    }
}

// An unknown text adds the mark behind the codes of its table (kept).
void IoMethods::add_bits(const Row& row) {
    for (const MaskCell& cell : mask_cells) {
        if (!row.has(cell.column)) continue;
        m_masks.*cell.mask |= static_cast<std::int32_t>(lookup_enum(cell.keywords, row[cell.column]));
        mark(m_abilities, cell.marks);
    }
}

void IoMethods::add_protocol(const char16_t* name) {
    m_method.set_string(u"\\protocol\\*\\canonical_name", name, m_protocol_index);
    if (const UC_Protocol* record = m_load.protocols.find_by_name(name)) {
        m_method.set_long(u"\\protocol\\*\\data_bits", record->data_bits, m_protocol_index);
        m_method.set_long(u"\\protocol\\*\\stop_bits", record->stop_bits, m_protocol_index);
        m_method.set_long(u"\\protocol\\*\\parity", record->parity, m_protocol_index);
        m_method.set_string(u"\\protocol\\*\\localized_name", record->localized_name, m_protocol_index);
    }
    m_method.set_long(u"\\protocol\\*\\caps_type", m_load.caps_type, m_protocol_index);
    ++m_protocol_index;
    mark(m_abilities, {MethodAbility::protocols});
}

void IoMethods::add_baud_rate(const char16_t* rate) {
    m_method.set_long(u"\\baudrates\\*\\rate", scan_long(rate), m_baud_rate_index);
    m_method.set_long(u"\\baudrates\\*\\caps_type", m_load.caps_type, m_baud_rate_index);
    ++m_baud_rate_index;
    mark(m_abilities, {MethodAbility::baud_rates});
}

void IoMethods::write_handshakes() {
    if (has(MethodAbility::default_handshake)) {
        m_method.set_long(u"\\default_handshake", m_masks.default_handshake);
    }
    if (has(MethodAbility::handshakes)) m_method.set_long(u"\\handshakes", m_masks.handshakes);
}

void IoMethods::close_group() {
    write_handshakes();
    if (has(MethodAbility::handshakes)) mark(m_load.io_abilities, {IoAbility::handshakes});
    if (has(MethodAbility::bidi_status)) m_method.set_long(u"\\bidi_flags", m_masks.bidi_status);
    m_method.set_flags(u"\\abilities", m_abilities);
    m_masks.handshakes = m_masks.default_handshake = 0;
    m_abilities = UC_Method_Abilties();
}

// The last group goes without its status and the ability of handshakes (kept).
void IoMethods::finish() {
    write_handshakes();
    m_method.set_flags(u"\\abilities", m_abilities);
}

} // namespace

// A type, B status, C protocol, D and E longest and shortest timeout of output, F and G of input, H and I
// timeout of output and of input by default, J handshake, K baud rate and L protocol by default, M handshake,
// N baud rate. A dropped line isn't counted.
void convert_io_method(PdtLoad& load, Rows& rows) {
    IoMethods methods(load);
    bool first = true;
    while (rows.next()) {
        if (methods.take_row(rows.fields(14), first)) first = false;
    }
    if (!first) methods.finish();
}

} // namespace pm
