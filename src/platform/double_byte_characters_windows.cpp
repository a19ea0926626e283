#include "platform/double_byte_characters.h"

#include <windows.h>

namespace pm {

namespace {

constexpr char16_t replacement = u'\uFFFD';

class SystemCharacters final : public DoubleByteCharacters {
public:
    explicit SystemCharacters(unsigned code_page) : m_code_page(code_page) {}

    char16_t unit_of(unsigned char lead, unsigned char trail) override {
        const char bytes[] = {static_cast<char>(lead), static_cast<char>(trail)};
        wchar_t units[2] = {};
        const int count = MultiByteToWideChar(m_code_page, MB_ERR_INVALID_CHARS, bytes, 2, units, 2);
        return count == 1 ? static_cast<char16_t>(units[0]) : replacement;
    }

    std::uint16_t bytes_of(char16_t unit) override {
        const auto wide = static_cast<wchar_t>(unit);
        unsigned char bytes[2] = {};
        BOOL is_missing = FALSE;
        const int length = WideCharToMultiByte(m_code_page, WC_NO_BEST_FIT_CHARS, &wide, 1,
                                               reinterpret_cast<char*>(bytes), 2, nullptr, &is_missing);
        if (length == 0 || is_missing != FALSE) return 0;
        return static_cast<std::uint16_t>(length == 1 ? bytes[0] : bytes[0] << 8 | bytes[1]);
    }

private:
    unsigned m_code_page;
};

} // namespace

std::unique_ptr<DoubleByteCharacters> DoubleByteCharacters::open(unsigned code_page) {
    if (IsValidCodePage(code_page) == FALSE) return nullptr;
    return std::make_unique<SystemCharacters>(code_page);
}

} // namespace pm
