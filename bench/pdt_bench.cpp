#include "filers/line_reader.h"
#include "pdt/row.h"
#include "pdt/section_reader.h"
#include "platform/code_page.h"
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pm/pm.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using pm::Section;

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

// The sample description with the rows of its tables as many times over as told, each time under other
// names and with texts of their own.
class LongDescription {
public:
    explicit LongDescription(int times) : m_times(times) {
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
    ~LongDescription() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    LongDescription(const LongDescription&) = delete;
    LongDescription& operator=(const LongDescription&) = delete;

    const fs::path& folder() const { return m_folder; }
    std::u16string string_file() const { return (m_folder / "strings.pdt").u16string(); }
    std::size_t bytes() const { return m_bytes; }

private:
    void add_table(Section section) {
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

    static std::string renamed(std::string row, int time) {
        const std::size_t name = row.find_first_of("\t\r\n");
        if (name > 0) row.insert(name, " " + std::to_string(time));
        return row;
    }

    void add_texts(Section section, int offset, int count) {
        const std::string prefix = pm::to_narrow(pm::section_key_prefix(section));
        if (prefix.empty()) return;
        for (int row = 0; row < count; ++row) {
            const std::string number = std::to_string(pm::SectionReader::first_row + offset + row);
            m_strings.append(prefix).append("B").append(number);
            m_strings.append(" \"text ").append(number).append("\"\r\n");
        }
    }

    void write(const std::string& name, const std::string& content) {
        std::ofstream(m_folder / name, std::ios::binary) << content;
        m_bytes += content.size();
    }

    int m_times;
    fs::path m_folder;
    std::string m_strings;
    std::size_t m_bytes = 0;
};

void set_rate(benchmark::State& state, const LongDescription& description) {
    state.SetBytesProcessed(static_cast<std::int64_t>(description.bytes()) *
                            static_cast<std::int64_t>(state.iterations()));
    state.SetComplexityN(state.range(0));
}

void pdt_load(benchmark::State& state) {
    const LongDescription description(static_cast<int>(state.range(0)));
    const std::u16string name = description.string_file();
    for ([[maybe_unused]] auto _ : state) {
        PM_Object object;
        object.load(name.c_str(), PM_Object::FILE_PDT, u"\\");
    }
    set_rate(state, description);
}

// What a load has to do before it looks at anything: to read the same files and decode their lines.
void pdt_files(benchmark::State& state) {
    const LongDescription description(static_cast<int>(state.range(0)));
    const pm::CodePage& page = pm::code_page(pm::default_code_page);
    std::u16string wide;
    for ([[maybe_unused]] auto _ : state) {
        for (const auto& entry : fs::directory_iterator(description.folder())) {
            std::ifstream stream(entry.path(), std::ios::binary);
            pm::LineReader reader;
            reader.attach(stream);
            for (;;) {
                const pm::LineReader::Line line = reader.read_line();
                wide.clear();
                page.decode(line.text, wide);
                benchmark::DoNotOptimize(wide.data());
                if (line.end == pm::LineReader::End::stream) break;
            }
        }
    }
    set_rate(state, description);
}

} // namespace

BENCHMARK(pdt_files)->RangeMultiplier(10)->Range(1, 100)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(pdt_load)->RangeMultiplier(10)->Range(1, 100)->Unit(benchmark::kMillisecond)->Complexity();
