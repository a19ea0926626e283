#include "base/text.h"
#include "pdt/branch.h"
#include "pdt/misc_info_rows.h"

namespace {

constexpr std::int32_t unknown_flag = -1; // no set has it

} // namespace

// The sets of flags that live for one reading of the form, and the handling of its lines.
class PM_PDTFile::MiscInfo {
public:
    using Form = MiscRow::Form;
    using Set = MiscRow::Set;

    MiscInfo(PM_PDTFile& pdt, Branch& root) : m_pdt(pdt), m_root(root) {}

    // Handles the line that the filer holds.
    void take(const MiscRow& line);

    const char16_t* text_of(Set set) { return flags(set).get_flags(); }

private:
    using Handler = void (MiscInfo::*)(const MiscRow& line, pm::Row& row);

    void ignore(const MiscRow&, pm::Row&) {}
    void write_cell(const MiscRow& line, pm::Row& row);
    void write_pen_count(const MiscRow& line, pm::Row& row);
    void write_keyword(const MiscRow& line, pm::Row& row);
    void write_keyword_name(const MiscRow& line, pm::Row& row);
    void write_keyword_list(const MiscRow& line, pm::Row& row);
    void mark_yes(const MiscRow& line, pm::Row& row);
    void mark_yes_kept(const MiscRow& line, pm::Row& row);
    void mark_yes_at_kept(const MiscRow& line, pm::Row& row);
    void write_linetypes(const MiscRow& line, pm::Row& row);
    void set_owners(const MiscRow& line, pm::Row& row);

    void write_code(const MiscRow& line, const char16_t* keyword);
    void set_owner(const MiscRow& line, const char16_t* keyword);
    void mark_all(const MiscRow& line) { mark(flags(line.set), line.marks); }
    ZT_Flags& flags(Set set) { return *m_sets[static_cast<int>(set)]; }

    PM_PDTFile& m_pdt;
    Branch& m_root;
    std::size_t m_kept_place = 0;

    ZT_PhysPens_Abilities m_pens;
    ZT_InitTerm_Abilities m_start_strings;
    UC_Linetype_Abilities m_linetypes;
    ZT_PhysPen_UI_Owner m_pen_owners;
    ZT_InitTerm_UI_Owner m_start_string_owners;
    ZT_ResColorMem_UI_Owner m_res_color_mem_owners;
    ZT_IO_UI_Owner m_io_owners;
    ZT_Media_UI_Owner m_media_owners;
    // In the order of Set.
    ZT_Flags* const m_sets[11] = {&m_pens,
                                  &m_start_strings,
                                  &m_linetypes,
                                  &m_pdt.m_media_abilities,
                                  &m_pdt.m_res_color_mem_abilities,
                                  &m_pdt.m_io_abilities,
                                  &m_pen_owners,
                                  &m_start_string_owners,
                                  &m_res_color_mem_owners,
                                  &m_io_owners,
                                  &m_media_owners};
};

void PM_PDTFile::MiscInfo::take(const MiscRow& line) {
    // In the order of Form.
    static constexpr Handler handlers[] = {
        &MiscInfo::ignore,          &MiscInfo::write_cell,         &MiscInfo::write_pen_count,
        &MiscInfo::write_keyword,   &MiscInfo::write_keyword_name, &MiscInfo::write_keyword_list,
        &MiscInfo::mark_yes,        &MiscInfo::mark_yes_kept,      &MiscInfo::mark_yes_at_kept,
        &MiscInfo::write_linetypes, &MiscInfo::set_owners,
    };
    pm::Row row(m_pdt.m_line, 2);
    (this->*handlers[static_cast<int>(line.form)])(line, row);
}

void PM_PDTFile::MiscInfo::write_cell(const MiscRow& line, pm::Row& row) {
    m_root.set_present({'B', 'B', line.item, line.cell_form, line.marks}, row, flags(line.set));
}

void PM_PDTFile::MiscInfo::write_pen_count(const MiscRow& line, pm::Row& row) {
    if (!row.has('B')) return;
    const std::int32_t count = pm::scan_long(row['B']);
    m_root.set_long(line.item, count);
    if (count > 0) mark_all(line);
}

