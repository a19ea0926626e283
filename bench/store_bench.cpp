#include "bench_tree.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <memory>
#include <pm/iterator.h>
#include <random>

namespace {

using pm::bench::Shape;

Shape shape_of(const benchmark::State& state) {
    return static_cast<Shape>(state.range(1));
}

std::vector<std::u16string> paths_of(const benchmark::State& state) {
    return pm::bench::property_paths(shape_of(state), static_cast<int>(state.range(0)));
}

std::unique_ptr<PM_Object> typed_tree(const std::vector<std::u16string>& paths) {
    auto object = std::make_unique<PM_Object>();
    for (std::size_t index = 0; index < paths.size(); ++index) {
        pm::bench::set_typed(*object, paths[index], static_cast<int>(index));
    }
    return object;
}

void every_shape(benchmark::internal::Benchmark* bench) {
    using namespace pm::bench;
    bench->Args({100, nodes_of_10});
    for (const int shape : {nodes_of_10, nodes_of_100, flat, names_10_000, unique_names}) {
        bench->Args({100'000, shape});
    }
    bench->ArgNames({"properties", "shape"})->Unit(benchmark::kMillisecond);
}

// Seconds a property, which the table shows as nanoseconds.
void count_properties(benchmark::State& state) {
    using benchmark::Counter;
    state.counters["a_property"] =
        Counter(static_cast<double>(state.range(0)), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void set_new(benchmark::State& state) {
    const auto paths = paths_of(state);
    for ([[maybe_unused]] auto _ : state) {
        auto object = typed_tree(paths);
        state.PauseTiming();
        object.reset();
        state.ResumeTiming();
    }
    count_properties(state);
}
BENCHMARK(set_new)->Apply(every_shape);

void set_again(benchmark::State& state) {
    const auto paths = paths_of(state);
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
BENCHMARK(set_again)->Apply(every_shape);

void get_each(benchmark::State& state, const std::vector<std::u16string>& paths) {
    PM_Object object;
    for (const auto& path : paths_of(state)) {
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

void get_in_order(benchmark::State& state) {
    get_each(state, paths_of(state));
}
BENCHMARK(get_in_order)->Apply(every_shape);

void get_shuffled(benchmark::State& state) {
    auto paths = paths_of(state);
    std::shuffle(paths.begin(), paths.end(), std::mt19937(1));
    get_each(state, paths);
}
BENCHMARK(get_shuffled)->Apply(every_shape);

void get_missing(benchmark::State& state) {
    const auto object = typed_tree(paths_of(state));
    for ([[maybe_unused]] auto _ : state) {
        int value = 0;
        benchmark::DoNotOptimize(object->GetProperty(u"\\group0\\family0\\device0\\mode0\\missing", value));
    }
}
BENCHMARK(get_missing)->Args({10'000, pm::bench::nodes_of_10})->ArgNames({"properties", "shape"});

// Every property with its text, as callers see it.
void walk(benchmark::State& state) {
    const auto object = typed_tree(paths_of(state));
    for ([[maybe_unused]] auto _ : state) {
        const std::unique_ptr<PM_Iterator> it(object->newIterator(u"\\", 0));
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
BENCHMARK(walk)->Apply(every_shape);

void destroy(benchmark::State& state) {
    const auto paths = paths_of(state);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        auto object = typed_tree(paths);
        state.ResumeTiming();
        object.reset();
    }
    count_properties(state);
}
BENCHMARK(destroy)->Apply(every_shape);

// What a tree takes of the heap, a property, shown beside the time of making it.
void heap(benchmark::State& state) {
    const auto paths = paths_of(state);
    for ([[maybe_unused]] auto _ : state) {
        const struct mallinfo2 before = mallinfo2();
        const auto object = typed_tree(paths);
        const struct mallinfo2 after = mallinfo2();
        const auto bytes = static_cast<double>(after.uordblks + after.hblkhd) -
                           static_cast<double>(before.uordblks + before.hblkhd);
        state.counters["bytes"] = bytes / static_cast<double>(state.range(0));
    }
}
BENCHMARK(heap)->Apply(every_shape)->Iterations(1);

void duplicate(benchmark::State& state) {
    PM_Object object;
    for (int index = 0; index < state.range(0); ++index) {
        const std::u16string path = u"\\from" + pm::bench::property_path(shape_of(state), index);
        pm::bench::set_typed(object, path, index);
    }
    for ([[maybe_unused]] auto _ : state) {
        object.duplicate(u"from", u"to");
        state.PauseTiming();
        object.deletePath(u"to");
        state.ResumeTiming();
    }
    count_properties(state);
}
BENCHMARK(duplicate)->Apply(every_shape);

} // namespace
