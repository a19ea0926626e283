#include <benchmark/benchmark.h>
#include <filesystem>
#include <pm/pm.h>
#include <string>

namespace {

constexpr int properties_a_node = 100;

std::u16string decimal(int number) {
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

// Properties of all types but raw data, 100 a node.
void fill(PM_Object& object, const std::u16string& base, int properties) {
    for (int index = 0; index < properties; ++index) {
        const std::u16string path =
            base + u"\\node" + decimal(index / properties_a_node) + u"\\property" + decimal(index);
        if (index % 3 == 0) {
            object.SetProperty(path.c_str(), index);
        } else if (index % 3 == 1) {
            object.SetProperty(path.c_str(), index / 7.0);
        } else {
            object.SetProperty(path.c_str(), u"a text of ordinary length");
        }
    }
}

// A file of its own for one benchmark.
class BenchFile {
public:
    explicit BenchFile(const char* name) : m_path(std::filesystem::temp_directory_path() / name) {}
    ~BenchFile() { std::filesystem::remove(m_path); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    std::u16string name() const { return m_path.u16string(); }

private:
    std::filesystem::path m_path;
};

void load_last_of_1000_dpia_sections(benchmark::State& state) {
    const BenchFile file("pm_bench.dpia");
    PM_Object object;
    for (int section = 0; section < 1000; ++section) {
        fill(object, u"s\\section" + decimal(section) + u"\\data", properties_a_node);
    }
    object.save(file.name().c_str(), PM_Object::FILE_DPIA, u"", u"s");
    for (auto _ : state) {
        PM_Object loaded;
        loaded.load_section(file.name().c_str(), PM_Object::FILE_DPIA, u"\\", u"section999");
    }
}
BENCHMARK(load_last_of_1000_dpia_sections)->Unit(benchmark::kMicrosecond);

void load_pia_file_of_one_section(benchmark::State& state) {
    const BenchFile file("pm_bench.pia");
    PM_Object object;
    fill(object, u"", properties_a_node);
    object.save(file.name().c_str(), PM_Object::FILE_PIA, u"x,compress", u"\\", true);
    for (auto _ : state) {
        PM_Object loaded;
        loaded.load(file.name().c_str(), PM_Object::FILE_PIA, u"\\");
    }
}
BENCHMARK(load_pia_file_of_one_section)->Unit(benchmark::kMicrosecond);

void save_doc(benchmark::State& state) {
    const BenchFile file("pm_bench.doc");
    PM_Object object;
    fill(object, u"", static_cast<int>(state.range(0)));
    for (auto _ : state)
        object.save(file.name().c_str(), PM_Object::FILE_DOC, u"", u"\\");
}
BENCHMARK(save_doc)->Arg(10000)->Unit(benchmark::kMillisecond);

void load_doc(benchmark::State& state) {
    const BenchFile file("pm_bench.doc");
    PM_Object object;
    fill(object, u"", static_cast<int>(state.range(0)));
    object.save(file.name().c_str(), PM_Object::FILE_DOC, u"", u"\\");
    for (auto _ : state) {
        PM_Object loaded;
        loaded.load(file.name().c_str(), PM_Object::FILE_DOC, u"\\");
    }
}
BENCHMARK(load_doc)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
