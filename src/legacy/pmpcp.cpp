#include "legacy/pmpcp.h"

#include "base/text.h"
#include "legacy/text_line.h"
#include "store/tree_cursor.h"
#include <algorithm>
#include <iterator>
#include <pm/error_number.h>
#include <pm/exception.h>

namespace {

constexpr const char16_t* source = u"$Workfile: pmpcp $ $Revision: #1 $";
constexpr const char16_t* load_place = u"PM_PCPFile::load()";
constexpr const char16_t* keys_place = u"PM_PCPFile::pcpkeys()";
constexpr const char16_t* version_place = u"PM_PCPFile::getVersion()";

constexpr std::size_t key_limit = 511;
constexpr std::int32_t colors = 255;
constexpr std::int32_t modulus = 16;
constexpr std::size_t longest_color = 3;

struct Comment {
    std::u16string_view start;
    std::u16string_view key; // what the rest of the line is stored as; empty for the marker
};

constexpr Comment comments[] = {
    {u";Created by Draftex", u""},
    {u";For the driver:", u"FAMILY"},
    {u";For the device:", u"MODEL"},
};

std::u16string_view key_of(std::u16string_view line) {
    return line.substr(0, line.find_first_of(u" ="));
}

// What stands behind the first "=" and all units of `skipped`.
std::u16string_view value_of(std::u16string_view line, std::u16string_view skipped = u" =\t") {
    return pm::skip_any(line.substr(std::min(line.find(u'='), line.size())), skipped);
}

// The text up to the first `mark`, or the whole of it.
std::u16string_view text_before(std::u16string_view text, char16_t mark) {
    return text.substr(0, text.find(mark));
}

// The text from a place on; empty from its end on.
std::u16string_view text_from(std::u16string_view text, std::size_t place) {
    return text.substr(std::min(place, text.size()));
}

} // namespace

thread_local bool PM_PCPFile::s_default_block = false;

struct PM_PCPFile::Keyword {
    std::u16string_view name;
    Outcome (PM_PCPFile::*handler)(const KeywordLine& at);
    PropType type = PROP_NONE;
    std::u16string_view letters = {};
};

struct PM_PCPFile::KeywordLine {
    PM_Object& object;
    std::u16string_view line;
    pm::WorkingPath& path;
    std::u16string_view key;
    const Keyword& keyword;
};

struct PM_PCPFile::Reading {
    PM_Object& object;
    pm::WorkingPath path;
    bool marked = false;
    std::size_t key_length = 0; // kept from the last line that had a "="
};

// Two numbers that are stored below the path.
struct PM_PCPFile::NumberPair {
    std::u16string_view first_name;
    std::u16string_view first;
    std::u16string_view second_name;
    std::u16string_view second;
    bool integers; // whether they may be written without a point
};

const PM_PCPFile::Keyword PM_PCPFile::keywords[] = {
    {u"VERSION", &PM_PCPFile::plain_value, PROP_DOUBLE},
    {u"BEGIN_COLOR", &PM_PCPFile::begin_color},
    {u"END_COLOR", &PM_PCPFile::end_color},
    {u"PEN_NUMBER", &PM_PCPFile::pen_number, PROP_LONG},
    {u"HW_LINETYPE", &PM_PCPFile::pen_value, PROP_LONG},
    {u"PEN_SPEED", &PM_PCPFile::pen_value, PROP_LONG},
    {u"PEN_WEIGHT", &PM_PCPFile::pen_value, PROP_DOUBLE},
    {u"UNITS", &PM_PCPFile::one_letter, PROP_STRING, u"im"},
    {u"ORIGIN", &PM_PCPFile::origin},
    {u"SIZE", &PM_PCPFile::size, PROP_STRING},
    {u"ROTATE", &PM_PCPFile::plain_value, PROP_LONG},
    {u"HIDE", &PM_PCPFile::one_letter, PROP_STRING, u"yn"},
    {u"PEN_WIDTH", &PM_PCPFile::plain_value, PROP_DOUBLE},
    {u"SCALE", &PM_PCPFile::scale, PROP_STRING},
    {u"PLOT_FILE", &PM_PCPFile::plain_value, PROP_STRING},
    {u"FILL_ADJUST", &PM_PCPFile::one_letter, PROP_STRING, u"yn"},
    {u"OPTIMIZE_LEVEL", &PM_PCPFile::plain_value, PROP_LONG},
};

