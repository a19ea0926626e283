// What pm/tree.h costs beside the calls of PM_Object that do the same: each pair below reads or writes the
// same tree.

#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <pm/pm.h>
#include <string>

namespace {

// 200 nodes in two levels with five properties each, one of every type.
void fill(PM_Object& object) {
    for (int media = 0; media < 20; ++media) {
        for (int size = 0; size < 10; ++size) {
            const std::string node =
                "\\media" + std::to_string(media) + "\\size" + std::to_string(size) + "\\";
            const std::u16string path(node.begin(), node.end());
            object.SetProperty((path + u"copies").c_str(), media * size);
            object.SetProperty((path + u"printable_area").c_str(), 0.9825 * size);
            object.SetProperty((path + u"name").c_str(), u"ISO_A1_landscape");
            object.SetProperty((path + u"landscape").c_str(), true);
            object.setVoidProperty((path + u"pattern").c_str(), "12345678", 8);
        }
    }
}

constexpr const char16_t* long_path = u"\\media12\\size7\\copies";
constexpr const char16_t* double_path = u"\\media12\\size7\\printable_area";
constexpr const char16_t* text_path = u"\\media12\\size7\\name";
constexpr const char* narrow_long_path = "\\media12\\size7\\copies";
constexpr const char* narrow_double_path = "\\media12\\size7\\printable_area";
constexpr const char* narrow_text_path = "\\media12\\size7\\name";

// A program's own road from a stored text to UTF-8: the size, a buffer, the text.
std::string object_text(const PM_Object& object, const char16_t* path) {
    std::u16string wide(object.getPropertySize(path) / sizeof(char16_t), u'\0');
    if (!object.GetProperty(path, wide.data(), wide.size() * sizeof(char16_t))) return {};
    return pm::to_utf8(wide.c_str());
}

void object_get_long(benchmark::State& state) {
    PM_Object object;
    fill(object);
    for (auto _ : state) {
        int value = 0;
        benchmark::DoNotOptimize(object.GetProperty(long_path, value));
        benchmark::DoNotOptimize(value);
    }
}

template<class Path>
void tree_get_long(benchmark::State& state, Path path) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.get<int>(path));
}

void object_get_double(benchmark::State& state) {
    PM_Object object;
    fill(object);
    for (auto _ : state) {
        double value = 0;
        benchmark::DoNotOptimize(object.GetProperty(double_path, value));
        benchmark::DoNotOptimize(value);
    }
}

void tree_get_double(benchmark::State& state) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.get<double>(narrow_double_path));
}

void object_get_text(benchmark::State& state) {
    PM_Object object;
    fill(object);
    for (auto _ : state)
        benchmark::DoNotOptimize(object_text(object, text_path));
}

void tree_get_text(benchmark::State& state) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.get<std::string>(narrow_text_path));
}

void object_set_long(benchmark::State& state) {
    PM_Object object;
    fill(object);
    int value = 0;
    for (auto _ : state)
        object.SetProperty(long_path, ++value);
}

template<class Path>
void tree_set_long(benchmark::State& state, Path path) {
    pm::Tree tree;
    fill(tree.object());
    int value = 0;
    for (auto _ : state)
        tree.set(path, ++value);
}

void object_set_text(benchmark::State& state) {
    PM_Object object;
    fill(object);
    const char16_t* const text = u"ISO_A1_landscape";
    for (auto _ : state)
        object.SetProperty(text_path, text);
}

void tree_set_text(benchmark::State& state) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state)
        tree.set(narrow_text_path, "ISO_A1_landscape");
}

// Every name and value by the iterator, texts in UTF-8.
void object_walk(benchmark::State& state) {
    PM_Object object;
    fill(object);
    for (auto _ : state) {
        const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
        PM_Object::NodeType step{};
        do {
            if (step == PM_Object::NODE_PARENT) continue;
            char* value = nullptr;
            std::size_t size = 0;
            PropType type = PROP_NONE;
            while (const char16_t* name = walk->nextProp(value, size, type)) {
                benchmark::DoNotOptimize(pm::to_utf8(name));
                benchmark::DoNotOptimize(value);
                if (type != PROP_STRING) continue;
                std::u16string text(size / sizeof(char16_t), u'\0');
                std::memcpy(text.data(), value, text.size() * sizeof(char16_t));
                benchmark::DoNotOptimize(pm::to_utf8(text.c_str()));
            }
        } while (walk->nextNode(step) != nullptr);
    }
}

void tree_walk(benchmark::State& state) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state) {
        for (const auto [node, depth] : tree.walk()) {
            for (const auto [name, value] : node.properties()) {
                benchmark::DoNotOptimize(name);
                benchmark::DoNotOptimize(value);
            }
        }
    }
}

// Nothing but the steps: no value is looked at.
void object_walk_nodes(benchmark::State& state) {
    PM_Object object;
    fill(object);
    for (auto _ : state) {
        const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
        PM_Object::NodeType step{};
        while (const char16_t* name = walk->nextNode(step))
            benchmark::DoNotOptimize(name);
    }
}

void tree_walk_nodes(benchmark::State& state) {
    pm::Tree tree;
    fill(tree.object());
    for (auto _ : state) {
        for (const auto [node, depth] : tree.walk())
            benchmark::DoNotOptimize(node.name16());
    }
}

BENCHMARK(object_get_long);
BENCHMARK_CAPTURE(tree_get_long, utf8, narrow_long_path);
BENCHMARK_CAPTURE(tree_get_long, utf16, long_path);
BENCHMARK(object_get_double);
BENCHMARK(tree_get_double);
BENCHMARK(object_get_text);
BENCHMARK(tree_get_text);
BENCHMARK(object_set_long);
BENCHMARK_CAPTURE(tree_set_long, utf8, narrow_long_path);
BENCHMARK_CAPTURE(tree_set_long, utf16, long_path);
BENCHMARK(object_set_text);
BENCHMARK(tree_set_text);
BENCHMARK(object_walk);
BENCHMARK(tree_walk);
BENCHMARK(object_walk_nodes);
BENCHMARK(tree_walk_nodes);

} // namespace
