#include "platform/code_page.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <span>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <utility>
#include <vector>

namespace pm {

namespace {

constexpr unsigned initial_code_page = 1252;
constexpr char16_t replacement = u'\uFFFD';

std::atomic<unsigned> current_code_page{initial_code_page};

struct ConverterName {
    unsigned number;
    const char* name;
};

// Windows numbers and ICU's names for the same tables.
constexpr ConverterName converter_names[] = {
    {437, "ibm-437"},       {720, "ibm-720"},       {737, "ibm-737"},           {775, "ibm-775"},
    {850, "ibm-850"},       {852, "ibm-852"},       {855, "ibm-855"},           {857, "ibm-857"},
    {858, "ibm-858"},       {860, "ibm-860"},       {861, "ibm-861"},           {862, "ibm-862"},
    {863, "ibm-863"},       {864, "ibm-864"},       {865, "ibm-865"},           {866, "ibm-866"},
    {869, "ibm-869"},       {874, "windows-874"},   {932, "ibm-943_P15A-2003"}, {936, "windows-936"},
    {949, "windows-949"},   {950, "windows-950"},   {1250, "windows-1250"},     {1251, "windows-1251"},
    {1252, "windows-1252"}, {1253, "windows-1253"}, {1254, "windows-1254"},     {1255, "windows-1255"},
    {1256, "windows-1256"}, {1257, "windows-1257"}, {1258, "windows-1258"},     {20127, "us-ascii"},
    {20866, "koi8-r"},      {21866, "koi8-u"},      {28591, "iso-8859-1"},      {28592, "iso-8859-2"},
    {28593, "iso-8859-3"},  {28594, "iso-8859-4"},  {28595, "iso-8859-5"},      {28596, "iso-8859-6"},
    {28597, "iso-8859-7"},  {28598, "iso-8859-8"},  {28599, "iso-8859-9"},      {28603, "iso-8859-13"},
    {28605, "iso-8859-15"},
};

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

Converter open_converter(unsigned number) {
    const auto* row = std::find_if(std::begin(converter_names), std::end(converter_names),
                                   [number](const ConverterName& each) { return each.number == number; });
    if (row == std::end(converter_names)) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(row->name, &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

// What ICU takes a byte for that stands alone.
char16_t decode_byte(UConverter* converter, unsigned byte) {
    const char narrow = static_cast<char>(byte);
    const char* source = &narrow;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(converter);
    const UChar32 unit = ucnv_getNextUChar(converter, &source, source + 1, &status);
    return U_SUCCESS(status) && unit <= 0xFFFF ? static_cast<char16_t>(unit) : replacement;
}

// A page of one byte a character, kept as two tables: no converter is used after construction.
class SingleBytePage final : public CodePage {
public:
    SingleBytePage(unsigned number, UConverter* converter) : CodePage(number) {
        for (unsigned byte = 0; byte < m_wide.size(); ++byte) {
            m_wide[byte] = meaning(converter, byte);
        }
        for (unsigned byte = 0x80; byte < m_wide.size(); ++byte) {
            if (m_wide[byte] != replacement) m_bytes.emplace_back(m_wide[byte], static_cast<char>(byte));
        }
        std::sort(m_bytes.begin(), m_bytes.end());
    }

    std::size_t character_length(const char*) const override { return 1; }

private:
    static char16_t meaning(UConverter* converter, unsigned byte) {
        if (byte < 0x80) return static_cast<char16_t>(byte);
        const char16_t unit = decode_byte(converter, byte);
        return unit == replacement && byte < 0xA0 ? static_cast<char16_t>(byte) : unit;
    }

    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        const std::size_t start = wide.size();
        wide.resize(start + narrow.size());
        std::transform(narrow.begin(), narrow.end(), wide.begin() + static_cast<std::ptrdiff_t>(start),
                       [this](char byte) { return m_wide[static_cast<unsigned char>(byte)]; });
    }

    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        const std::size_t start = narrow.size();
        narrow.resize(start + wide.size());
        std::transform(wide.begin(), wide.end(), narrow.begin() + static_cast<std::ptrdiff_t>(start),
                       [this](char16_t unit) { return encode_unit(unit); });
    }

    char encode_unit(char16_t unit) const {
        if (unit < 0x80) return static_cast<char>(unit);
        const auto found = std::lower_bound(m_bytes.begin(), m_bytes.end(), std::pair(unit, '\x80'),
                                            [](const auto& a, const auto& b) { return a.first < b.first; });
        return found != m_bytes.end() && found->first == unit ? found->second : '?';
    }

    std::array<char16_t, 256> m_wide{};
    std::vector<std::pair<char16_t, char>> m_bytes;
};

class Utf8Page final : public CodePage {
public:
    Utf8Page() : CodePage(utf8_code_page) {}

