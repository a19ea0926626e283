#include "private_folder.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace pm::kit {

std::filesystem::path make_private_folder() {
    std::error_code error;
    const std::filesystem::path place = std::filesystem::temp_directory_path(error);
    if (error) return {};
    // Rights that came later would leave others a moment to put something of theirs inside.
    std::string name = (place / "pm9-XXXXXX").native();
    if (mkdtemp(name.data()) == nullptr) return {};
    return name;
}

} // namespace pm::kit
