#include "legacy/pmpc2.h"

#include "base/allocator.h"
#include "base/text.h"
#include "legacy/text_line.h"
#include "store/tree_cursor.h"
#include "store/value_text.h"
#include <cstring>
#include <map>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/value_text.h>

namespace {

constexpr const char16_t* source = u"$Workfile: pmpc2 $ $Revision: #1 $";
constexpr const char16_t* load_place = u"PM_PC2File::load()";
constexpr const char16_t* version_place = u"PM_PC2File::getVersion()";
constexpr const char16_t* section_place = u"PM_CFGFile::load_section()";

constexpr std::size_t version_units = 512;
constexpr std::size_t section_limit = 512;

// Kept: the "-" may stand anywhere in the path, the base included.
void replace_first_dash(std::u16string& path) {
    const std::size_t dash = path.find(u'-');
    if (dash != std::u16string::npos) path[dash] = u'_';
}

// The plotter that a section is for; nothing for a section of all plotters.
std::optional<std::int32_t> plotter_of(std::u16string_view name) {
    const std::size_t mark = name.find(u'#');
    if (mark == std::u16string_view::npos) return std::nullopt;
    return pm::scan_long(name.substr(mark + 1));
}

// The section that a name of a file stands for: without "#" and number if that is the plotter asked for.
std::u16string section_of(std::u16string_view name, std::optional<std::int32_t> plotter) {
    if (!plotter || plotter_of(name) != plotter) return std::u16string(name);
    std::u16string section(name.substr(0, name.find(u'#')));
    const std::size_t slash = name.find(u'/');
    if (slash != std::u16string_view::npos) section += name.substr(slash);
    return section;
}

// What a section line names; empty for a name that is none, or too long.
std::u16string_view section_name(std::u16string_view line) {
    const std::u16string_view rest = line.substr(1);
    const std::u16string_view name = rest.substr(0, rest.find(u']'));
    return name.size() <= section_limit ? name : std::u16string_view();
}

std::u16string unquoted(std::u16string_view value) {
    if (value.size() >= 2 && value.front() == u'"' && value.back() == u'"') {
        value = value.substr(1, value.size() - 2);
    }
    return std::u16string(value);
}

// Gathers the plotters of a file from its lines, bad ones apart.
class PlotterList {
public:
    void take_line(std::u16string_view line) {
        const std::size_t equals = line.find(u'=');
        if (equals != std::u16string_view::npos) {
            take_key(line, equals);
        } else if (line.find(u'[') != std::u16string_view::npos) {
            take_section(section_name(line));
        }
    }
    std::vector<pm::CfgPlotter> plotters() const {
        std::vector<pm::CfgPlotter> all;
        all.reserve(m_names.size());
        for (const auto& [number, name] : m_names) {
            all.push_back({number, name});
        }
        return all;
    }

private:
    void take_section(std::u16string_view name) {
        if (name.empty()) return; // the section before goes on
        m_current = plotter_of(name);
        m_section = section_of(name, m_current);
        if (m_current) m_names.try_emplace(*m_current);
    }
    void take_key(std::u16string_view line, std::size_t equals) {
        if (!m_current || !pm::equals_ignoring_case(m_section, u"Plotter/Device") ||
            !pm::equals_ignoring_case(line.substr(0, equals), u"MenuName")) {
            return;
        }
        const std::u16string_view value = pm::skip_any(line.substr(equals), u" =");
        if (!value.empty()) m_names[*m_current] = unquoted(value);
    }

    std::map<std::int32_t, std::u16string> m_names;
    std::optional<std::int32_t> m_current;
    std::u16string m_section;
};

// A base in which every key has room.
constexpr std::size_t short_base = 512;

struct DefaultValue {
    unsigned char bytes[sizeof(double)] = {};
    std::size_t size = 0;