PropType PM_PCPFile::classify_pcp_value(std::u16string_view text) {
    if (!text.empty() && (pm::is_letter(text.front()) || text.front() == u'*')) {
        const bool flag = pm::equals_ignoring_case(text, u"true") || pm::equals_ignoring_case(text, u"false");
        return flag ? PROP_BOOL : PROP_STRING;
    }
    if (text.starts_with(u'-')) text.remove_prefix(1);
    const auto points = std::count(text.begin(), text.end(), u'.');
    const auto digits = std::count_if(text.begin(), text.end(), pm::is_digit);
    if (static_cast<std::size_t>(points + digits) != text.size() || points > 1) return PROP_NONE;
    return points == 1 ? PROP_DOUBLE : PROP_LONG;
}

void PM_PCPFile::getVersion(char16_t* buffer, std::size_t size) {
    pm::require_text_stream(m_stream, version_place, file_name(), source);
    rewind_reader();
    pm::TextLine line;
    do {
        pm::read_text_line(m_reader, line);
        pm::check_text_stream(*m_stream, version_place, file_name(), source);
        if (line.too_long) {
            report_bad_line<PM_Error>(version_place, line.text);
        } else if (!line.empty_or_comment()) {
            version_line(line.text, buffer, size);
        }
    } while (!line.last);
}

void PM_PCPFile::version_line(std::u16string_view line, char16_t* buffer, std::size_t size) {
    const std::u16string_view key = key_of(line);
    if (line.find(u'=') == std::u16string_view::npos || !pm::equals_ignoring_case(key, u"VERSION")) return;
    const std::u16string_view value = pm::skip_any(line.substr(key.size()), u" =");
    if (value.empty()) {
        report_bad_line<PM_Error>(version_place, line);
    } else {
        copy_version(value, buffer, size);
    }
}

template<class E>
void PM_PCPFile::report_bad_line(const char16_t* place, std::u16string_view line) {
    report(E(PM_ERR_BAD_LINE, place, format_line_context(line).c_str(), source));
}

void PM_PCPFile::load(PM_Object* target, const char16_t* base, PM_Object::FileType type) {
    m_file_type = type;
    const std::u16string_view place = pm::view(base);
    const std::size_t separator = place.ends_with(u'\\') ? 0 : 1;
    if (place.size() + separator > pm::WorkingPath::capacity) {
        throw PM_Warning(PM_ERR_BAD_PATH, load_place, base, source);
    }
    Reading reading{*target, pm::WorkingPath(place)};
    if (!reading.path.ends_in_separator()) reading.path.append(u"\\");

    pm::require_text_stream(m_stream, load_place, file_name(), source);
    m_reader.attach(*m_stream);
    pm::TextLine line;
    for (bool more = !m_stream->eof(); more; more = !line.last) {
        ++m_line_number;
        pm::read_text_line(m_reader, line);
        pm::check_text_stream(*m_stream, load_place, file_name(), source);
        if (line.too_long) {
            report_bad_line<PM_Warning>(load_place, line.text);
        } else if (!line.text.empty()) {
            load_line(reading, line.text);
        }
    }
}

void PM_PCPFile::load_line(Reading& reading, const std::u16string& line) {
    if (line.front() == u';') {
        comment_line(reading, line);
    } else if (reading.marked) {
        keyword_line(reading, line);
    } else {
        report(PM_Error(PM_ERR_UNKNOWN_VERSION, load_place, file_name(), source));
    }
}

void PM_PCPFile::comment_line(Reading& reading, const std::u16string& line) {
    const auto* comment = std::find_if(std::begin(comments), std::end(comments), [&](const Comment& each) {
        return pm::starts_with_ignoring_case(line, each.start);
    });
    if (comment == std::end(comments)) return;
    if (comment->key.empty()) {
        reading.marked = true;
        return;
    }
    const std::size_t start = reading.path.length();
    if (!reading.path.append(comment->key)) {
        report_bad_line<PM_Warning>(load_place, line);
        return;
    }
    const std::u16string_view text = line;
    const std::u16string_view value = pm::skip_any(text.substr(comment->start.size()), u" ");
    set_string(reading.object, reading.path.text(), std::u16string(value).c_str());
    reading.path.truncate(start);
}

