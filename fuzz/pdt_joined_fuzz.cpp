// First byte: a table of a device description, modulo their number, by its number; from 240 on it is loaded
// to a base with a "*". The rest: its file. A form feed ends the file and begins that of the next table. All
// other tables have their headings only. Its version is read too.

#include "cost.h"
#include "fuzz_support.h"
#include "pdt/pmpdt.h"
#include "pdt/section_reader.h"
#include "platform/code_page.h"
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <pm/pm.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using pm::fuzz::require;

// A description in a folder of its own, gone with the process.
class Description {
public:
    Description() {
        std::string name = (fs::temp_directory_path() / "pdt_fuzz_XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_folder = name;
        m_strings = m_folder / "strings.pdt";
        write(m_strings, "DRFX_MEDIA_SIZE_C3 \"size\"\nDRFX_RESOLUTION_B4 \"resolution\"\n");
        for (int section = 0; section < pm::section_count; ++section) {
            reset(section);
        }
    }
    ~Description() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;

    std::u16string string_file() const { return m_strings.u16string(); }
    void set(int section, std::string_view content) { write(file_of(section), content); }
    void reset(int section) { set(section, "heading\nheading\n"); }

private:
    fs::path file_of(int section) const {
        return m_folder / (pm::to_narrow(pm::section_name(static_cast<pm::Section>(section))) + ".pdt");
    }
    static void write(const fs::path& file, std::string_view content) {
        std::ofstream(file, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
    }

    fs::path m_folder;
    fs::path m_strings;
};

constexpr const char16_t* root = u"\\";

// What every load to the root that comes to its end has written.
void check(const PM_Object& object) {
    require(object.getPropertySize(u"\\media\\abilities") == 52 * sizeof(char16_t));
    require(object.getPropertySize(u"\\media\\ui_owner") == 24 * sizeof(char16_t));
    require(object.getPropertySize(u"\\linetype\\capabilities") == 6 * sizeof(char16_t));
    require(object.getPropertySize(u"\\meta\\toolkit_version") == sizeof(double));
}

// What a load may take: so much for each byte of the description, and so much for each item that joins make.
pm::fuzz::Cost allowed_cost(std::size_t size) {
    constexpr std::size_t most_joined_items = 2'000'000;
    constexpr std::size_t bytes_of_an_item = 128;
    constexpr std::size_t bytes_of_a_byte = 1024;
    constexpr double seconds_of_an_item = 50e-6;
    // Joined items are at most the square of the lines, and a line that counts has 3 bytes and more.
    const std::size_t lines = size / 3;
    const std::size_t joined_items = std::min(most_joined_items, 12 * lines * lines);
    pm::fuzz::Cost cost = pm::fuzz::linear_cost(size, bytes_of_a_byte);
    cost.bytes += bytes_of_an_item * joined_items;
    cost.seconds += seconds_of_an_item * static_cast<double>(joined_items);
    return cost;
}

void load(const Description& description, std::size_t size, const char16_t* base) {
    const pm::fuzz::CostBound bound(allowed_cost(size));
    PM_Object object;
    bool whole = true;
    try {
        object.load(description.string_file().c_str(), PM_Object::FILE_PDT, base);
    } catch (const ZT_Exception&) {
        whole = false;
    }
    bound.require_held();
    if (whole && base == root) check(object);
}

void read_version(const Description& description) {
    constexpr std::size_t capacity = 16;
    const std::unique_ptr<char16_t[]> buffer(new char16_t[capacity]());
    try {
        PM_PDTFile filer(nullptr);
        filer.open(description.string_file().c_str(), false);
        filer.getVersion(buffer.get(), capacity);
    } catch (const PM_Severe& e) {
        require(e.m_number == PM_ERR_NOT_OPENED);
    }
    require(buffer[capacity - 1] == 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Description description;
    if (size == 0) return 0;
    std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::vector<int> changed;
    int section = data[0] % pm::section_count;
    for (bool more = true; more && changed.size() < pm::section_count; ++section) {
        section %= pm::section_count;
        const std::size_t end = rest.find('\f');
        more = end != std::string_view::npos;
        description.set(section, rest.substr(0, end));
        changed.push_back(section);
        if (more) rest.remove_prefix(end + 1);
    }
    constexpr int first_for_star = 240;
    load(description, size, data[0] < first_for_star ? root : u"\\device\\*\\");
    read_version(description);
    for (const int each : changed) {
        description.reset(each);
    }
    return 0;
}
