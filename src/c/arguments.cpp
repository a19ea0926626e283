#include "arguments.h"

#include <pm/text.h>

namespace pm::c {

std::string_view text(const char* data, std::size_t length) noexcept {
    if (data == nullptr) return {};
    return length == PM9_Z ? std::string_view(data) : std::string_view(data, length);
}

std::u16string wide_text(const char* data, std::size_t length) {
    std::u16string wide = to_utf16(text(data, length));
    if (wide.find(u'\0') != std::u16string::npos) refuse(wide.c_str(), PM_ERR_BAD_PATH);
    return wide;
}

std::u16string file_name(const char* data, std::size_t length) {
    std::u16string wide = file_name_to_utf16(text(data, length));
    if (wide.find(u'\0') != std::u16string::npos) refuse(wide.c_str(), PM_ERR_BAD_PATH);
    return wide;
}

std::string_view kit_file_name(const char* data, std::size_t length) {
    const std::string_view name = text(data, length);
    const std::size_t zero = name.find('\0');
    if (zero != std::string_view::npos) {
        refuse(file_name_to_utf16(name.substr(0, zero)).c_str(), PM_ERR_BAD_PATH);
    }
    return name;
}

std::optional<int> owner(std::int32_t number) {
    constexpr std::int32_t last = 3;
    if (number == -1) return std::nullopt;
    if (number < 0 || number > last) refuse(u"owner", PM_ERR_INVALID_ARGUMENT);
    return number;
}

std::optional<PM_Object::FileType> file_type(std::int32_t type) {
    if (type == PM9_FILE_ANY) return std::nullopt;
    if (type < PM9_FILE_PIA || type > PM9_FILE_CFG) refuse(u"type", PM_ERR_INVALID_ARGUMENT);
    return static_cast<PM_Object::FileType>(type);
}

} // namespace pm::c