    std::size_t character_length(const char* text) const override {
        const auto lead = static_cast<unsigned char>(text[0]);
        const std::size_t told = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
        std::size_t length = 1;
        while (length < told && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
            ++length;
        }
        return length;
    }

private:
    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        const std::size_t start = wide.size();
        wide.resize(start + narrow.size());
        std::int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8WithSub(wide.data() + start, static_cast<std::int32_t>(narrow.size()), &length,
                             narrow.data(), static_cast<std::int32_t>(narrow.size()), replacement, nullptr,
                             &status);
        wide.resize(start + static_cast<std::size_t>(U_SUCCESS(status) ? length : 0));
    }

    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        const std::size_t start = narrow.size();
        narrow.resize(start + 3 * wide.size());
        std::int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(narrow.data() + start, static_cast<std::int32_t>(3 * wide.size()), &length,
                           wide.data(), static_cast<std::int32_t>(wide.size()), '?', nullptr, &status);
        narrow.resize(start + static_cast<std::size_t>(U_SUCCESS(status) ? length : 0));
    }
};

void U_CALLCONV write_question_marks(const void*, UConverterFromUnicodeArgs* arguments, const UChar*,
                                     int32_t length, UChar32, UConverterCallbackReason reason,
                                     UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    for (int32_t unit = 0; unit < length; ++unit) {
        ucnv_cbFromUWriteBytes(arguments, "?", 1, 0, status);
    }
}

// The one that ICU sets writes U+001A for some bytes.
void U_CALLCONV write_replacement(const void*, UConverterToUnicodeArgs* arguments, const char*, int32_t,
                                  UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &replacement, 1, 0, status);
}

// A page of one or two bytes a character.
class MultiBytePage final : public CodePage {
public:
    MultiBytePage(unsigned number, Converter converter)
        : CodePage(number), m_converter(std::move(converter)) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setFromUCallBack(m_converter.get(), write_question_marks, nullptr, nullptr, nullptr, &status);
        ucnv_setToUCallBack(m_converter.get(), write_replacement, nullptr, nullptr, nullptr, &status);
        ucnv_getStarters(m_converter.get(), m_lead_bytes.data(), &status);
        learn_ascii();
    }

    std::size_t character_length(const char* text) const override {
        return m_lead_bytes[static_cast<unsigned char>(text[0])] != 0 && text[1] != '\0' ? 2 : 1;
    }

