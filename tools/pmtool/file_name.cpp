#include "file_name.h"

#include "system.h"
#include "text.h"

namespace pmtool {

namespace {

// Where the extension begins; the end of the name if there is none. A name may begin with a point.
std::size_t extension_at(std::string_view name) {
    const std::size_t at = name.rfind('.');
    return at == std::string_view::npos || at == 0 ? name.size() : at;
}

} // namespace

std::string_view base_name(std::string_view file) {
    const std::size_t at = file.find_last_of(folder_separators());
    return at == std::string_view::npos ? file : file.substr(at + 1);
}

std::string extension_of(std::string_view file) {
    const std::string_view name = base_name(file);
    return lower_case(name.substr(extension_at(name)));
}

std::string stem_of(std::string_view file) {
    const std::string_view name = base_name(file);
    return std::string(name.substr(0, extension_at(name)));
}

} // namespace pmtool