void PM_PDTFile::MiscInfo::write_keyword(const MiscRow& line, pm::Row& row) {
    if (row.has('B')) write_code(line, row['B']);
}

void PM_PDTFile::MiscInfo::write_keyword_name(const MiscRow& line, pm::Row& row) {
    if (row.has('B')) write_code(line, row.name('B'));
}

void PM_PDTFile::MiscInfo::write_code(const MiscRow& line, const char16_t* keyword) {
    m_root.set_long(line.item, pm::lookup_enum_or(line.keywords, keyword, line.miss));
    mark_all(line);
}

void PM_PDTFile::MiscInfo::write_keyword_list(const MiscRow& line, pm::Row& row) {
    if (!row.has('B')) return;
    std::int32_t combined = 0;
    for (const char16_t* keyword = row['B']; *keyword != 0; keyword = row.next()) {
        combined |= pm::lookup_enum_or(line.keywords, keyword, line.miss);
    }
    m_root.set_long(line.item, combined);
    mark_all(line);
}

void PM_PDTFile::MiscInfo::mark_yes(const MiscRow& line, pm::Row& row) {
    if (*row['B'] == u'Y') mark_all(line);
}

void PM_PDTFile::MiscInfo::mark_yes_kept(const MiscRow& line, pm::Row& row) {
    m_kept_place = static_cast<std::size_t>(row['B'] - m_pdt.m_line.data());
    mark_yes(line, row);
}

// The line's own cell only tells whether to look (kept: files depend on it).
void PM_PDTFile::MiscInfo::mark_yes_at_kept(const MiscRow& line, pm::Row& row) {
    if (row.has('B') && m_pdt.m_line.data()[m_kept_place] == u'Y') mark_all(line);
}

// Here, and only here, a label counts (kept: files depend on it).
void PM_PDTFile::MiscInfo::write_linetypes(const MiscRow& line, pm::Row& row) {
    for (const char16_t* keyword : {row['B'], row.next()}) {
        if (*keyword != 0) mark(flags(line.set), {pm::lookup_enum_or(line.keywords, keyword, unknown_flag)});
    }
    if (row.has('A')) m_root.set_string(line.item, text_of(line.set));
}

void PM_PDTFile::MiscInfo::set_owners(const MiscRow& line, pm::Row& row) {
    for (const char16_t* keyword = row['B']; *keyword != 0; keyword = row.next()) {
        set_owner(line, keyword);
    }
    if (line.item != nullptr) m_root.set_string(line.item, text_of(line.set));
}

void PM_PDTFile::MiscInfo::set_owner(const MiscRow& line, const char16_t* keyword) {
    ZT_Flags& owners = flags(line.set);
    if (!pm::is_all_keyword(keyword)) {
        owners.set_flag(pm::lookup_enum_or(line.keywords, keyword, unknown_flag), line.owner);
        return;
    }
    for (const pm::Keyword& each : pm::keyword_rows(line.keywords)) {
        owners.set_flag(static_cast<int>(each.code), line.owner);
    }
}

// A short file reads as empty cells. The abilities that earlier converters marked are written at the end.
void PM_PDTFile::convert_misc_info(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::misc_info);
    Branch root(object, base, {});
    MiscInfo form(*this, root);
    for (const MiscRow& line : MiscRow::all().subspan(pm::SectionReader::heading_lines)) {
        section.read_row(m_line);
        form.take(line);
    }
    root.set_string(u"\\io\\abilities", m_io_abilities.get_flags());
    publish_res_color_mem(object, base);
    if (m_landscape_seen && m_portrait_seen) {
        mark(m_media_abilities, {12});
        root.set_bool(u"\\media\\landscape", true);
    }
    mark(m_media_abilities, {24});
    root.set_string(u"\\res_color_mem\\abilities", m_res_color_mem_abilities.get_flags());
    root.set_string(u"\\physical_pen\\abilities", form.text_of(MiscRow::Set::pens));
    root.set_string(u"\\init_term\\abilities", form.text_of(MiscRow::Set::start_strings));
    // Nothing marks abilities of the model.
    root.set_string(u"\\meta\\model_abilities", ZT_Model_Ability().get_flags());
    root.set_string(u"\\media\\abilities", m_media_abilities.get_flags());
}
