#include "bench_tree.h"
#include <benchmark/benchmark.h>
#include <memory>
#include <pm/iterator.h>

namespace {

using pm::bench::Shape;

void sizes_and_shapes(benchmark::internal::Benchmark* bench) {
    for (const int count : {100, 10'000, 100'000}) {
        bench->Args({count, pm::bench::nodes_of_100});
    }
    // The table of names has a fixed size, so that a hundred thousand of them take half a minute.
    for (const int count : {100, 10'000}) {
        bench->Args({count, pm::bench::unique_names});
        bench->Args({count, pm::bench::flat});
    }
    bench->ArgNames({"properties", "shape"})->Unit(benchmark::kMillisecond);
}

void count_properties(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// A new tree, without its end.
void set_new(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(1));
    const auto paths = pm::bench::property_paths(shape, static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        auto object = std::make_unique<PM_Object>();
        for (std::size_t index = 0; index < paths.size(); ++index) {
            pm::bench::set_property(*object, paths[index], static_cast<int>(index));
        }
        state.PauseTiming();
        object.reset();
        state.ResumeTiming();
    }
    count_properties(state);
}
BENCHMARK(set_new)->Apply(sizes_and_shapes);

void set_again(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(1));
    const auto paths = pm::bench::property_paths(shape, static_cast<int>(state.range(0)));
    PM_Object object;
    for (const auto& path : paths) {
        object.SetProperty(path.c_str(), 1);
    }
    for ([[maybe_unused]] auto _ : state) {
        for (const auto& path : paths) {
            object.SetProperty(path.c_str(), 2);
        }
    }
    count_properties(state);
}
BENCHMARK(set_again)->Apply(sizes_and_shapes);

void get(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(1));
    const auto paths = pm::bench::property_paths(shape, static_cast<int>(state.range(0)));
    PM_Object object;
    for (const auto& path : paths) {
        object.SetProperty(path.c_str(), 1);
    }
    for ([[maybe_unused]] auto _ : state) {
        int value = 0;
        for (const auto& path : paths) {
            object.GetProperty(path.c_str(), value);
            benchmark::DoNotOptimize(value);
        }
    }
    count_properties(state);
}
BENCHMARK(get)->Apply(sizes_and_shapes);

void get_missing(benchmark::State& state) {
    const auto shape = static_cast<Shape>(state.range(1));
    PM_Object object;
    pm::bench::fill(object, shape, static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        int value = 0;
        benchmark::DoNotOptimize(object.GetProperty(u"\\group0\\node0\\missing", value));
    }
}
BENCHMARK(get_missing)->Args({10'000, pm::bench::nodes_of_100})->ArgNames({"properties", "shape"});

// Every property with its text, as a save does it.
void walk(benchmark::State& state) {
    PM_Object object;
    pm::bench::fill(object, static_cast<Shape>(state.range(1)), static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        const std::unique_ptr<PM_Iterator> it(object.newIterator(u"\\", 0));
        char* value = nullptr;
        std::size_t size = 0;
        PropType type = PROP_NONE;
        PM_Object::NodeType step{};
        do {
            while (it->nextProp(value, size, type) != nullptr) {
                benchmark::DoNotOptimize(value);
            }
        } while (it->nextNode(step) != nullptr);
    }
    count_properties(state);
}
BENCHMARK(walk)->Apply(sizes_and_shapes);

void duplicate(benchmark::State& state) {
    PM_Object object;
    for (int index = 0; index < state.range(0); ++index) {
        const std::u16string path =
            u"\\from" + pm::bench::property_path(static_cast<Shape>(state.range(1)), index);
        pm::bench::set_property(object, path, index);
    }
    for ([[maybe_unused]] auto _ : state) {
        object.duplicate(u"from", u"to");
        state.PauseTiming();
        object.deletePath(u"to");
        state.ResumeTiming();
    }
    count_properties(state);
}
BENCHMARK(duplicate)->Apply(sizes_and_shapes);

} // namespace
