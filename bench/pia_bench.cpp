#include "bench_tree.h"
#include <benchmark/benchmark.h>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using pm::bench::Shape;

enum Form : int { plain, compressed };

void sizes_and_forms(benchmark::internal::Benchmark* bench) {
    for (const int form : {plain, compressed}) {
        for (const int count : {100, 10'000, 100'000}) {
            bench->Args({count, form, pm::bench::nodes_of_100});
        }
        bench->Args({100'000, form, pm::bench::unique_names});
        bench->Args({10'000, form, pm::bench::flat});
    }
    bench->ArgNames({"properties", "compressed", "shape"})->Unit(benchmark::kMillisecond);
}

const char16_t* tag(const benchmark::State& state) {
    return state.range(1) == compressed ? u"bench,compress" : u"bench";
}

void fill(PM_Object& object, const benchmark::State& state) {
    pm::bench::fill(object, static_cast<Shape>(state.range(2)), static_cast<int>(state.range(0)));
}

// A file of its own for one benchmark.
class BenchFile {
public:
    BenchFile()
        : m_path(std::filesystem::temp_directory_path() / ("pm_bench_" + std::to_string(getpid()) + ".pia")) {
    }
    ~BenchFile() { std::filesystem::remove(m_path); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    std::u16string name() const { return m_path.u16string(); }
    double size() const { return static_cast<double>(std::filesystem::file_size(m_path)); }

private:
    std::filesystem::path m_path;
};

// Into a new object, without its end.
void load_pia(benchmark::State& state) {
    const BenchFile file;
    {
        PM_Object object;
        fill(object, state);
        object.save(file.name().c_str(), PM_Object::FILE_PIA, tag(state), u"\\");
    }
    for ([[maybe_unused]] auto _ : state) {
        auto object = std::make_unique<PM_Object>();
        object->load(file.name().c_str(), PM_Object::FILE_PIA, u"\\");
        state.PauseTiming();
        object.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["file"] = file.size();
}
BENCHMARK(load_pia)->Apply(sizes_and_forms);

void save_pia(benchmark::State& state) {
    const BenchFile file;
    PM_Object object;
    fill(object, state);
    for ([[maybe_unused]] auto _ : state) {
        object.save(file.name().c_str(), PM_Object::FILE_PIA, tag(state), u"\\");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["file"] = file.size();
}
BENCHMARK(save_pia)->Apply(sizes_and_forms);

} // namespace
