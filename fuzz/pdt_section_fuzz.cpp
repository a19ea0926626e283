// First byte: the number of a table of a device description. The rest: that table. All other tables have
// their headings only, so that what the table refers to isn't there.

#include "cost.h"
#include "fuzz_support.h"
#include "pdt/section_reader.h"
#include <filesystem>
#include <fstream>
#include <functional>
#include <pm/pm.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

// One folder for the whole run, removed at its end.
class Folder {
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / ("pdt_fuzz_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_path);
        write("strings.pdt", "DRFX_MEDIA_SIZE_C3 \"size\"\n");
        for (int section = 0; section < pm::section_count; ++section) {
            write(file_of(section), headings);
        }
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    static constexpr std::string_view headings = "first\nsecond\n";

    static std::string file_of(int section) {
        const std::u16string_view name = pm::section_name(static_cast<pm::Section>(section));
        return std::string(name.begin(), name.end()) + ".pdt";
    }
    void write(const std::string& file, std::string_view content) const {
        std::filesystem::remove(m_path / file); // a new file is made faster than an old one is cut
        std::ofstream(m_path / file, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    std::u16string string_file() const { return (m_path / "strings.pdt").u16string(); }

private:
    std::filesystem::path m_path;
};

void read_fields(std::string_view content) {
    pm::RowLine line;
    line.assign(std::u16string(content.begin(), content.end()));
    std::size_t position = 0;
    const std::less_equal<> not_behind;
    for (int field = 0; field < 3000; ++field) {
        char16_t* const text = line.next_field(position);
        pm::fuzz::require(position < pm::RowLine::capacity && not_behind(line.data(), text));
        const char16_t* const end = text + std::u16string_view(text).size();
        pm::fuzz::require(not_behind(end, line.data() + pm::RowLine::capacity - 1));
        pm::normalize_name(text);
    }
}

void load(const Folder& folder, std::size_t size) {
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    PM_Object object;
    try {
        object.load(folder.string_file().c_str(), PM_Object::FILE_PDT, u"\\");
    } catch (const PM_Severe& e) {
        pm::fuzz::require(e.m_number == PM_ERR_NOT_OPENED);
    } catch (const PM_Warning& e) {
        pm::fuzz::require(e.m_number == PM_ERR_BAD_PATH || e.m_number == PM_ERR_WRONG_TYPE);
    }
    bound.require_held();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    if (size == 0) return 0;
    const std::string_view content(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string file = Folder::file_of(data[0] % pm::section_count);
    read_fields(content);
    folder.write(file, content);
    load(folder, size);
    folder.write(file, Folder::headings);
    return 0;
}
