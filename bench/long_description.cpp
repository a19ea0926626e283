#include "long_description.h"

#include "filers/line_reader.h"
#include "pdt/row.h"
#include "platform/code_page.h"
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace pm::bench {
namespace {

namespace fs = std::filesystem;
const fs::path sample = PM_SAMPLES "/dx4200";

std::string read_file(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("can't read " + path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string file_name(Section section) {
    return pm::to_narrow(pm::section_name(section)) + ".pdt";
}

// Tables whose first column is a name; in others it is a keyword, or a label of a form.
bool has_names(Section section) {
    switch (section) {
    case Section::io_method:
    case Section::global_static_lists:
    case Section::line_type_capabilities:
    case Section::raster_capability:
        return false;
    default:
        return true;
    }
}

bool is_form(Section section) {
    return section == Section::misc_info || section == Section::misc_localizable_info;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

std::string renamed(std::string row, int time) {
    const std::size_t name = row.find_first_of("\t\r\n");
    if (name > 0) row.insert(name, " " + std::to_string(time));
    return row;
}

} // namespace

LongDescription::LongDescription(int times) : m_times(times) {
    std::string name = (fs::temp_directory_path() / "pdt_bench_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = name;
    m_strings = read_file(sample / "strings.pdt");
    for (int section = 0; section < pm::section_count; ++section) {
        if (fs::exists(sample / file_name(static_cast<Section>(section)))) {
            add_table(static_cast<Section>(section));
        }
    }
    write("strings.pdt", m_strings);
}

LongDescription::~LongDescription() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void LongDescription::add_table(Section section) {
    const std::vector<std::string> lines = lines_of(read_file(sample / file_name(section)));
    const auto rows = lines.begin() + pm::SectionReader::heading_lines;
    const int count = static_cast<int>(lines.end() - rows);
    std::string table = lines[0] + lines[1];
    for (int time = 0; time < (is_form(section) ? 1 : m_times); ++time) {
        for (auto row = rows; row != lines.end(); ++row) {
            table += time > 0 && has_names(section) ? renamed(*row, time) : *row;
        }
        if (time > 0) add_texts(section, time * count, count);
    }
    write(file_name(section), table);
}

void LongDescription::add_texts(Section section, int offset, int count) {
    const std::string prefix = pm::to_narrow(pm::section_key_prefix(section));
    if (prefix.empty()) return;
    for (int row = 0; row < count; ++row) {
        const std::string number = std::to_string(pm::SectionReader::first_row + offset + row);
        m_strings.append(prefix).append("B").append(number);
        m_strings.append(" \"text ").append(number).append("\"\r\n");
    }
}

void LongDescription::write(const std::string& name, const std::string& content) {
    std::ofstream(m_folder / name, std::ios::binary) << content;
    m_bytes += content.size();
}

void decode_files(const LongDescription& description) {
    const CodePage& page = code_page(default_code_page);
    std::u16string wide;
    for (const auto& entry : fs::directory_iterator(description.folder())) {
        std::ifstream stream(entry.path(), std::ios::binary);
        LineReader reader;
        reader.attach(stream);
        for (;;) {
            const LineReader::Line line = reader.read_line();
            wide.clear();
            page.decode(line.text, wide);
            asm volatile("" : : "r"(wide.data()) : "memory"); // decoded for its own sake
            if (line.end == LineReader::End::stream) break;
        }
    }
}

} // namespace pm::bench
