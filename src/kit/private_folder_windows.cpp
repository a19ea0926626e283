#include "private_folder.h"

#include <fmt/format.h>
#include <random>
#include <system_error>

namespace pm::kit {

namespace fs = std::filesystem;

// The folder for temporary files is the user's own here, and gives what is made in it its rights.
fs::path make_private_folder() {
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    std::random_device random;
    constexpr int tries = 8;
    for (int i = 0; i < tries && !error; ++i) {
        fs::path folder = place / fmt::format("pm9-{:08x}{:08x}", random(), random());
        if (fs::create_directory(folder, error)) return folder;
    }
    return {};
}

} // namespace pm::kit
