#include "docs/outcome.h"

#include "support/recording_handler.h"
#include "support/tree_dump.h"
#include <charconv>
#include <cstdio>
#include <pm/exception.h>
#include <sstream>

namespace pm::test {

namespace {

std::string shortest(double value) {
    char text[40];
    const std::to_chars_result end = std::to_chars(std::begin(text), std::end(text), value);
    const std::string digits(std::begin(text), end.ptr);
    return digits.find_first_of(".en") == std::string::npos ? digits + ".0" : digits;
}

void append_unit(std::string& text, const char* format, unsigned value) {
    char escape[8];
    std::snprintf(escape, sizeof escape, format, value);
    text += escape;
}

bool is_surrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

bool is_pair(std::u16string_view text, std::size_t at) {
    return text[at] < 0xDC00 && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF;
}

// Text as a page shows it within a code span of a table.
std::string shown(std::u16string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (unit == u'\\') {
            result += "\\\\";
        } else if (unit < u' ' || unit == u'|' || unit == u'`' || (unit >= 0x7F && unit < 0xA0)) {
            append_unit(result, "\\x%02X", unit);
        } else if (is_surrogate(unit) && is_pair(text, at)) {
            result += utf8(text.substr(at++, 2));
        } else if (is_surrogate(unit) || (unit >= 0xE000 && unit < 0xF900)) {
            append_unit(result, "\\u%04X", unit);
        } else {
            result += utf8({&unit, 1});
        }
    }
    return result;
}

std::string shown_value(const TreeItem& item) {
    switch (item.type) {
    case PROP_DOUBLE:
        return shortest(item.as<double>());
    case PROP_STRING: {
        std::u16string units(item.bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(units.data(), item.bytes.data(), units.size() * sizeof(char16_t));
        const bool ended = !units.empty() && units.back() == u'\0';
        if (!ended) return std::to_string(units.size()) + " units without terminator";
        units.pop_back();
        return '"' + shown(units) + '"';
    }
    case PROP_VOID:
        return hex_text(item.bytes);
    default:
        return value_text(item);
    }
}

// A detail that tells a line is a line feed, its number and a comma.
std::string told_line(std::u16string_view detail) {
    if (detail.size() < 2 || detail[0] != u'\n' || detail[1] < u'0' || detail[1] > u'9') return "";
    const std::string text = utf8(detail.substr(1));
    return " at line " + text.substr(0, text.find(','));
}

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    return text.empty() ? "nothing" : text;
}

std::string path_text(const std::string& path) {
    return shown(to_wide(path, utf8_code_page));
}

} // namespace

std::vector<std::string> tree_lines(const PM_Object& object) {
    std::vector<std::string> lines;
    for (const TreeItem& item : tree_items(object)) {
        lines.push_back(path_text(item.path) + ": " + type_name(item.type) + " = " + shown_value(item));
    }
    return lines;
}

std::string shown_bytes(std::string_view bytes) {
    std::string result;
    for (const char byte : bytes) {
        if (byte == '\\') {
            result += "\\\\";
        } else if (byte == '\0') {
            result += "\\0";
        } else if (byte < ' ' || byte > '~' || byte == '|' || byte == '`') {
            append_unit(result, "\\x%02X", static_cast<unsigned char>(byte));
        } else {
            result += byte;
        }
    }
    return result;
}

std::string outcome_of(const std::function<void(PM_Object&)>& load) {
    RecordingHandler handler(1);
    PM_Object object(&handler);
    std::vector<std::string> stop;
    try {
        load(object);
    } catch (const ZT_Exception& e) {
        stop.push_back("stops with " + std::to_string(e.m_number) + told_line(e.m_detail));
    }
    std::vector<std::string> items;
    for (const std::string& line : tree_lines(object)) {
        items.push_back('`' + line + '`');
    }
    for (const Report& report : handler.reports) {
        items.push_back("reports " + std::to_string(report.number) + told_line(report.detail));
    }
    items.insert(items.end(), stop.begin(), stop.end());
    return joined(items);
}

std::string load_outcome(std::string_view bytes, PM_Object::FileType type) {
    return outcome_of([&](PM_Object& object) {
        std::stringstream stream{std::string(bytes)};
        object.load(stream, type, u"\\");
    });
}

} // namespace pm::test
