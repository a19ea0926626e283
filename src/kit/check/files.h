#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace pm::kit {

// Names are the bytes that the system knows a file by, UTF-8 where it has wide names.
[[nodiscard]] std::filesystem::path path_of_name(std::string_view name);
[[nodiscard]] std::string name_of_path(const std::filesystem::path& path);

// A file's content, or why there is none as a number of the library.
struct FileBytes {
    std::string bytes;
    std::uint32_t failure = 0;
};
[[nodiscard]] FileBytes read_bytes(std::string_view name);

// A file in the system's folder for such, for content that the library reads by name alone. Gone with this.
class ContentFile {
public:
    explicit ContentFile(std::string_view content);
    ~ContentFile();
    ContentFile(const ContentFile&) = delete;
    ContentFile& operator=(const ContentFile&) = delete;

    // Empty if it couldn't be written.
    [[nodiscard]] const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

} // namespace pm::kit
