#include "pdt/branch.h"

#include "base/text.h"
#include "pdt/record_rows.h"

namespace {

// The codes of IO types that have abilities of their own.
constexpr std::int32_t file_type = 2;
constexpr std::int32_t serial_type = 4;
constexpr std::int32_t parallel_type = 5;

// The method flags that closing a group looks at.
constexpr int has_bidi_flags = 11;
constexpr int has_handshakes = 18;
constexpr int has_default_handshake = 19;

std::int32_t keyword_bits(pm::Keywords table, const char16_t* cell) {
    return static_cast<std::int32_t>(pm::lookup_enum(table, cell));
}

} // namespace

// Columns: protocol, text, data bits, stop bits, parity.
void PM_PDTFile::read_protocol(PM_Object&, const char16_t*) {
    read_records(pm::Section::protocol, 5, m_protocols, [](UC_Protocol& record, const pm::Row& row) {
        record.data_bits = pm::lookup_enum_or(pm::Keywords::data_bits, row['C'], -1);
        record.stop_bits = pm::lookup_enum_or(pm::Keywords::stop_bits, row['D'], -1);
        record.parity = pm::lookup_enum_or(pm::Keywords::parity, row['E'], -1);
    });
}

// One group of rows for each method of output. The first row of a group has the method's type and its plain
// settings; each row adds a status, a protocol, a handshake and a baud rate.
class PM_PDTFile::IoMethods {
public:
    IoMethods(PM_PDTFile& file, PM_Object& object, const char16_t* base)
        : m_file(file), m_method(object, base, {u"\\io\\method\\"}) {}

    // False for a row of an unknown type, which is dropped whole.
    bool take_row(const pm::Row& row, bool first);
    void finish();

private:
    // A plain setting of a group.
    struct Setting {
        CellItem cell;
        Marks io_marks;
    };

    bool open_group(const pm::Row& row);
    void close_group();
    void write_handshakes();
    void write_settings(const pm::Row& row);
    void add_bits(const pm::Row& row);
    void add_protocol(const char16_t* name);
    void add_baud_rate(const char16_t* rate);

    PM_PDTFile& m_file;
    Branch m_method;
    UC_Method_Abilties m_abilities;
    std::int32_t m_default_handshake = 0;
    std::int32_t m_handshakes = 0;
    // The three below are not reset between groups (kept: files depend on it).
    std::int32_t m_bidi_flags = 0;
    std::int32_t m_protocol_index = 0;
    std::int32_t m_baud_rate_index = 0;
};

bool PM_PDTFile::IoMethods::take_row(const pm::Row& row, bool first) {
    if (row.has('A')) {
        mark(m_file.m_io_abilities, {0});
        if (!first) close_group();
        if (!open_group(row)) return false;
    }
    add_bits(row);
    if (row.has('C')) add_protocol(row['C']);
    if (row.has('N')) add_baud_rate(row['N']);
    return true;
}

bool PM_PDTFile::IoMethods::open_group(const pm::Row& row) {
    const std::int32_t type = pm::lookup_enum_or(pm::Keywords::io_type, row['A'], -1);
    if (type < 0) return false;
    m_method.enter({pm::to_decimal(type)});
    mark(m_file.m_io_abilities, {2});
    mark(m_abilities, {10});
    if (type == serial_type || type == parallel_type) {
        mark(m_file.m_io_abilities, {4});
        mark(m_abilities, {16});
    }
    if (type == file_type) mark(m_file.m_io_abilities, {10, 11});
    m_method.set_long(u"\\caps_type", m_file.m_caps_type);
    write_settings(row);
    return true;
}