void PM_PCPFile::keyword_line(Reading& reading, std::u16string_view line) {
    const bool has_value = line.find(u'=') != std::u16string_view::npos;
    const std::u16string_view key = has_value ? key_of(line) : line;
    if (has_value) reading.key_length = key.size();
    if (key.empty() || (has_value && key.size() > key_limit)) {
        report_bad_line<PM_Warning>(load_place, line);
        return;
    }
    if (!pcpkeys(reading.object, line, reading.path, key)) return;
    if (!reading.path.append(key)) {
        report_bad_line<PM_Warning>(load_place, line);
        return;
    }
    // Kept: a line without "=" has its value where the last line with one had it.
    const std::u16string_view value = pm::skip_any(text_from(line, reading.key_length), u" =_");
    if (value.empty() || !store_value(reading.object, reading.path.text(), value)) {
        report_bad_line<PM_Warning>(load_place, line);
    }
    cut_path(reading.path, line);
}

bool PM_PCPFile::store_value(PM_Object& object, const char16_t* path, std::u16string_view value) const {
    if (classify_pcp_value(value) != m_expected_type) return false;
    switch (m_expected_type) {
    case PROP_LONG:
        set_long(object, path, pm::scan_long(value));
        return true;
    case PROP_DOUBLE:
        set_double(object, path, pm::scan_double(value));
        return true;
    default:
        set_string(object, path, std::u16string(value).c_str());
        return true;
    }
}

// Behind the last "\", which stays.
void PM_PCPFile::cut_path(pm::WorkingPath& path, std::u16string_view line) {
    if (path.pop()) {
        path.append(u"\\");
    } else {
        report_bad_line<PM_Warning>(load_place, line);
    }
}

bool PM_PCPFile::pcpkeys(PM_Object& object, std::u16string_view line, pm::WorkingPath& path,
                         std::u16string_view key) {
    m_expected_type = PROP_NONE;
    const std::size_t start = path.length();
    const auto* keyword = std::find_if(std::begin(keywords), std::end(keywords), [key](const Keyword& each) {
        return pm::equals_ignoring_case(each.name, key);
    });
    const Outcome outcome = keyword != std::end(keywords)
                                ? (this->*keyword->handler)({object, line, path, key, *keyword})
                                : Outcome::bad;
    if (outcome == Outcome::bad) {
        report_bad_line<PM_Warning>(keys_place, line);
        path.truncate(start);
    }
    return outcome == Outcome::store;
}

PM_PCPFile::Outcome PM_PCPFile::plain_value(const KeywordLine& at) {
    m_expected_type = at.keyword.type;
    return Outcome::store;
}

PM_PCPFile::Outcome PM_PCPFile::one_letter(const KeywordLine& at) {
    const std::u16string_view value = value_of(at.line, u" =\t_");
    if (value.size() != 1 || at.keyword.letters.find(pm::to_lower(value[0])) == std::u16string_view::npos) {
        return Outcome::bad;
    }
    return plain_value(at);
}

PM_PCPFile::Outcome PM_PCPFile::begin_color(const KeywordLine& at) {
    const std::u16string_view value = value_of(at.line);
    if (value.empty()) return Outcome::bad;
    if (classify_pcp_value(value) == PROP_LONG) {
        const bool opened = s_default_block || (at.path.append(value) && at.path.append(u"\\"));
        return opened ? Outcome::done : Outcome::bad;
    }
    if (!pm::equals_ignoring_case(value, u"DEFAULT")) return Outcome::bad;
    s_default_block = true;
    return Outcome::done;
}

// Kept: one that closes nothing cuts the base, and the lines that follow go above it.
PM_PCPFile::Outcome PM_PCPFile::end_color(const KeywordLine& at) {
    if (s_default_block) {
        s_default_block = false;
        return Outcome::done;
    }
    at.path.pop();
    if (at.path.pop()) at.path.append(u"\\");
    return Outcome::done;
}

// Gives the place of each colour to `set`. Kept: where the path doesn't end in a "\\", the colour's number
// goes on with its last name.
template<class Setter>
PM_PCPFile::Outcome PM_PCPFile::set_for_each_color(const KeywordLine& at, Setter set) {
    const std::size_t start = at.path.length();
    if (start + longest_color + 1 + at.key.size() > pm::WorkingPath::capacity) return Outcome::bad;
    const std::u16string_view base = at.path.text();
    const bool ends_whole = base.empty() || base.ends_with(u'\\');
    pm::TreeCursor place(at.object, base);
    for (std::int32_t color = 1; color <= colors; ++color) {
        const std::u16string number = pm::to_decimal(color);
        if (ends_whole) {
            place.push(number);
            set(place, color);
            place.pop();
        } else {
            pm::TreeCursor joined(at.object, std::u16string(base) + number);
            set(joined, color);
        }
    }
    return Outcome::done;
}

