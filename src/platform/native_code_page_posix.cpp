#include "platform/native_code_page.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <langinfo.h>
#include <locale.h>
#include <string>

namespace pm {

namespace {

struct Codeset {
    std::string_view name; // in lower case, letters and digits only
    unsigned code_page;
};

constexpr Codeset codesets[] = {
    {"utf8", 65001},     {"iso88591", 28591},  {"iso88592", 28592},  {"iso88593", 28593}, {"iso88594", 28594},
    {"iso88595", 28595}, {"iso88596", 28596},  {"iso88597", 28597},  {"iso88598", 28598}, {"iso88599", 28599},
    {"iso885911", 874},  {"iso885913", 28603}, {"iso885915", 28605}, {"tis620", 874},     {"koi8r", 20866},
    {"koi8u", 21866},    {"shiftjis", 932},    {"sjis", 932},        {"windows31j", 932}, {"gbk", 936},
    {"gb2312", 936},     {"euccn", 936},       {"uhc", 949},         {"euckr", 949},      {"big5", 950},
};

std::string letters_and_digits(std::string_view name) {
    std::string kept;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') kept += static_cast<char>(c - 'A' + 'a');
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) kept += c;
    }
    return kept;
}

// "cp1251", "windows1251", "ibm437": pages that are called by their numbers.
unsigned number_behind_prefix(std::string_view name) {
    unsigned number = 0;
    for (const std::string_view prefix : {"cp", "windows", "ibm"}) {
        if (!name.starts_with(prefix)) continue;
        std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
    }
    return number;
}

// The locale that the environment tells for characters.
std::string locale_of_environment() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

std::string codeset_of(const std::string& locale_name) {
    const locale_t locale = newlocale(LC_CTYPE_MASK, locale_name.c_str(), nullptr);
    if (locale == nullptr) { // not installed: what stands behind the point, as in "de_DE.UTF-8@euro"
        const std::size_t point = std::min(locale_name.find('.'), locale_name.size());
        return locale_name.substr(point, locale_name.find('@') - point);
    }
    std::string codeset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return codeset;
}

} // namespace

unsigned native_code_page() {
    const std::string codeset = letters_and_digits(codeset_of(locale_of_environment()));
    const auto* row = std::find_if(std::begin(codesets), std::end(codesets),
                                   [&codeset](const Codeset& each) { return each.name == codeset; });
    return row != std::end(codesets) ? row->code_page : number_behind_prefix(codeset);
}

} // namespace pm
