#include "pdt/sections/misc_form.h"

#include "base/text.h"

namespace pm {

namespace {

constexpr std::int32_t unknown_flag = -1; // no set has it

void mark_line(MiscForm& form, const FormLine& line) {
    if (line.set != nullptr) mark(line.set(form), line.marks);
}

void write_code(MiscForm& form, const FormLine& line, std::int32_t code) {
    form.root.set_long(line.item, code);
    mark_line(form, line);
}

void set_owner(ZT_Flags& owners, const FormLine& line, std::u16string_view keyword) {
    for (const Keyword& each : line.keywords) {
        if (keyword != keywords::all && keyword != each.text) continue;
        FlagAccess::set(owners, static_cast<int>(each.code), line.owner);
    }
}

} // namespace

// A short table reads as lines of empty cells.
void MiscForm::read(std::span<const FormLine> lines, int last_line) {
    auto line = lines.begin();
    while (rows.number() < last_line) {
        rows.next();
        if (line == lines.end() || line->number != rows.number()) continue;
        Row row = rows.fields(2);
        line->handle(*this, *line, row);
        ++line;
    }
}

void write_cell(MiscForm& form, const FormLine& line, Row& row) {
    if (!row.has('B')) return;
    form.root.set_cell(line.item, row['B'], line.form);
    mark_line(form, line);
}

void write_count(MiscForm& form, const FormLine& line, Row& row) {
    if (!row.has('B')) return;
    const std::int32_t count = scan_long(row['B']);
    form.root.set_long(line.item, count);
    if (count > 0) mark_line(form, line);
}

void write_keyword(MiscForm& form, const FormLine& line, Row& row) {
    if (row.has('B')) write_code(form, line, lookup_enum_or(line.keywords, row['B'], line.miss));
}

void write_keyword_name(MiscForm& form, const FormLine& line, Row& row) {
    if (row.has('B')) write_code(form, line, lookup_enum_or(line.keywords, row.name('B'), line.miss));
}

void write_keyword_list(MiscForm& form, const FormLine& line, Row& row) {
    if (!row.has('B')) return;
    std::int32_t combined = 0;
    for (const char16_t* keyword = row['B']; *keyword != 0; keyword = row.next()) {
        combined |= lookup_enum_or(line.keywords, keyword, line.miss);
    }
    write_code(form, line, combined);
}

void mark_yes(MiscForm& form, const FormLine& line, Row& row) {
    if (*row['B'] == u'Y') mark_line(form, line);
}

void mark_yes_and_keep(MiscForm& form, const FormLine& line, Row& row) {
    form.kept_place = static_cast<std::size_t>(row['B'] - form.load.line.data());
    mark_yes(form, line, row);
}

void mark_yes_at_kept(MiscForm& form, const FormLine& line, Row& row) {
    if (row.has('B') && form.load.line.data()[form.kept_place] == u'Y') mark_line(form, line);
}

void mark_keywords(MiscForm& form, const FormLine& line, Row& row) {
    for (const char16_t* keyword : {row['B'], row.next()}) {
        if (*keyword == 0) continue;
        mark(line.set(form), {lookup_enum_or(line.keywords, keyword, unknown_flag)});
    }
    if (row.has('A')) form.root.set_flags(line.item, line.set(form));
}

void set_owners(MiscForm& form, const FormLine& line, Row& row) {
    for (const char16_t* keyword = row['B']; *keyword != 0; keyword = row.next()) {
        set_owner(line.set(form), line, keyword);
    }
    if (line.item != nullptr) form.root.set_flags(line.item, line.set(form));
}

} // namespace pm