PM_PCPFile::Outcome PM_PCPFile::pen_number(const KeywordLine& at) {
    const std::u16string_view value = value_of(at.line);
    if (!s_default_block || (value != u"*" && value != u"MOD16")) return pen_value(at);
    const std::int32_t pens = value == u"*" ? colors : modulus;
    return set_for_each_color(at, [&](pm::TreeCursor& place, std::int32_t color) {
        place.set_long(at.key, (color - 1) % pens + 1);
    });
}

PM_PCPFile::Outcome PM_PCPFile::pen_value(const KeywordLine& at) {
    if (!s_default_block) return plain_value(at);
    const std::u16string_view value = value_of(at.line);
    if (value.empty()) return Outcome::bad;
    const double weight = pm::scan_double(value);
    const std::int32_t number = pm::scan_long(value);
    return set_for_each_color(at, [&](pm::TreeCursor& place, std::int32_t) {
        if (at.keyword.type == PROP_DOUBLE) {
            place.set_double(at.key, weight);
        } else {
            place.set_long(at.key, number);
        }
    });
}

bool PM_PCPFile::set_member(const KeywordLine& at, const NumberPair& pair, std::u16string_view name,
                            std::u16string_view number) {
    const PropType form = classify_pcp_value(number);
    const bool known = form == PROP_DOUBLE || (form == PROP_LONG && pair.integers);
    if (number.empty() || !known || !at.path.push(name)) return false;
    set_double(at.object, at.path.text(), pm::scan_double(number));
    at.path.pop();
    return true;
}

// Stores at <key>\<name of the number>, or at <key>\<subkey>\<name of the number>. Kept: a bad second number
// is noticed when the first is stored already.
PM_PCPFile::Outcome PM_PCPFile::set_pair(const KeywordLine& at, const NumberPair& pair,
                                         std::u16string_view subkey) {
    const std::size_t start = at.path.length();
    const bool good = at.path.append(at.key) && at.path.append(u"\\") && at.path.append(subkey) &&
                      set_member(at, pair, pair.first_name, pair.first) &&
                      set_member(at, pair, pair.second_name, pair.second);
    at.path.truncate(start);
    return good ? Outcome::done : Outcome::bad;
}

PM_PCPFile::Outcome PM_PCPFile::origin(const KeywordLine& at) {
    const std::u16string_view value = value_of(at.line);
    const std::u16string_view x = text_before(value, u',');
    const std::u16string_view y = pm::skip_any(text_from(value, x.size() + 1), u" \t");
    return set_pair(at, {u"X", pm::skip_any(x, u" \t"), u"Y", y, false});
}

// Kept: the second number is looked for as far behind the comma as there are blanks in front of the first,
// less one. Without a blank that is the comma itself, which is no number: "SIZE=A:1,2" sets X alone.
PM_PCPFile::Outcome PM_PCPFile::size(const KeywordLine& at) {
    if (at.line.find(u':') == std::u16string_view::npos) return plain_value(at);
    const std::u16string_view value = value_of(at.line);
    const std::u16string_view name = text_before(value, u':');
    const std::u16string_view numbers = text_from(value, name.size() + 1);
    const std::u16string_view x = text_before(numbers, u',');
    const std::u16string_view first = pm::skip_any(x, u" \t");
    const std::size_t blanks = x.size() - first.size();
    const std::u16string_view second = pm::skip_any(text_from(numbers, blanks + x.size()), u" \t");
    return set_pair(at, {u"X", first, u"Y", second, true}, name);
}

PM_PCPFile::Outcome PM_PCPFile::scale(const KeywordLine& at) {
    const std::u16string_view value = value_of(at.line, u" =\t_");
    if (pm::equals_ignoring_case(value, u"F")) return plain_value(at);
    const std::u16string_view units = text_before(value, u'=');
    const std::u16string_view drawing = pm::skip_any(text_from(value, units.size() + 1), u" ");
    return set_pair(at, {u"MUNITS", units, u"DUNITS", drawing, true});
}