    explicit DefaultValue(const pm::Pc2Key& key) {
        const std::int32_t number = key.initial;
        const double real = key.initial;
        switch (key.type) {
        case PROP_LONG:
            std::memcpy(bytes, &number, size = sizeof number);
            break;
        case PROP_DOUBLE:
            std::memcpy(bytes, &real, size = sizeof real);
            break;
        case PROP_STRING:
            size = sizeof(char16_t);
            break;
        default:
            size = 1;
        }
    }
};

// Gives each key that has a default, with its name, which has a number if it is an indexed key.
template<class Action>
void for_each_default(Action action) {
    std::u16string name;
    for (const pm::Pc2Key& key : pm::pc2_keys()) {
        if (key.type == PROP_NONE) continue;
        const DefaultValue value(key);
        if (!key.indexed()) {
            action(key, key.name(), value);
            continue;
        }
        name = key.name();
        const std::size_t length = name.size();
        for (std::int32_t index = key.first; index <= key.last; ++index) {
            name.resize(length);
            pm::append_decimal(name, index);
            action(key, std::u16string_view(name), value);
        }
    }
}

// From the section of one key, or from the base, to that of the next.
void enter_section(pm::TreeCursor& place, const pm::Pc2Key* last, const pm::Pc2Key& key) {
    if (last != nullptr && last->section() == key.section()) return;
    if (last != nullptr) place.pop();
    place.push(key.section());
}

} // namespace

void PM_PC2File::require_stream(const char16_t* place) const {
    pm::require_text_stream(m_stream, place, file_name(), source);
}

void PM_PC2File::report_bad_line(std::u16string_view line) {
    report_bad_line(line, PM_ERR_BAD_LINE);
}

void PM_PC2File::report_bad_line(std::u16string_view line, std::uint32_t number) {
    report(PM_Warning(number, load_place, format_line_context(line).c_str(), source));
}

void PM_PC2File::getVersion(char16_t* buffer, std::size_t size) {
    require_stream(version_place);
    rewind_reader();
    pm::TextLine line;
    do {
        pm::read_text_line(m_reader, line);
        pm::check_text_stream(*m_stream, version_place, file_name(), source);
    } while (line.empty_or_comment() && !line.last);

    if (line.empty_or_comment()) {
        report(PM_Error(PM_ERR_BAD_LINE, version_place, (u"\n" + m_filename).c_str(), source));
    } else if (line.too_long) {
        report(PM_Error(PM_ERR_BAD_LINE, version_place, format_line_context(line.text).c_str(), source));
    } else if (!line.text.starts_with(version_start)) {
        report(PM_Error(PM_ERR_UNKNOWN_VERSION, version_place, file_name(), source));
    } else {
        copy_version(line.text, buffer, size);
    }
}

PM_PC2File::Reading PM_PC2File::begin(PM_Object& target, const char16_t* base,
                                      std::optional<std::int32_t> plotter) {
    std::u16string path(pm::view(base));
    if (!path.ends_with(u'\\')) path += u'\\';
    const std::size_t length = path.size();
    return {target, plotter, std::move(path), length, {}};
}

void PM_PC2File::load(PM_Object* target, const char16_t* base, PM_Object::FileType type) {
    m_file_type = type;
    Reading reading = begin(*target, base, std::nullopt);
    char16_t version[version_units] = {};
    getVersion(version, version_units);
    set_defaults(*target, reading.path);
    load_lines(reading, load_place);
}

void PM_CFGFile::load_section(PM_Object* target, const char16_t* base, std::int32_t n) {
    Reading reading = begin(*target, base, n);
    set_defaults(*target, reading.path);
    require_stream(section_place);
    m_reader.attach(*m_stream);
    load_lines(reading, section_place);
}

void PM_PC2File::set_defaults(PM_Object& target, std::u16string_view base) {
    if (base.size() > short_base || base.find(u'-') != std::u16string_view::npos) {
        for_each_default([&](const pm::Pc2Key& key, std::u16string_view name, const DefaultValue& value) {
            std::u16string path(base);
            path.append(key.section()).append(u"\\").append(name);
            if (key.type == PROP_STRING && !key.indexed()) replace_first_dash(path);
            set_data(target, path.c_str(), value.bytes, value.size, key.type);
        });
        return;
    }
    pm::TreeCursor place(target, base);
    const pm::Pc2Key* last = nullptr;
    for_each_default([&](const pm::Pc2Key& key, std::u16string_view name, const DefaultValue& value) {
        if (last != &key) {
            enter_section(place, last, key);
            last = &key;
        }
        if (key.type == PROP_STRING && !key.indexed() && name.find(u'-') != name.npos) {
            std::u16string stored(name);
            replace_first_dash(stored);
            place.set_data({stored, true}, value.bytes, value.size, key.type);
        } else {
            place.set_data({name, true}, value.bytes, value.size, key.type);
        }
    });
}

