#include "platform/double_byte_characters.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <unicode/ucnv.h>
#include <utility>

namespace pm {

namespace {

constexpr char16_t replacement = u'\uFFFD';

struct ConverterName {
    unsigned code_page;
    const char* name;
};

// Windows numbers and ICU's names for the same tables.
constexpr ConverterName converter_names[] = {
    {932, "ibm-943_P15A-2003"}, {936, "windows-936"}, {949, "windows-949"}, {950, "windows-950"}};

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

class IcuCharacters final : public DoubleByteCharacters {
public:
    explicit IcuCharacters(Converter converter) : m_converter(std::move(converter)) {}

    char16_t unit_of(unsigned char lead, unsigned char trail) override {
        const char bytes[] = {static_cast<char>(lead), static_cast<char>(trail)};
        const char* at = bytes;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_resetToUnicode(m_converter.get());
        const UChar32 code = ucnv_getNextUChar(m_converter.get(), &at, std::end(bytes), &status);
        return U_SUCCESS(status) && at == std::end(bytes) ? static_cast<char16_t>(code) : replacement;
    }

    std::uint16_t bytes_of(char16_t unit) override {
        unsigned char bytes[2] = {};
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = ucnv_fromUChars(m_converter.get(), reinterpret_cast<char*>(bytes),
                                                    sizeof bytes, &unit, 1, &status);
        if (U_FAILURE(status) || length == 0) return 0;
        return static_cast<std::uint16_t>(length == 1 ? bytes[0] : bytes[0] << 8 | bytes[1]);
    }

private:
    Converter m_converter;
};

} // namespace

std::unique_ptr<DoubleByteCharacters> DoubleByteCharacters::open(unsigned code_page) {
    const auto* row =
        std::find_if(std::begin(converter_names), std::end(converter_names),
                     [code_page](const ConverterName& each) { return each.code_page == code_page; });
    if (row == std::end(converter_names)) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(row->name, &status));
    // Errors are told, nothing is put in their place.
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status)) return nullptr;
    return std::make_unique<IcuCharacters>(std::move(converter));
}

} // namespace pm