private:
    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        const std::size_t start = wide.size();
        wide.resize(start + 2 * narrow.size());
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = ucnv_toUChars(m_converter.get(), wide.data() + start,
                                                  static_cast<std::int32_t>(2 * narrow.size()), narrow.data(),
                                                  static_cast<std::int32_t>(narrow.size()), &status);
        wide.resize(start + static_cast<std::size_t>(U_SUCCESS(status) ? length : 0));
        put_ascii_back(wide, start, m_byte_of);
    }

    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        const std::size_t start = narrow.size();
        const std::size_t room = 4 * wide.size();
        narrow.resize(start + room);
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            ucnv_fromUChars(m_converter.get(), narrow.data() + start, static_cast<std::int32_t>(room),
                            wide.data(), static_cast<std::int32_t>(wide.size()), &status);
        narrow.resize(start + static_cast<std::size_t>(U_SUCCESS(status) ? length : 0));
        put_ascii_back(narrow, start, m_unit_of);
    }

    using AsciiTable = std::array<unsigned char, 0x80>;

    // ICU's table of 932 is of IBM's kind, which trades the controls 1A, 1C and 7F for one another. None of
    // them is ever the second byte of a character.
    void learn_ascii() {
        for (unsigned byte = 0; byte < m_unit_of.size(); ++byte) {
            const auto unit = static_cast<unsigned char>(decode_byte(m_converter.get(), byte) & 0x7F);
            m_unit_of[byte] = unit;
            m_byte_of[unit] = static_cast<unsigned char>(byte);
            m_ascii_moves = m_ascii_moves || unit != byte;
        }
    }

    template<class Text>
    void put_ascii_back(Text& text, std::size_t start, const AsciiTable& table) const {
        if (!m_ascii_moves) return;
        for (auto& unit : std::span(text).subspan(start)) {
            const auto code = static_cast<std::make_unsigned_t<typename Text::value_type>>(unit);
            if (code < table.size()) unit = static_cast<typename Text::value_type>(table[code]);
        }
    }

    Converter m_converter;
    std::array<UBool, 256> m_lead_bytes{};
    AsciiTable m_unit_of{}; // what ICU takes an ASCII byte for, and the other way about
    AsciiTable m_byte_of{};
    bool m_ascii_moves = false;
};

std::unique_ptr<CodePage> make_code_page(unsigned number) {
    if (number == utf8_code_page) return std::make_unique<Utf8Page>();
    Converter converter = open_converter(number);
    if (!converter) return nullptr;
    if (ucnv_getMaxCharSize(converter.get()) == 1) {
        return std::make_unique<SingleBytePage>(number, converter.get());
    }
    return std::make_unique<MultiBytePage>(number, std::move(converter));
}

// Converters keep state, so each thread has its own.
const CodePage* find_code_page(unsigned number) {
    thread_local std::vector<std::unique_ptr<CodePage>> pages;
    for (const auto& page : pages) {
        if (page->number() == number) return page.get();
    }
    auto page = make_code_page(number);
    return page ? pages.emplace_back(std::move(page)).get() : nullptr;
}

template<class Text>
std::size_t ascii_prefix(Text text) {
    const auto end = std::find_if(text.begin(), text.end(), [](auto unit) {
        return static_cast<std::make_unsigned_t<decltype(unit)>>(unit) >= 0x80;
    });
    return static_cast<std::size_t>(end - text.begin());
}

} // namespace

void CodePage::decode(std::string_view narrow, std::u16string& wide) const {
    const std::size_t ascii = ascii_prefix(narrow);
    wide.append(narrow.begin(), narrow.begin() + static_cast<std::ptrdiff_t>(ascii));
    if (ascii < narrow.size()) decode_rest(narrow.substr(ascii), wide);
}

void CodePage::encode(std::u16string_view wide, std::string& narrow) const {
    const std::size_t ascii = ascii_prefix(wide);
    const std::size_t start = narrow.size();
    narrow.resize(start + ascii);
    std::transform(wide.begin(), wide.begin() + static_cast<std::ptrdiff_t>(ascii),
                   narrow.begin() + static_cast<std::ptrdiff_t>(start),
                   [](char16_t unit) { return static_cast<char>(unit); });
    if (ascii < wide.size()) encode_rest(wide.substr(ascii), narrow);
}

const CodePage& code_page(unsigned number) {
    const unsigned wanted = number == default_code_page ? system_code_page() : number;
    const CodePage* page = find_code_page(wanted);
    return page ? *page : *find_code_page(system_code_page());
}

bool code_page_known(unsigned number) {
    return number == default_code_page || find_code_page(number) != nullptr;
}

unsigned system_code_page() {
    return current_code_page;
}

void set_system_code_page(unsigned number) {
    current_code_page = number == default_code_page ? initial_code_page : number;
}

std::u16string to_wide(std::string_view narrow, unsigned code_page_number) {
    std::u16string wide;
    code_page(code_page_number).decode(narrow, wide);
    return wide;
}

std::string to_narrow(std::u16string_view wide, unsigned code_page_number) {
    std::string narrow;
    code_page(code_page_number).encode(wide, narrow);
    return narrow;
}

} // namespace pm
