#include "long_description.h"
#include <benchmark/benchmark.h>
#include <pm/pm.h>

namespace {

using pm::bench::LongDescription;

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

void pdt_files(benchmark::State& state) {
    const LongDescription description(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state)
        pm::bench::decode_files(description);
    set_rate(state, description);
}

} // namespace

BENCHMARK(pdt_files)->RangeMultiplier(10)->Range(1, 100)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(pdt_load)->RangeMultiplier(10)->Range(1, 100)->Unit(benchmark::kMillisecond)->Complexity();