void PM_PC2File::load_lines(Reading& reading, const char16_t* place) {
    pm::TextLine line;
    for (bool more = !m_stream->eof(); more; more = !line.last) {
        ++m_line_number;
        pm::read_text_line(m_reader, line);
        pm::check_text_stream(*m_stream, place, file_name(), source);
        if (line.too_long) {
            report_bad_line(line.text);
        } else if (!line.empty_or_comment()) {
            load_line(reading, line.text);
        }
    }
}

void PM_PC2File::load_line(Reading& reading, std::u16string_view line) {
    const std::size_t equals = line.find(u'=');
    if (equals != std::u16string_view::npos) {
        key_line(reading, line, equals);
    } else if (line.find(u'[') != std::u16string_view::npos) {
        section_line(reading, line);
    } else {
        report_bad_line(line);
    }
}

void PM_PC2File::section_line(Reading& reading, std::u16string_view line) {
    const std::u16string_view name = section_name(line);
    if (name.empty()) {
        report_bad_line(line);
    } else {
        reading.section = section_of(name, reading.plotter);
    }
}

void PM_PC2File::key_line(Reading& reading, std::u16string_view line, std::size_t equals) {
    std::u16string& path = reading.path;
    path.resize(reading.base_length);
    path += reading.section;
    path += u'\\';
    path += line.substr(0, equals);
    const pm::Pc2Key* key = pm::find_pc2_key(std::u16string_view(path).substr(reading.base_length));
    if (key == nullptr) return;

    const std::u16string_view value = pm::skip_any(line.substr(equals), u" =");
    if (value.empty() || path.size() > pm::WorkingPath::capacity) {
        report_bad_line(line);
    } else if (!set_value(reading, *key, value)) {
        report_bad_line(line, scans_hexadecimal(reading, *key) ? PM_ERR_NOT_HEXADECIMAL : PM_ERR_BAD_LINE);
    }
}

// Only a file of one plotter has hexadecimal values.
bool PM_PC2File::scans_hexadecimal(const Reading& reading, const pm::Pc2Key& key) {
    return key.hexadecimal && !reading.plotter;
}

bool PM_PC2File::set_value(const Reading& reading, const pm::Pc2Key& key, std::u16string_view value) {
    switch (key.type) {
    case PROP_LONG:
        return set_long_value(reading, value, scans_hexadecimal(reading, key));
    case PROP_DOUBLE:
        return set_double_value(reading, value);
    case PROP_STRING:
        set_string_value(reading, value);
        return true;
    case PROP_VOID:
        return set_raw_value(reading, value);
    default:
        return false;
    }
}

bool PM_PC2File::set_long_value(const Reading& reading, std::u16string_view value, bool hexadecimal) {
    const pm::ScannedLong number = hexadecimal ? pm::scan_hexadecimal_at(value) : pm::scan_long_at(value, 0);
    if (number.length == 0) return false;
    set_long(reading.target, reading.path.c_str(), number.value);
    return true;
}

bool PM_PC2File::set_double_value(const Reading& reading, std::u16string_view value) {
    double number = 0;
    if (!pm::parse_double(value, number)) return false;
    set_double(reading.target, reading.path.c_str(), number);
    return true;
}

void PM_PC2File::set_string_value(const Reading& reading, std::u16string_view value) {
    std::u16string path = reading.path;
    replace_first_dash(path);
    set_string(reading.target, path.c_str(), unquoted(value).c_str());
}

bool PM_PC2File::set_raw_value(const Reading& reading, std::u16string_view value) {
    char* bytes = nullptr;
    unsigned size = 0;
    if (stringtobinary(unquoted(value).c_str(), &bytes, &size) == 0) return false;
    const pm::Block<char> owned(bytes);
    set_data(reading.target, reading.path.c_str(), bytes, size, PROP_VOID);
    return true;
}

std::vector<pm::CfgPlotter> PM_CFGFile::list_plotters() {
    require_stream(section_place);
    m_reader.attach(*m_stream);
    PlotterList list;
    pm::TextLine line;
    for (bool more = !m_stream->eof(); more; more = !line.last) {
        pm::read_text_line(m_reader, line);
        pm::check_text_stream(*m_stream, section_place, file_name(), source);
        if (!line.too_long && !line.empty_or_comment()) list.take_line(line.text);
    }
    return list.plotters();
}
