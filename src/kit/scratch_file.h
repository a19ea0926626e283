#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace pm::kit {

// The bytes of a file as the system knows it.
[[nodiscard]] std::filesystem::path system_path(std::string_view name);
// The whole file; Error if that fails.
[[nodiscard]] std::string read_bytes(const std::filesystem::path& file, const std::string& shown_name);

// A file for what the library reads and writes by name only. It lies alone in a new folder of the user's
// alone, in the system's folder for temporary files; both go with this.
class ScratchFile {
public:
    // Error if there is no place for it.
    ScratchFile();
    explicit ScratchFile(std::string_view content);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    // As the library takes it.
    [[nodiscard]] const std::u16string& name() const { return m_name; }
    [[nodiscard]] std::string content() const;

private:
    // Goes last, and also where what stands behind it can't be made. Takes no memory.
    struct Folder {
        explicit Folder(std::filesystem::path made) noexcept : path(std::move(made)) {}
        ~Folder();
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        std::filesystem::path path;
    };

    Folder m_folder;
    std::filesystem::path m_path;
    std::u16string m_name;
};

} // namespace pm::kit
