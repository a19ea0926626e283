#include <algorithm>
#include <pm/kit/file.h>

namespace pm::kit {

namespace {

struct Format {
    PM_Object::FileType type;
    std::string_view name;
    bool written;
};

constexpr Format formats[] = {
    {PM_Object::FILE_PIA, "pia", true},  {PM_Object::FILE_DPIA, "dpia", true},
    {PM_Object::FILE_DOC, "doc", true},  {PM_Object::FILE_PC2, "pc2", false},
    {PM_Object::FILE_CFG, "cfg", false}, {PM_Object::FILE_PCP, "pcp", false},
    {PM_Object::FILE_PDT, "pdt", false},
};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

const Format* find_format(PM_Object::FileType type) {
    const auto* const found = std::ranges::find(formats, type, &Format::type);
    return found != std::ranges::end(formats) ? found : nullptr;
}

} // namespace

std::string_view format_name(PM_Object::FileType type) noexcept {
    const Format* const format = find_format(type);
    return format != nullptr ? format->name : "unknown";
}

std::optional<PM_Object::FileType> format_named(std::string_view name) noexcept {
    for (const Format& format : formats) {
        if (std::ranges::equal(name, format.name, {}, lower)) return format.type;
    }
    return std::nullopt;
}

bool is_written(PM_Object::FileType type) noexcept {
    const Format* const format = find_format(type);
    return format != nullptr && format->written;
}

} // namespace pm::kit
