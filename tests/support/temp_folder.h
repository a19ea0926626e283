#pragma once

#include "platform/code_page.h"
#include "support/system.h"
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pm::test {

// A folder of its own for one test, removed with all that is in it.
class TempFolder {
public:
    TempFolder() : m_path(make_temp_folder()) {}
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    // The name of a file in the folder, as the library takes it.
    std::u16string wide(const std::string& name) const { return (m_path / name).u16string(); }

    std::u16string write(const std::string& name, std::string_view content) const {
        std::ofstream(m_path / name, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
        return wide(name);
    }
    std::string read(const std::string& name) const { return read_file(m_path / name); }

    static std::string read_file(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        if (!file) throw std::runtime_error("can't read " + path.string());
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};

} // namespace pm::test
