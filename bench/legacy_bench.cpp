#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <pm/object.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

std::string sample(const char* name) {
    std::ifstream file(std::string(PM_SAMPLES "/") + name, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content.empty()) throw std::runtime_error("no sample file");
    return content;
}

std::u16string sample_path(const char* name) {
    const std::string path = std::string(PM_SAMPLES "/") + name;
    return {path.begin(), path.end()};
}

// Times are of a new object with the load, and without its end.
template<class Load>
void load_new_objects(benchmark::State& state, Load load) {
    for ([[maybe_unused]] auto _ : state) {
        auto object = std::make_unique<PM_Object>();
        load(*object);
        state.PauseTiming();
        object.reset();
        state.ResumeTiming();
    }
}

void load_stream(benchmark::State& state, const char* name, PM_Object::FileType type) {
    const std::string content = sample(name);
    load_new_objects(state, [&](PM_Object& object) {
        std::stringstream stream(content);
        object.load(stream, type, u"\\");
    });
}

void pc2_load(benchmark::State& state) {
    load_stream(state, "office.pc2", PM_Object::FILE_PC2);
}
void pcp_load(benchmark::State& state) {
    load_stream(state, "pens.pcp", PM_Object::FILE_PCP);
}

// Nearly all that is left of a load when the file is but a version line.
void pc2_defaults(benchmark::State& state) {
    load_new_objects(state, [](PM_Object& object) {
        std::stringstream stream("PC2Version 2.0\n");
        object.load(stream, PM_Object::FILE_PC2, u"\\");
    });
}

// A load into a tree that has all properties already.
void pc2_load_again(benchmark::State& state) {
    const std::string content = sample("office.pc2");
    PM_Object object;
    for ([[maybe_unused]] auto _ : state) {
        std::stringstream stream(content);
        object.load(stream, PM_Object::FILE_PC2, u"\\");
    }
}

void pc2_load_and_end(benchmark::State& state) {
    const std::string content = sample("office.pc2");
    for ([[maybe_unused]] auto _ : state) {
        PM_Object object;
        std::stringstream stream(content);
        object.load(stream, PM_Object::FILE_PC2, u"\\");
    }
}

void cfg_load(benchmark::State& state) {
    const std::u16string path = sample_path("three-plotters.cfg");
    load_new_objects(state, [&](PM_Object& object) {
        object.load_cfg_section(path.c_str(), PM_Object::FILE_CFG, u"\\", 2);
    });
}

} // namespace

BENCHMARK(pc2_load)->Unit(benchmark::kMicrosecond);
BENCHMARK(pc2_load_and_end)->Unit(benchmark::kMicrosecond);
BENCHMARK(pc2_load_again)->Unit(benchmark::kMicrosecond);
BENCHMARK(pc2_defaults)->Unit(benchmark::kMicrosecond);
BENCHMARK(cfg_load)->Unit(benchmark::kMicrosecond);
BENCHMARK(pcp_load)->Unit(benchmark::kMicrosecond);