void PM_PDTFile::IoMethods::write_settings(const pm::Row& row) {
    static constexpr Setting settings[] = {
        {{'D', 'D', u"\\max_output_timeout", CellForm::integer, {1}}, {}},
        {{'E', 'E', u"\\min_output_timeout", CellForm::integer, {2}}, {}},
        {{'F', 'F', u"\\max_input_timeout", CellForm::integer, {4, 14}}, {}},
        {{'D', 'G', u"\\min_input_timeout", CellForm::integer, {5}}, {}}, // the test on D is kept
        {{'H', 'H', u"\\default_output_timeout", CellForm::integer, {0, 13}}, {8}},
        {{'I', 'I', u"\\default_input_timeout", CellForm::integer, {3}}, {9}},
        {{'K', 'K', u"\\default_baud_rate", CellForm::integer, {8, 17}}, {6}},
        {{'L', 'L', u"\\default_protocol", CellForm::text, {6, 15}}, {5}},
    };
    for (const Setting& setting : settings) {
        const bool written = m_method.set_present(setting.cell, row, m_abilities);
        if (written) mark(m_file.m_io_abilities, setting.io_marks);
    }
}

// An unknown text adds the end mark of its table (kept: files depend on it).
void PM_PDTFile::IoMethods::add_bits(const pm::Row& row) {
    if (row.has('B')) {
        m_bidi_flags |= keyword_bits(pm::Keywords::bidi_status, row['B']);
        mark(m_abilities, {has_bidi_flags});
    }
    if (row.has('M')) {
        m_handshakes |= keyword_bits(pm::Keywords::handshake, row['M']);
        mark(m_abilities, {has_handshakes, 12});
    }
    if (row.has('J')) {
        m_default_handshake |= keyword_bits(pm::Keywords::handshake, row['J']);
        mark(m_abilities, {has_default_handshake});
    }
}

void PM_PDTFile::IoMethods::add_protocol(const char16_t* name) {
    m_method.set_string(u"\\protocol\\*\\canonical_name", name, m_protocol_index);
    if (const UC_Protocol* record = m_file.m_protocols.find_by_name(name)) {
        m_method.set_long(u"\\protocol\\*\\data_bits", record->data_bits, m_protocol_index);
        m_method.set_long(u"\\protocol\\*\\stop_bits", record->stop_bits, m_protocol_index);
        m_method.set_long(u"\\protocol\\*\\parity", record->parity, m_protocol_index);
        m_method.set_string(u"\\protocol\\*\\localized_name", record->localized_name, m_protocol_index);
    }
    m_method.set_long(u"\\protocol\\*\\caps_type", m_file.m_caps_type, m_protocol_index);
    ++m_protocol_index;
    mark(m_abilities, {7});
}

void PM_PDTFile::IoMethods::add_baud_rate(const char16_t* rate) {
    m_method.set_long(u"\\baudrates\\*\\rate", pm::scan_long(rate), m_baud_rate_index);
    m_method.set_long(u"\\baudrates\\*\\caps_type", m_file.m_caps_type, m_baud_rate_index);
    ++m_baud_rate_index;
    mark(m_abilities, {9});
}

void PM_PDTFile::IoMethods::write_handshakes() {
    if (m_abilities.get_flag(has_default_handshake) != 0) {
        m_method.set_long(u"\\default_handshake", m_default_handshake);
    }
    if (m_abilities.get_flag(has_handshakes) != 0) m_method.set_long(u"\\handshakes", m_handshakes);
}

void PM_PDTFile::IoMethods::close_group() {
    write_handshakes();
    if (m_abilities.get_flag(has_handshakes) != 0) mark(m_file.m_io_abilities, {7});
    if (m_abilities.get_flag(has_bidi_flags) != 0) m_method.set_long(u"\\bidi_flags", m_bidi_flags);
    m_method.set_string(u"\\abilities", m_abilities.get_flags());
    m_default_handshake = 0;
    m_handshakes = 0;
    m_abilities = UC_Method_Abilties();
}

// The last group goes without its status and the ability of handshakes (kept: files depend on it).
void PM_PDTFile::IoMethods::finish() {
    write_handshakes();
    m_method.set_string(u"\\abilities", m_abilities.get_flags());
}

// Columns: type, status, protocol, six timeouts, handshake, baud rate and protocol by default, handshake,
// baud rate. A dropped line isn't counted.
void PM_PDTFile::convert_io_method(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::io_method);
    IoMethods methods(*this, object, base);
    int number = pm::SectionReader::first_row;
    while (section.read_row(m_line)) {
        if (methods.take_row(pm::Row(m_line, 14), number == pm::SectionReader::first_row)) ++number;
    }
    if (number > pm::SectionReader::first_row) methods.finish();
}
